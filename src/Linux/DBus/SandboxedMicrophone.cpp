// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Linux/DBus/SandboxedMicrophone.h"

#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusServiceWatcher>
#include <QStringList>
#include <QVariantMap>

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <limits>
#include <sstream>
#include <string_view>
#include <system_error>
#include <utility>

namespace tovik {

namespace {

constexpr auto kPortal = "org.freedesktop.portal.Desktop";
constexpr auto kRequestInterface = "org.freedesktop.portal.Request";
constexpr unsigned kAllowed = 0;
/// No process has it: a portal that would answer for this one refuses the number without asking the user.
constexpr unsigned kNobody = std::numeric_limits<unsigned>::max();
/// A portal that hangs must not keep the microphone away for ever.
constexpr int kLookPatienceMilliseconds = 5'000;
/// The reply says that the question was put; only then may the user think about it for as long as he likes.
constexpr int kAskPatienceMilliseconds = 25'000;

} // namespace

/// One question to the portal on its way, which the user may take long to answer. Deletes itself once it has
/// answered.
class PortalQuestion : public QObject {
    Q_OBJECT

public:
    /// token: the last part of the path on which the answer comes. Made before the question is put, since the
    /// answer may be faster than the reply.
    PortalQuestion(QDBusConnection bus, const QString& token, MicrophonePortal::Handler handler,
                   QObject* parent);

    /// The call that puts the question.
    void put(const QDBusPendingCall& call);

private slots:
    void respond(unsigned response, const QVariantMap& results);

private:
    void listenOn(const QString& path);
    void end(const MicrophonePortal::Answer& answer);

    QDBusConnection bus_;
    MicrophonePortal::Handler handler_;
    QString path_;
};

PortalQuestion::PortalQuestion(QDBusConnection bus, const QString& token, MicrophonePortal::Handler handler,
                               QObject* parent)
    : QObject(parent),
      bus_(std::move(bus)),
      handler_(std::move(handler)) {
    const auto sender = bus_.baseService().mid(1).replace('.', '_');
    listenOn("/org/freedesktop/portal/desktop/request/" + sender + "/" + token);
    const auto* const watcher =
        new QDBusServiceWatcher(kPortal, bus_, QDBusServiceWatcher::WatchForUnregistration, this);
    connect(watcher, &QDBusServiceWatcher::serviceUnregistered, this, [this] {
        end({MicrophonePortal::Verdict::undecided, "The desktop portal ended before it answered"});
    });
}

void PortalQuestion::listenOn(const QString& path) {
    bus_.disconnect(kPortal, path_, kRequestInterface, "Response", this, SLOT(respond(uint, QVariantMap)));
    path_ = path;
    bus_.connect(kPortal, path_, kRequestInterface, "Response", this, SLOT(respond(uint, QVariantMap)));
}

void PortalQuestion::put(const QDBusPendingCall& call) {
    const auto* const watcher = new QDBusPendingCallWatcher(call, this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this](QDBusPendingCallWatcher* finished) {
        const QDBusPendingReply<QDBusObjectPath> reply = *finished;
        if (reply.isError()) {
            end(DBusMicrophonePortal::answerTo(reply.error()));
        } else if (reply.value().path() != path_) {
            // Portals of old choose the path themselves.
            listenOn(reply.value().path());
        }
    });
}

void PortalQuestion::respond(unsigned response, const QVariantMap& /*results*/) {
    end({response == kAllowed ? MicrophonePortal::Verdict::granted : MicrophonePortal::Verdict::denied, {}});
}

void PortalQuestion::end(const MicrophonePortal::Answer& answer) {
    if (const auto handler = std::exchange(handler_, nullptr)) {
        handler(answer);
    }
    deleteLater();
}

DBusMicrophonePortal::DBusMicrophonePortal(std::function<QDBusConnection()> bus) : bus_(std::move(bus)) {}

QDBusPendingCall DBusMicrophonePortal::accessDevice(unsigned processIdentifier, const QString& token,
                                                    int patienceMilliseconds) {
    auto call = QDBusMessage::createMethodCall(kPortal, "/org/freedesktop/portal/desktop",
                                               "org.freedesktop.portal.Device", "AccessDevice");
    call.setArguments({processIdentifier, QStringList{"microphone"}, QVariantMap{{"handle_token", token}}});
    return bus_().asyncCall(call, patienceMilliseconds);
}

bool DBusMicrophonePortal::answersWithoutBus(const Handler& handler) {
    if (bus_().isConnected()) {
        return false;
    }
    // Calls on a connection that is none never finish.
    QMetaObject::invokeMethod(
        this,
        [handler] {
            handler({Verdict::leavesItToTheServer, "There is no session bus"});
        },
        Qt::QueuedConnection);
    return true;
}

void DBusMicrophonePortal::look(Handler handler) {
    if (answersWithoutBus(handler)) {
        return;
    }
    const auto token = QString("look%1").arg(++questions_);
    auto* const watcher =
        new QDBusPendingCallWatcher(accessDevice(kNobody, token, kLookPatienceMilliseconds), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this,
            [handler = std::move(handler)](QDBusPendingCallWatcher* finished) {
                finished->deleteLater();
                handler(finished->isError() ? answerTo(finished->error()) : Answer{});
            });
}

void DBusMicrophonePortal::ask(Handler handler) {
    if (answersWithoutBus(handler)) {
        return;
    }
    const auto token = QString("ask%1").arg(++questions_);
    auto* const question = new PortalQuestion(bus_(), token, std::move(handler), this);
    question->put(accessDevice(static_cast<unsigned>(getpid()), token, kAskPatienceMilliseconds));
}

MicrophonePortal::Answer DBusMicrophonePortal::answerTo(const QDBusError& error) {
    auto reason = (error.name() + ": " + error.message()).toStdString();
    if (error.name() == "org.freedesktop.portal.Error.InvalidArgument") {
        return {Verdict::undecided, std::move(reason)};
    }
    // The same name stands for both: that it answers nobody in a sandbox, and that the microphone is switched
    // off. The sentences are not translated.
    if (error.name() == "org.freedesktop.portal.Error.NotAllowed" && error.message().endsWith("disabled")) {
        return {Verdict::switchedOff, std::move(reason)};
    }
    return {Verdict::leavesItToTheServer, std::move(reason)};
}

namespace {

constexpr auto kFlatpakInfo = "/.flatpak-info";

std::string environment(const char* variable) {
    const char* const value = std::getenv(variable);
    return value == nullptr ? "" : value;
}

std::string ownFile() {
    std::error_code failure;
    return std::filesystem::read_symlink("/proc/self/exe", failure).string();
}

/// The value of a key in a file of groups, keys and values, as desktops have them; empty without one.
std::string valueOf(const std::string& keyFile, std::string_view group, std::string_view key) {
    std::istringstream lines(keyFile);
    bool isInGroup = false;
    for (std::string line; std::getline(lines, line);) {
        if (line.starts_with('[')) {
            isInGroup = line.starts_with('[' + std::string(group) + ']');
        } else if (isInGroup && line.starts_with(std::string(key) + '=')) {
            return line.substr(key.size() + 1);
        }
    }
    return {};
}

bool listHas(const std::string& list, std::string_view wanted) {
    std::istringstream entries(list);
    for (std::string entry; std::getline(entries, entry, ';');) {
        if (entry == wanted) {
            return true;
        }
    }
    return false;
}

using Verdict = MicrophonePortal::Verdict;

constexpr auto kThenStartAgain = "\n\nThen start Tovik Record again.";

} // namespace

SandboxSigns SandboxSigns::ofThisProcess() {
    SandboxSigns signs{std::nullopt, environment("SNAP"), environment("SNAP_NAME"), ownFile()};
    if (std::ifstream file(kFlatpakInfo); file) {
        signs.flatpakInfo.emplace(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
    }
    return signs;
}

Sandbox Sandbox::recognize(const SandboxSigns& signs) {
    if (signs.flatpakInfo) {
        return {Kind::flatpak, valueOf(*signs.flatpakInfo, "Application", "name"),
                listHas(valueOf(*signs.flatpakInfo, "Context", "sockets"), "pulseaudio")};
    }
    const bool isOfTheSnap =
        !signs.snapFolder.empty() && signs.executablePath.starts_with(signs.snapFolder + '/');
    if (isOfTheSnap && !signs.snapName.empty()) {
        return {Kind::snap, signs.snapName, true};
    }
    return {};
}

SandboxedMicrophone::SandboxedMicrophone(Sandbox sandbox, Services services)
    : sandbox_(std::move(sandbox)),
      services_(std::move(services)) {
    look();
}

bool SandboxedMicrophone::isPortalConcerned() const {
    return sandbox_.kind != Sandbox::Kind::none && sandbox_.hasSoundSocket;
}

MicrophoneStatus SandboxedMicrophone::status() {
    look();
    if (!sandbox_.hasSoundSocket || isSaid(Verdict::denied)) {
        return MicrophoneStatus::denied;
    }
    if (isSaid(Verdict::switchedOff)) {
        return MicrophoneStatus::restricted;
    }
    return !isKnown() || isSaid(Verdict::undecided) ? MicrophoneStatus::notDetermined
                                                    : services_.serverStatus();
}

std::string SandboxedMicrophone::explanation() const {
    if (!sandbox_.hasSoundSocket) {
        return "Flatpak keeps the sound server away from Tovik Record. Let it in with this command:\n\n"
               "flatpak override --user --socket=pulseaudio " +
               sandbox_.name + kThenStartAgain;
    }
    if (isSaid(Verdict::switchedOff)) {
        return "Microphones are switched off for every application on this desktop. Switch them on in its "
               "privacy settings.";
    }
    if (isSaid(Verdict::denied)) {
        return "You did not allow Tovik Record to use the microphone. Allow it in the privacy settings" +
               (sandbox_.kind == Sandbox::Kind::flatpak
                    ? ", or with this command:\n\nflatpak permission-set devices microphone " +
                          sandbox_.name + " yes"
                    : ".") +
               kThenStartAgain;
    }
    if (!isKnown() || isSaid(Verdict::undecided)) {
        return {};
    }
    const auto status = services_.serverStatus();
    // A snap without the plug may not even see the sound server, or may play but not record.
    if (sandbox_.kind == Sandbox::Kind::snap && status != MicrophoneStatus::authorized &&
        status != MicrophoneStatus::restricted) {
        return "The snap may not have been given the microphone. Give it with this command:\n\n"
               "sudo snap connect " +
               sandbox_.name + ":audio-record" + kThenStartAgain;
    }
    return services_.serverExplanation();
}

void SandboxedMicrophone::ask(std::function<void(bool isRefused)> whenAnswered) {
    if (!isPortalConcerned()) {
        whenAnswered(false);
        return;
    }
    waiting_.push_back(std::move(whenAnswered));
    if (waiting_.size() > 1) {
        return;
    }
    services_.portal.ask(lifetime_.guard([this](const MicrophonePortal::Answer& answer) {
        learn(answer);
        for (const auto& answered : std::exchange(waiting_, {})) {
            answered(answer.verdict == Verdict::denied);
        }
    }));
}

void SandboxedMicrophone::look() {
    if (!isPortalConcerned() || std::exchange(isLooking_, true)) {
        return;
    }
    services_.portal.look(lifetime_.guard([this](const MicrophonePortal::Answer& answer) {
        isLooking_ = false;
        // That it decides is no news once it has.
        if (answer.verdict != Verdict::undecided || !(isSaid(Verdict::granted) || isSaid(Verdict::denied))) {
            learn(answer);
        }
    }));
}

void SandboxedMicrophone::learn(const MicrophonePortal::Answer& answer) {
    if (isSaid(answer.verdict)) {
        return;
    }
    verdict_ = answer.verdict;
    if (answer.verdict == Verdict::leavesItToTheServer) {
        services_.log.printLine(
            "[TovikVoice] The desktop portal leaves the microphone to the sound server (" + answer.reason +
            ")");
    }
    services_.changed();
}

} // namespace tovik

#include "SandboxedMicrophone.moc"

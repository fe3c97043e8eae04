// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Linux/LinuxPlatform.h"

#include "Engines/Apertium/ApertiumService.h"
#include "Engines/LibreTranslate/LibreTranslateService.h"
#include "Engines/SpeechEngines.h"
#include "Engines/TranslationChoice.h"
#include "Linux/DBus/LibsecretStore.h"
#include "Linux/DBus/SandboxedMicrophone.h"
#include "Linux/Desktop/DesktopOpener.h"
#include "Linux/Desktop/LinuxAuthorization.h"
#include "Linux/Desktop/QtDesktop.h"
#include "Linux/Desktop/QtMainQueue.h"
#include "Linux/Desktop/QtUserDefaultsChanges.h"
#include "Linux/PulseAudio/PulseAudioDevices.h"
#include "Linux/PulseAudio/PulseAudioEngine.h"
#include "Linux/Storage/JsonUserDefaults.h"
#include "Linux/Storage/LocalFiles.h"
#include "Linux/Storage/XdgFolders.h"
#include "Linux/X11/PostedKeys.h"
#include "Linux/X11/X11KeyEventPoster.h"
#include "Linux/X11/X11KeyMonitor.h"
#include "Linux/X11/X11Pasteboard.h"
#include "Linux/X11/X11Workspace.h"
#include "Permissions/Installation.h"
#include "Platform/Subscription.h"
#include "UserInterface/QtUserInterface.h"

#include <QApplication>
#include <QStandardPaths>
#include <QWidget>

#include <unistd.h>

#include <string>
#include <utility>
#include <vector>

namespace tovik {

namespace {

constexpr auto kBundleIdentifier = "tovik-record";
constexpr auto kInstalledExecutable = "/usr/bin/tovik-record";
constexpr Seconds kLongestWaitForSound{0.15};
constexpr Seconds kLongestWaitForPortal{1.0};
constexpr Seconds kSavingAgainInterval{5};

/// The names in a list such as "ubuntu:GNOME".
std::vector<std::string> currentDesktops() {
    std::vector<std::string> names;
    for (const auto& name : qEnvironmentVariable("XDG_CURRENT_DESKTOP").split(':', Qt::SkipEmptyParts)) {
        names.push_back(name.toStdString());
    }
    return names;
}

bool isInstalled(const std::string& program) {
    return !QStandardPaths::findExecutable(QString::fromStdString(program)).isEmpty();
}

/// Whether the user works in it. The pill and the hints take no input and fade on their own, and Qt shows the
/// icon of a tray that takes windows in a window that the window manager does not know.
bool isVisibleToWorkIn(const QWidget* window) {
    constexpr auto kMereDisplay = Qt::WindowTransparentForInput | Qt::BypassWindowManagerHint;
    return window->isVisible() && (window->windowFlags() & kMereDisplay) == 0;
}

/// Hiding a question or a menu would answer it on the user's behalf.
void hideOwnWindows() {
    for (auto* window : QApplication::topLevelWidgets()) {
        const bool asks = window->windowType() == Qt::Dialog || window->windowType() == Qt::Popup;
        if (isVisibleToWorkIn(window) && !asks) {
            window->hide();
        }
    }
}

} // namespace

/// In the order in which they are made: each is made of those before it, and asks those after it later.
struct LinuxPlatform::Adapters {
    Adapters(SystemLog& programLog, std::function<void()> terminate);

    void saveSettingsAgainLater();
    [[nodiscard]] bool isSoundKnown() const {
        return devices.directory()->listing().known && microphone.isKnown();
    }

    SystemLog& log;
    const XdgFolders folders;
    SystemClock clock;
    QtMainQueue queue;
    LocalFiles files;
    Subscription savingSettingsAgain;
    JsonUserDefaults defaults;
    QtUserDefaultsChanges defaultsChanges;
    QtProcessLauncher launcher;
    QtScreens screens;
    QtAlert alert;
    X11Pasteboard pasteboard{log};

    X11Workspace workspace;
    PostedKeys postedKeys;
    X11KeyEventPoster poster;
    X11KeyMonitor keyMonitor;
    const X11Session session = X11Session::examine();

    PulseAudioConnection soundServer;
    PulseAudioDevices devices;
    PulseAudioEngine engine;
    Observers<> permissionsChanged;
    DBusMicrophonePortal microphonePortal{[] { return QDBusConnection::sessionBus(); }};
    SandboxedMicrophone microphone;

    LibsecretStore secrets;
    SpeechEngines speech;
    LibreTranslateService translationServer;
    ApertiumService apertium;
    TranslationChoice translation;

    LinuxAuthorization authorization;
    DesktopOpener opener;
    QtUserInterface userInterface;

    const Platform ports;
};

LinuxPlatform::Adapters::Adapters(SystemLog& programLog, std::function<void()> terminate)
    : log(programLog),
      defaults(folders.defaultsFile(), log, [this] { saveSettingsAgainLater(); }),
      defaultsChanges(folders.defaultsFile(), log),
      workspace({.queue = queue,
                 .ownBundleIdentifier = kBundleIdentifier,
                 .ownLocalizedName = "Tovik Record",
                 .hideOwnWindows = hideOwnWindows,
                 .open = [this](const std::string& addressOrPath) { return opener.open(addressOrPath); }}),
      poster({.queue = queue,
              .defaults = defaults,
              .log = log,
              .posted = postedKeys,
              .pasteboard = pasteboard,
              .target = [this] { return workspace.activated(); },
              .isInFront = [this](const auto& target) { return workspace.isInFront(target); },
              .bringToFront = [this](const auto& target) { workspace.bringToFront(target); },
              .isTalkKeyHeldAlone = [this] { return keyMonitor.isTalkKeyHeldAlone(); }}),
      keyMonitor({.queue = queue,
                  .defaults = defaults,
                  .log = log,
                  .posted = postedKeys,
                  .ownProgramIsFrontmost = [this] { return workspace.isOwnProgramInFront(); }}),
      soundServer(log),
      devices(soundServer, queue, defaults),
      engine(soundServer, devices.directory()),
      microphone(Sandbox::recognize(SandboxSigns::ofThisProcess()),
                 {.log = log,
                  .portal = microphonePortal,
                  .serverStatus = [this] { return devices.microphoneStatus(); },
                  .serverExplanation = [this] { return devices.microphoneExplanation(); },
                  .changed = [this] { permissionsChanged.tell(); }}),
      secrets(queue),
      speech({.log = log,
              .defaults = defaults,
              .queue = queue,
              .secrets = &secrets,
              .dataFolder = folders.applicationSupport()}),
      translationServer({.queue = queue, .log = log, .defaults = defaults, .secrets = secrets}),
      apertium(queue),
      translation(translationServer, apertium, [this] { return translationServer.isChosen(); }),
      authorization(queue, alert,
                    {.microphoneStatus = [this] { return microphone.status(); },
                     .microphoneExplanation = [this] { return microphone.explanation(); },
                     .askForMicrophone =
                         [this](std::function<void(bool)> answered) { microphone.ask(std::move(answered)); },
                     .speechExplanation = [this] { return speech.whyUnavailable().value_or(""); },
                     .needsSpeechConsent = [this] { return speech.needsConsent(); },
                     .speechConsentText = [this] { return speech.consentText(); },
                     .answerSpeechConsent = [this](bool isAllowed) { speech.answerConsent(isAllowed); },
                     .isSpeechRefused = [this] { return speech.isRefused(); },
                     .isKeyboardUsable = [this] { return session.usable(); },
                     .keyboardExplanation = [this] { return session.sentence; },
                     .executablePath = QCoreApplication::applicationFilePath().toStdString(),
                     .homeDirectory = folders.home()}),
      opener({.queue = queue,
              .alert = alert,
              .launcher = launcher,
              .desktops = currentDesktops(),
              .isInstalled = isInstalled,
              .microphoneExplanation = [this] { return microphone.explanation(); },
              .reconsiderSpeech = [this] { authorization.askSpeechConsent(); }}),
      userInterface(clock, queue, screens, workspace, log),
      ports{.clock = clock,
            .mainQueue = queue,
            .log = log,
            .defaults = defaults,
            .defaultsChanges = defaultsChanges,
            .files = files,
            .workspace = workspace,
            .keyMonitor = keyMonitor,
            .keyEventPoster = poster,
            .pasteboard = pasteboard,
            .audioEngine = engine,
            .captureDevices = devices,
            .audioHardware = devices,
            .speechService = speech,
            .authorization = authorization,
            .translationService = translation,
            .screens = screens,
            .alert = alert,
            .processLauncher = launcher,
            .userInterface = userInterface,
            .terminate = std::move(terminate),
            .dataFolder = folders.applicationSupport(),
            .debugLogFile = folders.debugLogFile(),
            .processIdentifier = getpid(),
            .installLocations = linuxInstallLocations(kInstalledExecutable)} {
    if (!session.sentence.empty()) {
        log.printLine("[TovikVoice] " + session.sentence);
    }
}

void LinuxPlatform::Adapters::saveSettingsAgainLater() {
    savingSettingsAgain = queue.after(kSavingAgainInterval, [this] {
        if (!defaults.saveAgain()) {
            saveSettingsAgainLater();
        }
    });
}

LinuxPlatform::LinuxPlatform(SystemLog& log, std::function<void()> terminate)
    : adapters_(std::make_unique<Adapters>(log, std::move(terminate))) {}

LinuxPlatform::~LinuxPlatform() = default;

const Platform& LinuxPlatform::ports() const {
    return adapters_->ports;
}

void LinuxPlatform::whenSoundIsKnown(std::function<void()> callback) {
    struct Wait {
        std::function<void()> callback;
        Subscription portal;
    };
    auto* const adapters = adapters_.get();
    const auto wait = std::make_shared<Wait>(Wait{std::move(callback), {}});
    const auto end = [wait] {
        if (const auto once = std::exchange(wait->callback, nullptr)) {
            wait->portal.end();
            once();
        }
    };
    const auto endIfKnown = [adapters, end] {
        if (adapters->isSoundKnown()) {
            end();
        }
    };
    const auto lookSoon = [adapters, endIfKnown] { adapters->queue.async(endIfKnown); };
    adapters->devices.directory()->observe(adapters->soundServer, lookSoon);
    wait->portal = adapters->permissionsChanged.add(lookSoon);
    lookSoon();
    adapters->queue.asyncAfter(adapters->microphone.isKnown() ? kLongestWaitForSound : kLongestWaitForPortal,
                               end);
}

Subscription LinuxPlatform::onPermissionsChanged(std::function<void()> handler) {
    return adapters_->permissionsChanged.add(std::move(handler));
}

} // namespace tovik

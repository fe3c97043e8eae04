// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/Authorization.h"
#include "Platform/Subscription.h"
#include "Platform/SystemLog.h"

#include <QDBusConnection>
#include <QDBusError>
#include <QDBusPendingCall>
#include <QObject>
#include <QString>

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace tovik {

/// The desktop's portal, as far as it decides whether a program in a sandbox may hear the microphone. Main
/// thread; calls return at once, and their answers come later, once each.
class MicrophonePortal {
public:
    enum class Verdict {
        /// It has no say here: there is none, or it does not answer programs in a sandbox. Then whoever may
        /// use the sound server's socket may record.
        leavesItToTheServer,
        /// It decides, and has not been asked.
        undecided,
        granted,
        denied,
        /// Microphones are switched off for every program.
        switchedOff,
    };
    struct Answer {
        Verdict verdict = Verdict::undecided;
        /// What it said, where it said more than yes or no.
        std::string reason;
    };
    using Handler = std::function<void(const Answer&)>;

    virtual ~MicrophonePortal() = default;

    /// Finds out whether it decides, and asks nothing of the user. Never answers granted or denied.
    virtual void look(Handler handler) = 0;
    /// Asks for the microphone, for which the user may be asked; undecided when that question was lost.
    virtual void ask(Handler handler) = 0;
};

/// The portal on the session bus.
class DBusMicrophonePortal : public QObject, public MicrophonePortal {
    Q_OBJECT

public:
    /// bus is called at the first use: where there is no session bus, asking for it could start one.
    explicit DBusMicrophonePortal(std::function<QDBusConnection()> bus);

    void look(Handler handler) override;
    void ask(Handler handler) override;

    /// What an error in answer to a question says.
    [[nodiscard]] static Answer answerTo(const QDBusError& error);

private:
    [[nodiscard]] bool answersWithoutBus(const Handler& handler);
    [[nodiscard]] QDBusPendingCall accessDevice(unsigned processIdentifier, const QString& token,
                                                int patienceMilliseconds);

    const std::function<QDBusConnection()> bus_;
    int questions_ = 0;
};

/// By what a process can tell that it runs in a sandbox.
struct SandboxSigns {
    /// The content of /.flatpak-info, which Flatpak puts into each of its sandboxes.
    std::optional<std::string> flatpakInfo;
    /// The variables SNAP and SNAP_NAME. Programs that were started from within a snap inherit them.
    std::string snapFolder;
    std::string snapName;
    /// Of the running program's file.
    std::string executablePath;

    /// The signs of this process.
    [[nodiscard]] static SandboxSigns ofThisProcess();
};

/// The sandbox that a process runs in.
struct Sandbox {
    enum class Kind { none, flatpak, snap };

    [[nodiscard]] static Sandbox recognize(const SandboxSigns& signs);

    Kind kind = Kind::none;
    /// The one that the sandbox's own commands take; empty outside.
    std::string name;
    /// Whether the sound server's socket is there. Flatpak tells; a snap has to try.
    bool hasSoundSocket = true;

    bool operator==(const Sandbox&) const = default;
};

/// Whether this program may hear the microphone, in a sandbox and outside. Outside the sound server says.
/// Inside the desktop's portal says, where it has a say, and then the sound server. Main thread; never waits.
///
/// What the portal said holds while the program runs: nobody but the portal could say it again, and that
/// could ask the user.
class SandboxedMicrophone {
public:
    struct Services {
        SystemLog& log;
        MicrophonePortal& portal;
        /// What the sound server says, and what is wrong, in a sentence for the user.
        std::function<MicrophoneStatus()> serverStatus;
        std::function<std::string()> serverExplanation;
        /// Called when the portal has told something new.
        std::function<void()> changed;
    };

    /// Looks at the portal at once. The services outlive it.
    SandboxedMicrophone(Sandbox sandbox, Services services);

    /// As far as is known. Looks at the portal again meanwhile, which asks nothing of the user.
    [[nodiscard]] MicrophoneStatus status();

    /// What is wrong and how to mend it, in sentences for the user; empty when nothing is, or when asking
    /// comes first.
    [[nodiscard]] std::string explanation() const;

    /// Asks the portal, where it has a say. Whoever asks while a question is open hears the same answer.
    /// isRefused: the user has just said no.
    void ask(std::function<void(bool isRefused)> whenAnswered);

    /// Whether the portal has told if it has a say, where there could be one.
    [[nodiscard]] bool isKnown() const { return verdict_.has_value() || !isPortalConcerned(); }

private:
    [[nodiscard]] bool isPortalConcerned() const;
    [[nodiscard]] bool isSaid(MicrophonePortal::Verdict verdict) const { return verdict_ == verdict; }
    void look();
    void learn(const MicrophonePortal::Answer& answer);

    const Sandbox sandbox_;
    const Services services_;
    /// None until the portal has told for the first time.
    std::optional<MicrophonePortal::Verdict> verdict_;
    bool isLooking_ = false;
    std::vector<std::function<void(bool)>> waiting_;
    Lifetime lifetime_;
};

} // namespace tovik

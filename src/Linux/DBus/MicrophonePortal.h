// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QDBusConnection>
#include <QDBusError>
#include <QDBusPendingCall>
#include <QObject>
#include <QString>

#include <functional>
#include <string>

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

} // namespace tovik

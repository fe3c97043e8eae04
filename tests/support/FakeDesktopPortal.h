// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QString>
#include <QStringList>

#include <optional>
#include <vector>

namespace tovik::test {

/// A desktop's portal on the session bus, as far as it tells of devices. Questions for a process that there
/// is are put to the user, who is the test.
class FakeDesktopPortal : public QDBusVirtualObject {
public:
    struct Call {
        unsigned processIdentifier;
        QStringList devices;
    };

    FakeDesktopPortal();
    ~FakeDesktopPortal() override;

    /// Every call from now on fails with this error.
    void refuse(const QString& name, const QString& message);
    /// Replies with a path of its own choice, as portals of old do.
    void chooseOwnPaths() { choosesOwnPaths_ = true; }
    /// From now on the user's answer is sent before the reply to the question.
    void answerAtOnce(unsigned response) { answerAtOnce_ = response; }

    /// The user answers the last question.
    void answer(unsigned response);

    [[nodiscard]] const std::vector<Call>& calls() const { return calls_; }
    /// How often the user was asked.
    [[nodiscard]] int dialogs() const { return dialogs_; }

    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override;
    QString introspect(const QString& path) const override;

private:
    QDBusConnection bus_;
    std::vector<Call> calls_;
    QString errorName_;
    QString errorMessage_;
    bool choosesOwnPaths_ = false;
    std::optional<unsigned> answerAtOnce_;
    QString questionPath_;
    int dialogs_ = 0;
};

} // namespace tovik::test

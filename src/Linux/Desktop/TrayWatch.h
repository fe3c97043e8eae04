// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QAbstractNativeEventFilter>
#include <QObject>

#include <cstdint>
#include <functional>
#include <string>

namespace tovik {

/// Finds out whether this desktop has a tray, and notices when one appears. Main thread, after the
/// QGuiApplication. Asks the desktop itself: Qt would settle at the first question for all time.
class TrayWatch : public QObject, public QAbstractNativeEventFilter {
    Q_OBJECT

public:
    explicit TrayWatch(std::function<void()> trayAppeared);
    ~TrayWatch() override;

    /// A panel that shows status notifier items.
    [[nodiscard]] bool hasNotifierHost() const;
    /// A panel that takes windows in, as X11 has it.
    [[nodiscard]] bool hasWindowTray() const;

    bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* result) override;

private slots:
    void notifierHostRegistered();

private:
    void watchBus();
    void watchDisplay();

    const std::function<void()> trayAppeared_;
    /// X11 atoms; 0 without an X display.
    std::uint32_t traySelection_ = 0;
    std::uint32_t managerMessage_ = 0;
};

} // namespace tovik

// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "support/EventLoop.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTimer>

namespace tovik::test {

bool runUntil(const std::function<bool()>& condition, std::chrono::milliseconds patience) {
    // Conditions may depend on other programs, of which the event loop hears nothing.
    QTimer lookAgain;
    lookAgain.start(std::chrono::milliseconds(2));
    QElapsedTimer elapsed;
    elapsed.start();
    while (!condition()) {
        if (elapsed.hasExpired(patience.count())) {
            return false;
        }
        QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
    }
    return true;
}

void runPendingEvents() {
    QCoreApplication::processEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

} // namespace tovik::test

// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Linux/Desktop/DisplayLoss.h"

#include <QCoreApplication>
#include <QString>
#include <QThread>
#include <QtGlobal>

#include <atomic>
#include <utility>

namespace tovik {

namespace {

/// What Qt says last. There is no other sign.
constexpr auto kLastMessage = "The X11 connection broke";

/// A message handler knows nothing but globals. The first is for the main thread; messages come on any.
std::function<void()> onLoss;
std::atomic<QtMessageHandler> handlerBefore = nullptr;

void look(QtMsgType type, const QMessageLogContext& context, const QString& message) {
    if (const auto before = handlerBefore.load()) {
        before(type, context, message);
    }
    const auto* application = QCoreApplication::instance();
    if (message.startsWith(QLatin1String(kLastMessage)) && application != nullptr &&
        application->thread() == QThread::currentThread()) {
        // Once: what the handler does may bring the message again.
        if (const auto handler = std::exchange(onLoss, nullptr)) {
            handler();
        }
    }
}

} // namespace

DisplayLoss::DisplayLoss(std::function<void()> handler) {
    onLoss = std::move(handler);
    handlerBefore = qInstallMessageHandler(look);
}

DisplayLoss::~DisplayLoss() {
    qInstallMessageHandler(handlerBefore);
    onLoss = nullptr;
}

} // namespace tovik

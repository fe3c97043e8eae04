// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Linux/Qt/DisplayLoss.h"

#include <QCoreApplication>
#include <QString>
#include <QThread>
#include <QtGlobal>

#include <utility>

namespace tovik {

namespace {

/// What Qt says last. There is no other sign.
constexpr auto kLastMessage = "The X11 connection broke";

/// A message handler knows nothing but globals. Both are for the main thread, save for reading the second,
/// which changes before there are other threads.
std::function<void()> onLoss;
QtMessageHandler handlerBefore = nullptr;

void look(QtMsgType type, const QMessageLogContext& context, const QString& message) {
    if (handlerBefore != nullptr) {
        handlerBefore(type, context, message);
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

// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Linux/Desktop/ProgramEnd.h"

#include <QGuiApplication>
#include <QSocketNotifier>
#include <QString>
#include <QThread>

#include <signal.h>
#include <sys/eventfd.h>
#include <unistd.h>
#include <xcb/xcb.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <cstdint>
#include <utility>

namespace tovik {

namespace {

constexpr std::array kSignals{SIGTERM, SIGINT, SIGHUP};

/// A signal handler knows nothing but globals.
std::atomic<int> arrivedFd = -1;
static_assert(std::atomic<int>::is_always_lock_free);

void noteArrival(int /*signal*/) {
    const int before = errno;
    const std::uint64_t one = 1;
    (void)!::write(arrivedFd, &one, sizeof one);
    // A terminal that is closed says so twice, through the shell and through the system, and a service
    // manager says it behind SIGTERM. That is no second wish.
    ::signal(SIGHUP, SIG_IGN);
    errno = before;
}

struct sigaction actionOf(int signal) {
    struct sigaction action {};
    ::sigaction(signal, nullptr, &action);
    return action;
}

/// A message handler knows nothing but globals. The first is for the main thread; messages come on any.
std::function<void()> onDisplayLoss;
std::atomic<QtMessageHandler> handlerBefore = nullptr;

bool isOnMainThread() {
    return qGuiApp != nullptr && qGuiApp->thread() == QThread::currentThread();
}

bool isDisplayConnectionBroken() {
    const auto* const x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    return x11 != nullptr && xcb_connection_has_error(x11->connection()) != 0;
}

/// Whatever Qt still says once its connection is broken, it says before it ends the process.
void hearOut(QtMsgType type, const QMessageLogContext& context, const QString& message) {
    if (const auto before = handlerBefore.load()) {
        before(type, context, message);
    }
    if (isOnMainThread() && onDisplayLoss && isDisplayConnectionBroken()) {
        // Once: what the handler does may bring further messages.
        std::exchange(onDisplayLoss, nullptr)();
    }
}

} // namespace

TerminationSignals::TerminationSignals(std::function<void()> handler)
    : arrived_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)),
      notifier_(std::make_unique<QSocketNotifier>(arrived_.get(), QSocketNotifier::Read)) {
    arrivedFd = arrived_.get();
    QObject::connect(notifier_.get(), &QSocketNotifier::activated, notifier_.get(),
                     [this, handler = std::move(handler)] {
                         std::uint64_t count = 0;
                         (void)!::read(arrived_.get(), &count, sizeof count);
                         handler();
                     });
    for (const int signal : kSignals) {
        if (actionOf(signal).sa_handler == SIG_IGN) {
            continue;
        }
        struct sigaction action {};
        action.sa_handler = noteArrival;
        action.sa_flags = static_cast<int>(SA_RESTART | SA_RESETHAND);
        sigemptyset(&action.sa_mask);
        ::sigaction(signal, &action, nullptr);
        taken_.push_back(signal);
    }
}

TerminationSignals::~TerminationSignals() {
    for (const int signal : taken_) {
        ::signal(signal, SIG_DFL);
    }
    arrivedFd = -1;
}

DisplayLoss::DisplayLoss(std::function<void()> handler) {
    onDisplayLoss = std::move(handler);
    handlerBefore = qInstallMessageHandler(hearOut);
}

DisplayLoss::~DisplayLoss() {
    qInstallMessageHandler(handlerBefore);
    onDisplayLoss = nullptr;
}

} // namespace tovik

// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Linux/X11/X11EventWatch.h"

#include "Linux/X11/X11Connection.h"

#include <QSocketNotifier>

#include <utility>

// After Qt: Xlib defines macros with everyday names.
#include <X11/Xlib.h>

namespace tovik {

X11EventWatch::X11EventWatch(X11Connection& connection, std::function<void(XEvent&)> handler)
    : connection_(connection),
      handler_(std::move(handler)),
      notifier_(std::make_unique<QSocketNotifier>(connection.descriptor(), QSocketNotifier::Read)) {
    QObject::connect(notifier_.get(), &QSocketNotifier::activated, notifier_.get(),
                     [this] { dispatchPending(); });
    // Requests made so far may have brought in events already.
    XFlush(connection_.display());
    QMetaObject::invokeMethod(
        notifier_.get(), [this] { dispatchPending(); }, Qt::QueuedConnection);
}

X11EventWatch::~X11EventWatch() = default;

void X11EventWatch::catchUp() {
    connection_.sync();
    dispatchPending();
}

void X11EventWatch::dispatchPending() {
    while (!connection_.broken() && XPending(connection_.display()) > 0) {
        XEvent event;
        XNextEvent(connection_.display(), &event);
        handler_(event);
    }
    if (connection_.broken()) {
        notifier_->setEnabled(false);
    }
}

} // namespace tovik

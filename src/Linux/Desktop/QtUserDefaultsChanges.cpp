// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Linux/Desktop/QtUserDefaultsChanges.h"

#include <QSocketNotifier>

#include <utility>
#include <vector>

namespace tovik {

QtUserDefaultsChanges::QtUserDefaultsChanges(const std::string& path, SystemLog& log) {
    auto watch = FileWatch::start(path);
    if (!watch) {
        log.printLine("[TovikVoice] " + watch.error().description +
                      "; settings that another program changes are not shown at once");
        return;
    }
    watch_.emplace(std::move(watch.value()));
    notifier_ = std::make_unique<QSocketNotifier>(watch_->fd(), QSocketNotifier::Read);
    QObject::connect(notifier_.get(), &QSocketNotifier::activated, notifier_.get(),
                     [this] { takeChanges(); });
}

QtUserDefaultsChanges::~QtUserDefaultsChanges() = default;

Subscription QtUserDefaultsChanges::observe(std::function<void()> handler) {
    const int number = ++lastHandler_;
    handlers_->emplace(number, std::move(handler));
    return Subscription([handlers = std::weak_ptr(handlers_), number] {
        if (const auto remaining = handlers.lock()) {
            remaining->erase(number);
        }
    });
}

void QtUserDefaultsChanges::takeChanges() {
    if (!watch_->takeChanges()) {
        return;
    }
    std::vector<int> numbers;
    for (const auto& [number, handler] : *handlers_) {
        numbers.push_back(number);
    }
    // A handler may drop tokens, its own among them.
    const auto handlers = handlers_;
    for (const int number : numbers) {
        if (const auto found = handlers->find(number); found != handlers->end()) {
            const auto handler = found->second;
            handler();
        }
    }
}

} // namespace tovik

// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/SystemLog.h"

#include <mutex>
#include <string_view>

namespace tovik {

/// A log that may be gone by the time a thread that was left behind wants to write. Any thread.
class SharedLog {
public:
    explicit SharedLog(SystemLog& log) : log_(&log) {}

    void logLine(std::string_view line) {
        const std::lock_guard lock(mutex_);
        if (log_ != nullptr) {
            log_->logLine(line);
        }
    }

    /// No line is written from now on.
    void close() {
        const std::lock_guard lock(mutex_);
        log_ = nullptr;
    }

private:
    std::mutex mutex_;
    SystemLog* log_;
};

} // namespace tovik

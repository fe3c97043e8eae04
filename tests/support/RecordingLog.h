// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/SystemLog.h"

#include <mutex>
#include <string>
#include <vector>

namespace tovik::test {

/// Keeps the program's log lines for a test to read.
class RecordingLog : public SystemLog {
public:
    void printLine(std::string_view line) override {
        const std::lock_guard lock(mutex_);
        printed_.emplace_back(line);
    }
    void logLine(std::string_view line) override {
        const std::lock_guard lock(mutex_);
        logged_.emplace_back(line);
    }

    /// Lines of standard output.
    [[nodiscard]] std::vector<std::string> printed() const {
        const std::lock_guard lock(mutex_);
        return printed_;
    }
    /// Lines of the operating system's log.
    [[nodiscard]] std::vector<std::string> logged() const {
        const std::lock_guard lock(mutex_);
        return logged_;
    }

private:
    mutable std::mutex mutex_;
    std::vector<std::string> printed_;
    std::vector<std::string> logged_;
};

} // namespace tovik::test

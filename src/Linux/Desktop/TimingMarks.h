// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <fstream>
#include <mutex>
#include <string>
#include <string_view>

namespace tovik {

/// A file of moments, for measuring the program from outside: one line each, the monotonic clock in seconds
/// and a name. Any thread.
class TimingMarks {
public:
    explicit TimingMarks(const std::string& path);

    void mark(std::string_view name,
              std::chrono::steady_clock::time_point at = std::chrono::steady_clock::now());

private:
    std::mutex mutex_;
    std::ofstream file_;
};

} // namespace tovik

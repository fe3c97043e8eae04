// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Linux/Desktop/TimingMarks.h"

#include <iomanip>

namespace tovik {

TimingMarks::TimingMarks(const std::string& path) : file_(path, std::ios::app) {}

void TimingMarks::mark(std::string_view name, std::chrono::steady_clock::time_point at) {
    const std::chrono::duration<double> sinceBoot = at.time_since_epoch();
    const std::lock_guard lock(mutex_);
    file_ << std::fixed << std::setprecision(6) << sinceBoot.count() << ' ' << name << std::endl;
}

} // namespace tovik

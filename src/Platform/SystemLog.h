// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>

namespace tovik {

/// Where the program's lines go. Every line is one event; no line ends with a line feed. Any thread.
class SystemLog {
public:
    virtual ~SystemLog() = default;

    /// A line for standard output; it stands there before the call returns.
    virtual void printLine(std::string_view line) = 0;

    /// A line for the log of the operating system.
    virtual void logLine(std::string_view line) = 0;
};

} // namespace tovik

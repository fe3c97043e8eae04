// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/SystemLog.h"

#include <iostream>

namespace tovik {

/// The log of a program whose standard output is its result.
class ErrorLog : public SystemLog {
public:
    void printLine(std::string_view line) override { std::cerr << line << std::endl; }
    void logLine(std::string_view line) override { printLine(line); }
};

} // namespace tovik

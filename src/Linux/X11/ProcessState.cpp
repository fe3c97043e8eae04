// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Linux/X11/ProcessState.h"

#include <fstream>
#include <string>

namespace tovik {

bool isProcessRunning(std::int64_t process) {
    std::ifstream file("/proc/" + std::to_string(process) + "/stat");
    std::string line;
    if (process <= 0 || !std::getline(file, line)) {
        return false;
    }
    // The name in parentheses may itself hold parentheses; the state follows it.
    const auto end = line.rfind(')');
    const char state = end == std::string::npos || end + 2 >= line.size() ? '?' : line[end + 2];
    return state != 'Z' && state != 'X';
}

} // namespace tovik

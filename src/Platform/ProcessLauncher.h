// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/Result.h"

#include <string>
#include <vector>

namespace tovik {

/// Starts other programs, which outlive this one. Main thread.
class ProcessLauncher {
public:
    virtual ~ProcessLauncher() = default;

    virtual Result<void> launch(const std::string& executable, const std::vector<std::string>& arguments) = 0;
};

} // namespace tovik

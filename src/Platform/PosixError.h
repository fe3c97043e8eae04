// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/Result.h"

#include <string>
#include <system_error>

namespace tovik {

/// The failure of a system call as a sentence: what was tried, and the system's reason. The code is errno.
[[nodiscard]] inline Error posixError(int code, const std::string& attempt) {
    return {"POSIX", code, attempt + ": " + std::generic_category().message(code)};
}

} // namespace tovik

// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Linux/Storage/PosixError.h"

#include <system_error>

namespace tovik {

Error posixError(int code, const std::string& attempt) {
    return {"POSIX", code, attempt + ": " + std::generic_category().message(code)};
}

} // namespace tovik

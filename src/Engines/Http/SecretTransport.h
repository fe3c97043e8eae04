// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace tovik {

/// Whether what is sent to a host stays on this machine. host: a name or an address, without brackets.
[[nodiscard]] bool isThisMachine(const std::string& host);

/// Whether a key may be sent to a host: nobody on the way must be able to read it.
[[nodiscard]] inline bool isSafeForKeys(bool isEncrypted, const std::string& host) {
    return isEncrypted || isThisMachine(host);
}

} // namespace tovik

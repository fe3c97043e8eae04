// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>

namespace tovik {

/// The clipboard from which other programs paste. Main thread.
class Pasteboard {
public:
    virtual ~Pasteboard() = default;

    /// Drops what the clipboard held and offers this text (UTF-8, taken as it stands, NUL included) until
    /// another program takes the clipboard over.
    virtual void replaceContents(std::string_view text) = 0;
};

} // namespace tovik

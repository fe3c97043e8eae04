// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace tovik {

/// Gives an address or a path to the desktop's opener, which goes on by itself. False when there is no
/// opener, or when the text is empty or would be an option to it.
bool openOnDesktop(const std::string& addressOrPath);

} // namespace tovik

// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tovik {

/// The file of this process, without links; empty when the system does not tell.
[[nodiscard]] std::string runningExecutable();

/// Whether a program of this name can be started by way of a search path such as "/usr/bin:/bin".
[[nodiscard]] bool isInSearchPath(const std::string& program, std::string_view searchPath);

/// The names in a list such as XDG_CURRENT_DESKTOP's "ubuntu:GNOME".
[[nodiscard]] std::vector<std::string> desktopNames(std::string_view currentDesktop);

} // namespace tovik

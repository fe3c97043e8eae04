// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/InstallLocations.h"

#include <string>

namespace tovik {

[[nodiscard]] InstallLocations macInstallLocations();

/// installedExecutable: where the system's package puts the program.
[[nodiscard]] InstallLocations linuxInstallLocations(const std::string& installedExecutable);

/// Whether a program at this path must be installed before the desktop remembers what it is allowed to do.
/// Plain comparison of text, letter by letter; links are not followed.
[[nodiscard]] bool isUninstalledLocation(const InstallLocations& locations, const std::string& path,
                                         const std::string& homeDirectory);

} // namespace tovik

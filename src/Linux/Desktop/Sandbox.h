// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>

namespace tovik {

/// By what a process can tell that it runs in a sandbox.
struct SandboxSigns {
    /// The content of /.flatpak-info, which Flatpak puts into each of its sandboxes.
    std::optional<std::string> flatpakInfo;
    /// The variables SNAP and SNAP_NAME. Programs that were started from within a snap inherit them.
    std::string snapFolder;
    std::string snapName;
    /// Of the running program's file.
    std::string executablePath;

    /// The signs of this process.
    [[nodiscard]] static SandboxSigns ofThisProcess();
};

/// The sandbox that a process runs in.
struct Sandbox {
    enum class Kind { none, flatpak, snap };

    [[nodiscard]] static Sandbox recognise(const SandboxSigns& signs);

    Kind kind = Kind::none;
    /// The one that the sandbox's own commands take; empty outside.
    std::string name;
    /// Whether the sound server's socket is there. Flatpak tells; a snap has to try.
    bool hasSoundSocket = true;

    bool operator==(const Sandbox&) const = default;
};

} // namespace tovik

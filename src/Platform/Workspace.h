// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/Result.h"
#include "Platform/Subscription.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tovik {

/// Another running program, as seen at one moment.
struct RunningApplication {
    /// The program's own id; absent when it gives none.
    std::optional<std::string> bundleIdentifier;
    std::int64_t processIdentifier = 0;
    /// The name people know it by; may be absent.
    std::optional<std::string> localizedName;
    /// The window that was in front at that moment, 0 when unknown. A paste goes back to it.
    std::uint64_t window = 0;

    bool operator==(const RunningApplication&) const = default;
};

/// Bit set of how to activate an application.
inline constexpr unsigned kActivateAllWindows = 1;
inline constexpr unsigned kActivateIgnoringOtherApps = 2;

/// The desktop as this program sees it. Main thread throughout.
class Workspace {
public:
    virtual ~Workspace() = default;

    [[nodiscard]] virtual std::optional<RunningApplication> frontmostApplication() const = 0;

    /// This program, as frontmostApplication would tell of it.
    [[nodiscard]] virtual RunningApplication currentApplication() const = 0;

    /// Whether the process is still there.
    [[nodiscard]] virtual bool isRunning(const RunningApplication& application) const = 0;

    /// Tells of every application that comes to the front, this program included; nothing of the moments in
    /// between in which nothing is in front.
    [[nodiscard]] virtual Subscription
    onActivation(std::function<void(const RunningApplication&)> handler) = 0;

    /// The user went to another desktop.
    [[nodiscard]] virtual Subscription onActiveSpaceChanged(std::function<void()> handler) = 0;

    /// Gives up the front by hiding this program's windows.
    virtual void hideSelf() = 0;
    virtual void deactivateSelf() = 0;

    /// Brings the application's remembered window to the front, or one of its windows when none is
    /// remembered. False when nothing could be asked for, as when that window is gone; true says only that
    /// the desktop was asked.
    virtual bool activate(const RunningApplication& application, unsigned options) = 0;

    /// Hands an address to the desktop. False when nothing takes it.
    virtual bool openUrl(const std::string& address) = 0;
    /// Shows a folder or opens a file with its program.
    virtual bool openFile(const std::string& path) = 0;
};

/// The clipboard from which other programs paste. Main thread.
class Pasteboard {
public:
    virtual ~Pasteboard() = default;

    /// Drops what the clipboard held and offers this text (UTF-8, taken as it stands, NUL included) until
    /// another program takes the clipboard over.
    virtual void replaceContents(std::string_view text) = 0;
};

/// Starts other programs, which outlive this one. Main thread.
class ProcessLauncher {
public:
    virtual ~ProcessLauncher() = default;

    virtual Result<void> launch(const std::string& executable, const std::vector<std::string>& arguments) = 0;
};

} // namespace tovik

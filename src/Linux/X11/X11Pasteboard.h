// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/Workspace.h"

#include <chrono>
#include <memory>
#include <string>

namespace tovik {

class SystemLog;

/// Holds the text in the clipboard of an X session and in its primary selection: some programs paste from the
/// one and some from the other. A thread of its own answers them, on a connection of its own, whatever the
/// main thread is doing. The text goes with this object, unless the desktop has a clipboard manager, which is
/// then given it.
class X11Pasteboard : public Pasteboard {
public:
    struct Patience {
        /// With a program that fetches a long text piece by piece, for each piece.
        std::chrono::milliseconds piece{10000};
        /// At the end, with the clipboard manager.
        std::chrono::milliseconds manager{5000};
    };

    /// The log outlives this object. An empty display name means the session's display.
    explicit X11Pasteboard(SystemLog& log) : X11Pasteboard(log, {}, Patience()) {}
    X11Pasteboard(SystemLog& log, const std::string& displayName, Patience patience);
    ~X11Pasteboard() override;

    /// Returns when the text is there for others.
    void replaceContents(std::string_view text) override;

private:
    class Owner;

    SystemLog& log_;
    /// Without a display there is none.
    std::unique_ptr<Owner> owner_;
};

} // namespace tovik

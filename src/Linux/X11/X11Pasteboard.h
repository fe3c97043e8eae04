// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/Workspace.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace tovik {

class SystemLog;

/// Holds the text in the clipboard of an X session. A thread of its own answers those who paste, on a
/// connection of its own, whatever the main thread is doing. The text goes with this object, unless the
/// desktop has a clipboard manager, which is then given it.
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

    /// Returns when the text is there for others; during a paste, they get it afterwards.
    void replaceContents(std::string_view text) override;

    /// What was put there last; nothing before the first time.
    [[nodiscard]] const std::optional<std::string>& contents() const { return contents_; }

    using Paste = std::uint64_t;
    enum class From { clipboard, clipboardAndPrimary };

    /// For whoever presses paste keys: from now on, until endPaste(), others get this text, whatever is put
    /// there meanwhile. Some programs paste from the primary selection; all others are spared its change,
    /// since they let go of the text that is marked in them. Returns when the text is there; nothing, and no
    /// paste has begun, when it could not be put there.
    [[nodiscard]] std::optional<Paste> beginPaste(const std::string& text, From from);
    /// What was put there meanwhile is what others get now, unless somebody has copied since.
    void endPaste();

    /// Whether this text was put there last and nobody has copied since.
    [[nodiscard]] bool holds(const std::string& text);

    /// Called on another thread each time that a window has been given the whole text of a paste; an empty
    /// function ends it, and when this returns, the former one is not being called.
    void setOnFetched(std::function<void(Paste paste, unsigned long requestor)> onFetched);

private:
    class Owner;

    bool offer(const std::string& text, From from);

    SystemLog& log_;
    std::optional<std::string> contents_;
    std::optional<std::string> pasted_;
    Paste pastes_ = 0;
    /// Without a display there is none.
    std::unique_ptr<Owner> owner_;
};

} // namespace tovik

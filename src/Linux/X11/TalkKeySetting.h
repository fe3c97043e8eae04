// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/Clock.h"

#include <optional>
#include <string>
#include <vector>

namespace tovik {

class SystemLog;
class UserDefaults;

/// Which key the user talks with: Right Control, and the Fn key of those keyboards that send one, unless the
/// user default "platform.talkKey" names another by its keysym name. Read anew at each use. Main thread.
class TalkKeySetting {
public:
    /// Both outlive this object.
    TalkKeySetting(const UserDefaults& defaults, SystemLog& log);

    /// The keysym among these by which a key is the talk key; nothing when it is not. A setting that names
    /// no key is logged once and the default holds.
    [[nodiscard]] std::optional<unsigned long> match(const std::vector<unsigned long>& keysymsOfKey);

    /// How long the talk key is held back: "platform.talkKeyGuard" seconds (at most 2), 0.15 by default,
    /// where the key is a modifier; not at all otherwise.
    [[nodiscard]] Seconds guardTime(unsigned long keysym) const;

    /// For the user: the keysym names of the talk key.
    [[nodiscard]] std::string description();

private:
    [[nodiscard]] const std::vector<unsigned long>& current();

    const UserDefaults& defaults_;
    SystemLog& log_;
    std::optional<std::string> known_;
    std::vector<unsigned long> keysyms_;
};

} // namespace tovik

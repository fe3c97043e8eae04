// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Linux/X11/TalkKeySetting.h"

#include "Platform/SystemLog.h"
#include "Platform/UserDefaults.h"

#include <X11/Xlib.h>
#include <X11/Xutil.h>

#include <algorithm>
#include <cmath>

namespace tovik {
namespace {

constexpr Seconds kDefaultGuardTime{0.15};
/// Beyond this the talk key would seem dead.
constexpr Seconds kLongestGuardTime{2.0};

const std::vector<unsigned long> kDefaultKeysyms{XK_Control_R, XStringToKeysym("XF86Fn")};

/// The stored value as text, also where it is no text: for the log, and to notice a change.
std::optional<std::string> storedText(const UserDefaults& defaults) {
    const auto stored = defaults.value("platform.talkKey");
    if (!stored) {
        return std::nullopt;
    }
    return stored->is_string() ? stored->get<std::string>()
                               : stored->dump(-1, ' ', true, nlohmann::json::error_handler_t::replace);
}

} // namespace

TalkKeySetting::TalkKeySetting(const UserDefaults& defaults, SystemLog& log)
    : defaults_(defaults),
      log_(log),
      keysyms_(kDefaultKeysyms) {}

std::optional<unsigned long> TalkKeySetting::match(const std::vector<unsigned long>& keysymsOfKey) {
    const auto& wanted = current();
    const auto found =
        std::find_first_of(keysymsOfKey.begin(), keysymsOfKey.end(), wanted.begin(), wanted.end());
    return found == keysymsOfKey.end() ? std::nullopt : std::optional(*found);
}

Seconds TalkKeySetting::guardTime(unsigned long keysym) const {
    if (!IsModifierKey(keysym)) {
        return Seconds::zero();
    }
    const auto stored = defaults_.number("platform.talkKeyGuard");
    if (!stored || !std::isfinite(*stored) || *stored < 0) {
        return kDefaultGuardTime;
    }
    return std::min(Seconds(*stored), kLongestGuardTime);
}

std::string TalkKeySetting::description() {
    std::string names;
    for (const auto keysym : current()) {
        const char* const name = XKeysymToString(keysym);
        names += (names.empty() ? "" : " or ") + std::string(name != nullptr ? name : "?");
    }
    return names;
}

const std::vector<unsigned long>& TalkKeySetting::current() {
    auto stored = storedText(defaults_);
    if (stored == known_) {
        return keysyms_;
    }
    known_ = std::move(stored);
    keysyms_ = kDefaultKeysyms;
    if (known_) {
        if (const KeySym named = XStringToKeysym(known_->c_str()); named != NoSymbol) {
            keysyms_ = {named};
        } else {
            log_.printLine("[TovikVoice] No key is named \"" + *known_ +
                           "\" (platform.talkKey); the talk key is " + description());
        }
    }
    return keysyms_;
}

} // namespace tovik

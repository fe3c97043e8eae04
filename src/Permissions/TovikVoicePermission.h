// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <string>

namespace tovik {

/// What the user must allow before a dictation works from end to end.
enum class TovikVoicePermission { microphone, speech, accessibility };

/// In the order in which they are shown and asked for.
inline constexpr std::array<TovikVoicePermission, 3> kAllPermissions{
    TovikVoicePermission::microphone, TovikVoicePermission::speech, TovikVoicePermission::accessibility};

[[nodiscard]] std::string rawValue(TovikVoicePermission permission);
[[nodiscard]] std::string title(TovikVoicePermission permission);
[[nodiscard]] std::string subtitle(TovikVoicePermission permission);
[[nodiscard]] std::string symbolName(TovikVoicePermission permission);

} // namespace tovik

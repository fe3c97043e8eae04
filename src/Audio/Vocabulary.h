// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <string>
#include <string_view>
#include <vector>

namespace tovik {

/// Terms that every recogniser is asked to favour: names that people say and no dictionary holds.
inline constexpr std::array<std::string_view, 15> kBuiltinVocabulary{
    "Tovik",   "Tovik Record", "GitHub", "Slack",  "Zoom",    "Notion",  "Figma",   "Jira",
    "Dropbox", "Salesforce",   "Stripe", "Trello", "Spotify", "Discord", "LinkedIn"};

/// The built-in terms and then the user's own, each once.
[[nodiscard]] std::vector<std::string> contextualStrings(const std::vector<std::string>& customTerms);

} // namespace tovik

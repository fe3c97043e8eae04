// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Speech/History/TranscriptTitle.h"

#include "Speech/Text/CharacterClasses.h"
#include "Speech/Text/UserCharacters.h"

#include <algorithm>

namespace tovik {

namespace {

constexpr std::size_t kKeptCharacters = 42;

} // namespace

std::string transcriptTitle(std::string_view text) {
    std::string line(text);
    std::replace(line.begin(), line.end(), '\n', ' ');
    const auto whole = trimmed(std::string_view(line));
    auto title = firstCharacters(whole, kKeptCharacters);
    if (title.size() < whole.size()) {
        title += "...";
    }
    return title;
}

} // namespace tovik

// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Speech/History/TranscriptHistoryFilter.h"

#include "Speech/Text/CharacterClasses.h"
#include "Speech/Text/Utf16.h"

namespace tovik {

namespace {

/// How many texts may be remembered that have left the history.
constexpr std::size_t kMostForgotten = 100;

std::string lowerCasedUtf8(std::string_view utf8) {
    return toUtf8(lowerCased(toUtf16(utf8)));
}

} // namespace

std::vector<FilteredHistoryEntry>
TranscriptHistoryFilter::apply(const std::vector<TranscriptHistoryEntry>& entries, std::string_view query) {
    if (lowerCasedTexts_.size() > entries.size() + kMostForgotten) {
        lowerCasedTexts_.clear();
    }
    const auto wanted = lowerCasedUtf8(trimmed(query));
    std::vector<FilteredHistoryEntry> found;
    for (std::size_t index = 0; index < entries.size(); ++index) {
        const auto& entry = entries[index];
        if (wanted.empty() || lowerCasedText(entry.text).find(wanted) != std::string::npos) {
            found.push_back({index, entry});
        }
    }
    return found;
}

const std::string& TranscriptHistoryFilter::lowerCasedText(const std::string& text) {
    auto known = lowerCasedTexts_.find(text);
    if (known == lowerCasedTexts_.end()) {
        known = lowerCasedTexts_.emplace(text, lowerCasedUtf8(text)).first;
    }
    return known->second;
}

} // namespace tovik

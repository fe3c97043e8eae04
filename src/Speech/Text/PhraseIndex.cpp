// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Speech/Text/PhraseIndex.h"

#include "Speech/Text/CharacterClasses.h"
#include "Speech/Text/FoldedText.h"

#include <algorithm>

namespace tovik {

namespace {

constexpr char16_t kAsciiEnd = 0x80;

} // namespace

PhraseIndex::PhraseIndex(const std::vector<std::u16string_view>& phrases) {
    entries_.reserve(phrases.size());
    for (std::uint32_t number = 0; number < phrases.size(); ++number) {
        if (phrases[number].empty()) {
            emptyPhrases_.push_back(number);
        } else {
            entries_.push_back({std::u16string(FoldedText(phrases[number]).folded()), number});
        }
    }
    std::sort(entries_.begin(), entries_.end(),
              [](const Entry& a, const Entry& b) { return a.folded < b.folded; });
    for (char16_t unit = 0; unit <= kAsciiEnd; ++unit) {
        const auto start = std::partition_point(entries_.begin(), entries_.end(), [unit](const Entry& entry) {
            return entry.folded.front() < unit;
        });
        asciiStarts_.push_back(static_cast<std::uint32_t>(start - entries_.begin()));
    }
}

std::vector<std::uint32_t> PhraseIndex::candidates(std::u16string_view text, std::uint32_t first) const {
    std::vector<std::uint32_t> found;
    std::copy_if(emptyPhrases_.begin(), emptyPhrases_.end(), std::back_inserter(found),
                 [first](std::uint32_t number) { return number >= first; });
    if (!entries_.empty()) {
        const FoldedText foldedText(text);
        forEachWordBoundary(text, [&](std::size_t position) {
            appendPhrasesAt(foldedText.folded().substr(foldedText.foldedPosition(position)), first, found);
        });
    }
    std::sort(found.begin(), found.end());
    found.erase(std::unique(found.begin(), found.end()), found.end());
    return found;
}

void PhraseIndex::appendPhrasesAt(std::u16string_view foldedText, std::uint32_t first,
                                  std::vector<std::uint32_t>& found) const {
    auto begin = entries_.begin();
    auto end = entries_.end();
    std::size_t depth = 0;
    if (foldedText.front() < kAsciiEnd) {
        end = begin + asciiStarts_[foldedText.front() + 1U];
        begin += asciiStarts_[foldedText.front()];
        depth = 1;
    }
    // All entries between begin and end agree with the text in their first `depth` units.
    while (begin != end) {
        for (; begin != end && begin->folded.size() == depth; ++begin) {
            if (begin->number >= first) {
                found.push_back(begin->number);
            }
        }
        if (depth == foldedText.size()) {
            return;
        }
        const auto unit = foldedText[depth];
        begin =
            std::partition_point(begin, end, [=](const Entry& entry) { return entry.folded[depth] < unit; });
        end =
            std::partition_point(begin, end, [=](const Entry& entry) { return entry.folded[depth] == unit; });
        ++depth;
    }
}

} // namespace tovik

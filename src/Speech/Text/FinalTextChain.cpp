// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Speech/Text/FinalTextChain.h"

#include "Speech/Text/PhraseReplacer.h"
#include "Speech/Text/Unicode.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <nlohmann/json.hpp>
#include <utility>
#include <vector>

namespace tovik {

namespace {

/// Default lists of earlier days; whoever has one of them never chose it.
constexpr std::array<std::string_view, 2> kStaleLists{
    "you know, I mean, kind of, sort of, um, uh, erm, hmm",
    "you know, i mean, kind of, sort of, um, uh, erm, hmm",
};

bool countsAsUnset(std::string_view list) {
    return list.empty() || std::find(kStaleLists.begin(), kStaleLists.end(), list) != kStaleLists.end();
}

std::vector<PhraseReplacer::Rule> removalsOf(std::string_view list) {
    std::vector<PhraseReplacer::Rule> removals;
    const auto utf16 = toUtf16(list);
    for (const auto piece : pieces(utf16, u',')) {
        if (const auto word = trimmed(piece); !word.empty()) {
            removals.push_back({std::u16string(word), u""});
        }
    }
    return removals;
}

/// Runs of spaces become one, white space before , . ! ? ; : goes, and so does white space at both ends.
std::u16string tidied(std::u16string_view text) {
    constexpr std::u16string_view kMarks = u",.!?;:";
    const auto single = withSingle(u' ', text);
    std::u16string result;
    for (const auto unit : single) {
        if (kMarks.find(unit) != std::u16string_view::npos) {
            while (!result.empty() && isWhiteSpace(result.back())) {
                result.pop_back();
            }
        }
        result += unit;
    }
    return std::u16string(trimmed(std::u16string_view(result)));
}

} // namespace

FillerWords::FillerWords(UserDefaults& defaults) : defaults_(defaults) {}

bool FillerWords::cleanupEnabled() const {
    return defaults_.boolean(removeKey).value_or(false);
}

std::string FillerWords::fillerWords() {
    const auto stored = defaults_.string(listKey);
    if (stored && countsAsUnset(trimmed(std::string_view(*stored)))) {
        defaults_.set(listKey, std::string(defaultList));
    }
    return effectiveList();
}

std::string FillerWords::saveFillerWords(std::string_view typed) {
    const auto list = trimmed(typed);
    defaults_.set(listKey, toUtf8(toUtf16(list.empty() ? defaultList : list)));
    return fillerWords();
}

std::string FillerWords::removeConfiguredFillerWords(std::string_view text) const {
    if (!cleanupEnabled()) {
        return std::string(text);
    }
    auto utf16 = toUtf16(text);
    removeConfiguredFillerWords(utf16);
    return toUtf8(utf16);
}

void FillerWords::removeConfiguredFillerWords(std::u16string& text) const {
    if (!cleanupEnabled()) {
        return;
    }
    auto removals = removalsOf(effectiveList());
    // Removing makes no text grow, so it always succeeds.
    if (!removals.empty() && PhraseReplacer(std::move(removals)).apply(text)) {
        text = tidied(text);
    }
}

std::string FillerWords::effectiveList() const {
    const auto stored = defaults_.string(listKey).value_or("");
    const auto list = trimmed(std::string_view(stored));
    return std::string(countsAsUnset(list) ? defaultList : list);
}

namespace {

std::u16string withSpaceAfter(char16_t mark, std::u16string_view text) {
    std::u16string result;
    for (std::size_t i = 0; i < text.size();) {
        result += text[i];
        if (text[i++] != mark || i == text.size()) {
            continue;
        }
        const auto [next, length] = characterAt(text, i);
        if (!isWhiteSpace(next)) {
            // The character that follows belongs to this place, so that of "!!!" only the first mark is
            // followed by a space.
            result.append(1, u' ').append(text, i, length);
            i += length;
        }
    }
    return result;
}

} // namespace

FinalTextChain::FinalTextChain(UserDefaults& defaults, SystemLog& log, std::string_view locale)
    : fillerWords_(defaults),
      formatter_(defaults, log, locale) {}

FinalTextChain::FinalTextChain(UserDefaults& defaults, SystemLog& log)
    : FinalTextChain(defaults, log, numberLocale([](const char* name) { return std::getenv(name); })) {}

std::string FinalTextChain::processTranscription(std::string_view text) const {
    if (text.empty()) {
        return {};
    }
    auto utf16 = withSpacedPunctuation(toUtf16(text));
    fillerWords_.removeConfiguredFillerWords(utf16);
    formatter_.apply(utf16);
    return toUtf8(utf16);
}

std::u16string withSpacedPunctuation(std::u16string_view text) {
    auto result = withSingle(u'.', text);
    for (const auto mark : {u'.', u'!', u'?', u':', u';', u','}) {
        result = withSpaceAfter(mark, result);
    }
    return withSingle(u' ', result);
}

std::string numberLocale(const std::function<const char*(const char*)>& environment) {
    for (const auto* name : {"LC_ALL", "LC_NUMERIC", "LANG"}) {
        const auto* value = environment(name);
        if (value != nullptr && *value != '\0') {
            return value;
        }
    }
    return "";
}

} // namespace tovik

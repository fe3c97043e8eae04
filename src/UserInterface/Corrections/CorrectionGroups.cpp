// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/Corrections/CorrectionGroups.h"

#include <map>

namespace tovik {

namespace {

constexpr char kUnitSeparator = '\x1f';

} // namespace

std::vector<CorrectionGroup> correctionGroups(const TranscriptionDictionary::Mapping& mapping) {
    // Both maps are in the order of bytes, which for UTF-8 is that of the characters.
    std::map<std::string_view, std::vector<std::string>> byReplacement;
    for (const auto& [heard, replacement] : mapping) {
        byReplacement[replacement].push_back(heard);
    }
    std::vector<CorrectionGroup> groups;
    groups.reserve(byReplacement.size());
    for (auto& [replacement, heardValues] : byReplacement) {
        groups.push_back({std::move(heardValues), std::string(replacement)});
    }
    return groups;
}

std::string freeHeardPhrase(const TranscriptionDictionary::Mapping& mapping, std::string_view base) {
    std::string phrase(base);
    for (int number = 2; mapping.contains(phrase); ++number) {
        phrase = std::string(base) + " " + std::to_string(number);
    }
    return phrase;
}

std::string joinedHeardPhrases(const std::vector<std::string>& heardValues) {
    std::string joined;
    for (const auto& heard : heardValues) {
        if (!joined.empty()) {
            joined += kUnitSeparator;
        }
        joined += heard;
    }
    return joined;
}

std::vector<std::string> heardPhrasesIn(std::string_view identifier) {
    std::vector<std::string> phrases;
    while (!identifier.empty()) {
        const auto end = std::min(identifier.find(kUnitSeparator), identifier.size());
        if (end > 0) {
            phrases.emplace_back(identifier.substr(0, end));
        }
        identifier.remove_prefix(std::min(end + 1, identifier.size()));
    }
    return phrases;
}

} // namespace tovik

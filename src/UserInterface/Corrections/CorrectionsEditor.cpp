// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/Corrections/CorrectionsEditor.h"

#include "Audio/DictationLanguage.h"
#include "Speech/Text/Unicode.h"

#include <map>
#include <nlohmann/json.hpp>
#include <utility>

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

CorrectionsEditor::CorrectionsEditor(TranscriptionDictionary& dictionary, UserDefaults& defaults, View view)
    : dictionary_(dictionary),
      defaults_(defaults),
      view_(std::move(view)) {}

std::vector<CorrectionGroup> CorrectionsEditor::groups() const {
    return correctionGroups(dictionary_.getDictionary());
}

std::optional<std::string> CorrectionsEditor::takePendingCorrectionFocus() {
    return std::exchange(pendingCorrectionFocus_, std::nullopt);
}

void CorrectionsEditor::addCorrectionRow() {
    addHeardPhrase("new phrase", "Replacement", "Correction added");
}

void CorrectionsEditor::addHeardPhraseToCorrection(const std::string& identifier) {
    addHeardPhrase("variation", identifier, "Variation added");
}

void CorrectionsEditor::addHeardPhrase(std::string_view base, const std::string& replacement,
                                       const char* toast) {
    const auto heard = freeHeardPhrase(dictionary_.getDictionary(), base);
    dictionary_.setCorrection(heard, replacement);
    pendingCorrectionFocus_ = heard;
    reloadAndSay(toast);
}

void CorrectionsEditor::heardCorrectionFieldChanged(const std::string& identifier,
                                                    const std::string& corrected, std::string_view text) {
    const auto heard = trimmed(text);
    if (heard.empty()) {
        removeCorrectionPhrases({identifier});
        return;
    }
    dictionary_.replaceCorrection(identifier, heard, corrected);
    reloadAndSay("Correction saved");
}

void CorrectionsEditor::correctionFieldChanged(std::string_view identifier, std::string_view text) {
    const auto heardValues = heardPhrasesIn(identifier);
    const std::string corrected(trimmed(text));
    if (corrected.empty()) {
        removeCorrectionPhrases(heardValues);
        return;
    }
    if (!heardValues.empty()) {
        auto mapping = dictionary_.getDictionary();
        for (const auto& heard : heardValues) {
            mapping.insert_or_assign(heard, corrected);
        }
        dictionary_.setDictionary(std::move(mapping));
    }
    reloadAndSay("Correction saved");
}

void CorrectionsEditor::removeCorrectionRow(std::string_view identifier) {
    removeCorrectionPhrases(heardPhrasesIn(identifier));
}

void CorrectionsEditor::removeHeardPhrase(const std::string& identifier) {
    removeCorrectionPhrases({identifier});
}

void CorrectionsEditor::removeCorrectionPhrases(const std::vector<std::string>& heardValues) {
    auto mapping = dictionary_.getDictionary();
    for (const auto& heard : heardValues) {
        mapping.erase(heard);
    }
    dictionary_.setDictionary(std::move(mapping));
    reloadAndSay("Correction deleted");
}

void CorrectionsEditor::customLibraryChanged(std::string_view text) {
    defaults_.set(CustomVocabulary::vocabularyKey, std::string(text));
    dictionary_.updateFromDisplayString(text);
    reloadAndSay("Corrections saved");
}

void CorrectionsEditor::reloadAndSay(const char* toast) {
    view_.reloadCorrectionsUI();
    view_.showSavedToast(toast);
}

} // namespace tovik

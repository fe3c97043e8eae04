// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/Corrections/CorrectionsEditor.h"

#include "Speech/Text/CharacterClasses.h"
#include "Audio/CustomVocabulary.h"

#include <utility>

namespace tovik {

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

// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/UserDefaults.h"
#include "Speech/Text/TranscriptionDictionary.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tovik {

/// All phrases that are corrected to the same text.
struct CorrectionGroup {
    /// At least one.
    std::vector<std::string> heardValues;
    std::string corrected;

    bool operator==(const CorrectionGroup&) const = default;
};

/// The corrections as the editor shows them: by replacement, and in each group by heard phrase. The order is
/// that of the characters' code points: capitals come before small letters.
[[nodiscard]] std::vector<CorrectionGroup> correctionGroups(const TranscriptionDictionary::Mapping& mapping);

/// The base, or the first of "base 2", "base 3", ... that is no heard phrase yet.
[[nodiscard]] std::string freeHeardPhrase(const TranscriptionDictionary::Mapping& mapping,
                                          std::string_view base);

/// Heard phrases as one text, by which a control of a group knows them.
[[nodiscard]] std::string joinedHeardPhrases(const std::vector<std::string>& heardValues);

/// The phrases in such a text; empty ones are dropped.
[[nodiscard]] std::vector<std::string> heardPhrasesIn(std::string_view identifier);

/// What each control of the corrections editor does. Every edit is stored before the call returns; then the
/// view is asked to show the dictionary anew, and a toast says what happened. Main thread.
class CorrectionsEditor {
public:
    /// The view, as the editor needs it.
    struct View {
        /// Shows what the dictionary now holds.
        std::function<void()> reloadCorrectionsUI;
        std::function<void(const std::string&)> showSavedToast;
    };

    /// Both outlive the editor.
    CorrectionsEditor(TranscriptionDictionary& dictionary, UserDefaults& defaults, View view);

    [[nodiscard]] std::vector<CorrectionGroup> groups() const;

    /// The heard phrase whose field is to get the keyboard after the reload that is going on; asked once.
    [[nodiscard]] std::optional<std::string> takePendingCorrectionFocus();

    void addCorrectionRow();

    /// The identifier is the group's replacement.
    void addHeardPhraseToCorrection(const std::string& identifier);

    /// The identifier is the phrase as it is stored, corrected the replacement of its group.
    void heardCorrectionFieldChanged(const std::string& identifier, const std::string& corrected,
                                     std::string_view text);

    /// The identifier names the group's heard phrases (joinedHeardPhrases).
    void correctionFieldChanged(std::string_view identifier, std::string_view text);
    void removeCorrectionRow(std::string_view identifier);

    /// The identifier is the phrase as it is stored.
    void removeHeardPhrase(const std::string& identifier);

    /// For a field that holds all corrections as one text: the recognizer's vocabulary is that text, too.
    void customLibraryChanged(std::string_view text);

private:
    void removeCorrectionPhrases(const std::vector<std::string>& heardValues);
    void addHeardPhrase(std::string_view base, const std::string& replacement, const char* toast);
    void reloadAndSay(const char* toast);

    TranscriptionDictionary& dictionary_;
    UserDefaults& defaults_;
    const View view_;
    std::optional<std::string> pendingCorrectionFocus_;
};

} // namespace tovik

// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/UserDefaults.h"

#include <string>
#include <string_view>

namespace tovik {

/// The words that a transcript is rid of when the user wishes it. The settings are read at each use.
class FillerWords {
public:
    static constexpr std::string_view removeKey = "TovikVoiceRemoveFillerWords";
    static constexpr std::string_view listKey = "TovikVoiceFillerWords";
    static constexpr std::string_view defaultList = "kind of, sort of, um, uh, erm, hmm";

    /// The settings outlive it.
    explicit FillerWords(UserDefaults& defaults);

    /// Any thread.
    [[nodiscard]] bool cleanupEnabled() const;

    /// The list in effect, comma-separated. When what is stored is empty or a default list of earlier days,
    /// today's default is the answer and is stored. Main thread.
    [[nodiscard]] std::string fillerWords();

    /// Stores what the user has typed, the default when that is nothing, and returns the list then in
    /// effect. Main thread.
    std::string saveFillerWords(std::string_view typed);

    /// The text without the filler words, tidied; just as it is when removal is off or the list has no
    /// entries. Any thread; writes no setting.
    [[nodiscard]] std::string removeConfiguredFillerWords(std::string_view text) const;
    void removeConfiguredFillerWords(std::u16string& text) const;

private:
    [[nodiscard]] std::string effectiveList() const;

    UserDefaults& defaults_;
};

} // namespace tovik

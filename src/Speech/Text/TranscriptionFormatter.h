// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/SystemLog.h"
#include "Platform/UserDefaults.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace tovik {

/// Writes spoken English forms as people write them: amounts of dollars, dates, clock times, ordinals before
/// certain nouns, and runs of number words. Any thread.
class TranscriptionFormatter {
public:
    static constexpr std::string_view enabledKey = "transcription.formatter.enabled";

    /// Numbers are grouped as people of the locale do, an ICU or POSIX identifier ("en_US", "de_DE.UTF-8").
    /// Without one that names a language, as the "C" locale does not, they are written as in US English. The
    /// settings and the log outlive the formatter.
    TranscriptionFormatter(const UserDefaults& defaults, SystemLog& log, std::string_view locale);

    /// Off only when the settings say so; read at each call.
    [[nodiscard]] bool isEnabled() const;

    /// A form that a rule cannot make sense of stays as it was spoken.
    [[nodiscard]] std::string apply(std::string_view transcript) const;
    void apply(std::u16string& transcript) const;

    /// 0 when nothing is recognized, and when the number is too large.
    [[nodiscard]] static std::int64_t parseSpokenNumber(std::u16string_view words);
    /// The day of a month, "twenty first" being 21; 0 when the words are none.
    [[nodiscard]] static int parseDayOrdinal(std::u16string_view words);
    /// Years are spoken in pairs: "nineteen ninety nine".
    [[nodiscard]] static std::int64_t parseSpokenYear(std::u16string_view words);

private:
    class Pattern;
    class Match;
    /// What to put in place of a match; nothing to leave it alone.
    using Replacement = std::function<std::optional<std::u16string>(const Match&)>;

    void formatCurrency(std::u16string& text) const;
    void formatDates(std::u16string& text) const;
    void formatTimes(std::u16string& text) const;
    void formatOrdinals(std::u16string& text) const;
    void formatSpokenNumbers(std::u16string& text) const;
    void replaceDates(std::u16string& text, const Pattern& pattern, int monthGroup, int dayGroup,
                      int yearGroup) const;
    void replaceAll(std::u16string& text, const Pattern& pattern, const Replacement& replacement) const;

    const UserDefaults& defaults_;
    SystemLog& log_;
    const std::string locale_;
};

} // namespace tovik

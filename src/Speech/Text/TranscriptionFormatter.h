// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/SystemLog.h"
#include "Platform/UserDefaults.h"
#include "Speech/Text/DecimalFormat.h"
#include "Speech/Text/KnownWords.h"
#include "Speech/Text/TextPattern.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace tovik {

/// Writes spoken English forms as people write them: amounts of dollars, dates, clock times, ordinals before
/// certain nouns, and runs of number words. Any thread; its patterns are compiled when it is made.
class TranscriptionFormatter {
public:
    static constexpr std::string_view enabledKey = "transcription.formatter.enabled";

    /// Numbers are written as in the locale (DecimalFormat). The settings and the log outlive the formatter.
    TranscriptionFormatter(const UserDefaults& defaults, SystemLog& log, std::string_view locale);

    /// Off only when the settings say so; read at each call.
    [[nodiscard]] bool isEnabled() const;

    /// A form that a rule cannot make sense of stays as it was spoken.
    [[nodiscard]] std::string apply(std::string_view transcript) const;
    void apply(std::u16string& transcript) const;

    /// 0 when nothing is recognised, and when the number is too large.
    [[nodiscard]] static std::int64_t parseSpokenNumber(std::u16string_view words);
    /// The day of a month, "twenty first" being 21; 0 when the words are none.
    [[nodiscard]] static int parseDayOrdinal(std::u16string_view words);
    /// Years are spoken in pairs: "nineteen ninety nine".
    [[nodiscard]] static std::int64_t parseSpokenYear(std::u16string_view words);

private:
    struct Step {
        /// For the log.
        const char* name;
        /// What every match of the pattern begins with.
        KnownWords firstWords;
        TextPattern pattern;
    };
    struct DateGroups {
        int month;
        int day;
        int year;
    };

    static Step makeStep(const char* name, std::u16string_view firstWords, std::u16string_view expression);

    void formatCurrency(std::u16string& text) const;
    void formatDates(std::u16string& text) const;
    void formatTimes(std::u16string& text) const;
    void formatOrdinals(std::u16string& text) const;
    void formatSpokenNumbers(std::u16string& text) const;
    void replaceDates(std::u16string& text, const Step& step, DateGroups groups) const;
    void replaceAll(std::u16string& text, const Step& step,
                    const TextPattern::Replacement& replacement) const;

    const UserDefaults& defaults_;
    SystemLog& log_;
    const DecimalFormat decimal_;
    const Step singleWordCurrency_;
    const Step datesWithThe_;
    const Step dates_;
    const Step times_;
    const Step wholeHours_;
    const Step ordinals_;
};

} // namespace tovik

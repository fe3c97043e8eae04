// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/Result.h"
#include "Speech/Text/KnownWords.h"

#include <unicode/regex.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace tovik {

/// One place where a pattern matched.
class TextMatch {
public:
    TextMatch(const icu::RegexMatcher& matcher, std::u16string_view text) : matcher_(matcher), text_(text) {}

    [[nodiscard]] bool has(int group) const;
    /// Empty when the group did not take part; group 0 is the whole match.
    [[nodiscard]] std::u16string_view group(int group) const;

private:
    const icu::RegexMatcher& matcher_;
    std::u16string_view text_;
};

/// A regular expression in ICU syntax, case-insensitive, compiled once. Any thread.
class TextPattern {
public:
    /// What a search may cost before it is given up.
    struct Limits {
        /// Roughly milliseconds, for one match.
        std::int32_t time = 2000;
        std::int32_t stackBytes = 8'000'000;
    };
    /// What to put in place of a match; nothing to leave it alone.
    using Replacement = std::function<std::optional<std::u16string>(const TextMatch&)>;

    /// Nothing when the expression is not valid.
    [[nodiscard]] static std::optional<TextPattern> compile(std::u16string_view expression);
    [[nodiscard]] static std::optional<TextPattern> compile(std::u16string_view expression, Limits limits);

    /// An expression for exactly this text.
    [[nodiscard]] static std::u16string escaped(std::u16string_view literal);

    /// Replaces all matches that the text has as it stands, from left to right. True when something was
    /// replaced. On an error, which is a limit that was reached, the text is as before.
    Result<bool> replaceAll(std::u16string& text, const Replacement& replacement) const;

    /// The same for an expression that begins with "\b" and one of these words, which makes it far quicker to
    /// find.
    Result<bool> replaceAll(std::u16string& text, const KnownWords& firstWords,
                            const Replacement& replacement) const;

private:
    /// Goes to the next match from a position on; false when there is none, or an error.
    using Search = std::function<bool(icu::RegexMatcher&, std::size_t from, UErrorCode&)>;

    Result<bool> replaceFound(std::u16string& text, const Search& search,
                              const Replacement& replacement) const;

    TextPattern(std::unique_ptr<icu::RegexPattern> pattern, Limits limits);

    std::unique_ptr<icu::RegexPattern> pattern_;
    Limits limits_;
};

} // namespace tovik

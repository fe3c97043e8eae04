// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Speech/Text/TextPattern.h"

#include "Speech/Text/TextFault.h"

#include <unicode/unistr.h>

#include <utility>

namespace tovik {

namespace {

icu::UnicodeString aliasOf(std::u16string_view text) {
    return {false, text.data(), static_cast<std::int32_t>(text.size())};
}

Error faultOf(std::string reason) {
    return {"TovikVoice", 1, std::move(reason)};
}

} // namespace

bool TextMatch::has(int group) const {
    UErrorCode status = U_ZERO_ERROR;
    return matcher_.start(group, status) >= 0 && U_SUCCESS(status);
}

std::u16string_view TextMatch::group(int group) const {
    UErrorCode status = U_ZERO_ERROR;
    const auto start = matcher_.start(group, status);
    const auto end = matcher_.end(group, status);
    if (U_FAILURE(status) || start < 0) {
        return {};
    }
    return text_.substr(static_cast<std::size_t>(start), static_cast<std::size_t>(end - start));
}

TextPattern::TextPattern(std::unique_ptr<icu::RegexPattern> pattern, Limits limits)
    : pattern_(std::move(pattern)),
      limits_(limits) {}

std::optional<TextPattern> TextPattern::compile(std::u16string_view expression) {
    return compile(expression, Limits{});
}

std::optional<TextPattern> TextPattern::compile(std::u16string_view expression, Limits limits) {
    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<icu::RegexPattern> pattern(
        icu::RegexPattern::compile(aliasOf(expression), UREGEX_CASE_INSENSITIVE, status));
    if (U_FAILURE(status) || !pattern) {
        return std::nullopt;
    }
    return TextPattern(std::move(pattern), limits);
}

std::u16string TextPattern::escaped(std::u16string_view literal) {
    constexpr std::u16string_view kMetacharacters = u"*?+[](){}^$|\\./";
    std::u16string expression;
    expression.reserve(literal.size() + 4);
    for (const auto unit : literal) {
        if (kMetacharacters.find(unit) != std::u16string_view::npos) {
            expression += u'\\';
        }
        expression += unit;
    }
    return expression;
}

Result<bool> TextPattern::replaceAll(std::u16string& text, const Replacement& replacement) const {
    return replaceFound(
        text,
        [](icu::RegexMatcher& matcher, std::size_t, UErrorCode& status) { return matcher.find(status) != 0; },
        replacement);
}

Result<bool> TextPattern::replaceAll(std::u16string& text, const KnownWords& firstWords,
                                     const Replacement& replacement) const {
    const auto search = [&](icu::RegexMatcher& matcher, std::size_t from, UErrorCode& status) {
        for (auto start = firstWords.nextStart(text, from); start != KnownWords::npos;
             start = firstWords.nextStart(text, start + 1)) {
            if (matcher.lookingAt(static_cast<std::int64_t>(start), status)) {
                return true;
            }
        }
        return false;
    };
    // Most texts have no such word.
    const auto first = firstWords.nextStart(text, 0);
    return first == KnownWords::npos ? Result<bool>(false) : replaceFound(text, search, replacement);
}

Result<bool> TextPattern::replaceFound(std::u16string& text, const Search& search,
                                       const Replacement& replacement) const {
    if (text.size() > kLongestText) {
        return faultOf("the text is too long");
    }
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<icu::RegexMatcher> matcher(pattern_->matcher(status));
    if (U_FAILURE(status)) {
        return faultOf(u_errorName(status));
    }
    matcher->setTimeLimit(limits_.time, status);
    matcher->setStackLimit(limits_.stackBytes, status);
    const auto alias = aliasOf(text);
    matcher->reset(alias);

    std::u16string result;
    std::size_t copied = 0;
    std::size_t searched = 0;
    bool replaced = false;
    while (search(*matcher, searched, status) && U_SUCCESS(status)) {
        const auto start = static_cast<std::size_t>(matcher->start(status));
        searched = static_cast<std::size_t>(matcher->end(status));
        if (const auto inserted = replacement(TextMatch(*matcher, text))) {
            if (!replaced) {
                result.reserve(text.size() + inserted->size());
            }
            result.append(text, copied, start - copied).append(*inserted);
            copied = searched;
            replaced = true;
        }
        if (result.size() > kLongestText) {
            return faultOf("the result is too long");
        }
    }
    if (U_FAILURE(status)) {
        return faultOf(u_errorName(status));
    }
    if (!replaced) {
        return false;
    }
    if (result.size() + (text.size() - copied) > kLongestText) {
        return faultOf("the result is too long");
    }
    text = result.append(text, copied);
    return true;
}

} // namespace tovik

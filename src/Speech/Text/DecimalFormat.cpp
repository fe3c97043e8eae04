// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Speech/Text/DecimalFormat.h"

#include <unicode/locid.h>
#include <unicode/unistr.h>

#include <algorithm>

namespace tovik {

namespace {

icu::Locale localeOf(std::string_view identifier) {
    // Codeset and modifier say nothing about numbers.
    const auto plain = std::string(identifier.substr(0, identifier.find_first_of(".@")));
    if (plain.empty() || plain == "C" || plain == "POSIX" || plain == "en_US_POSIX") {
        return icu::Locale::getUS();
    }
    auto locale = icu::Locale::createCanonical(plain.c_str());
    const std::string_view language = locale.getLanguage();
    const auto isLetter = [](char c) { return c >= 'a' && c <= 'z'; };
    if (locale.isBogus() || language.empty() || !std::all_of(language.begin(), language.end(), isLetter)) {
        return icu::Locale::getUS();
    }
    return locale;
}

} // namespace

DecimalFormat::DecimalFormat(std::string_view localeIdentifier)
    : formatter_(icu::number::NumberFormatter::withLocale(localeOf(localeIdentifier))) {}

std::optional<std::u16string> DecimalFormat::written(std::int64_t number) const {
    UErrorCode status = U_ZERO_ERROR;
    const auto text = formatter_.formatInt(number, status).toString(status);
    if (U_FAILURE(status)) {
        return std::nullopt;
    }
    return std::u16string(text.getBuffer(), static_cast<std::size_t>(text.length()));
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

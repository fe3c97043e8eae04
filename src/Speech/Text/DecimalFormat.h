// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include <unicode/numberformatter.h>

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace tovik {

/// Writes whole numbers as people of a locale do, with grouping separators. Any thread.
class DecimalFormat {
public:
    /// An ICU or POSIX locale identifier ("en_US", "de_DE.UTF-8"). Without one that names a language, as
    /// the "C" locale does not, numbers are written as in US English.
    explicit DecimalFormat(std::string_view localeIdentifier);

    /// Nothing when ICU refuses.
    [[nodiscard]] std::optional<std::u16string> written(std::int64_t number) const;

private:
    icu::number::LocalizedNumberFormatter formatter_;
};

/// The locale of numbers that an environment names: LC_ALL, else LC_NUMERIC, else LANG; an empty value
/// counts as none. The callback gives the value of a variable, or null.
[[nodiscard]] std::string numberLocale(const std::function<const char*(const char*)>& environment);

} // namespace tovik

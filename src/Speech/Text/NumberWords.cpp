// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Speech/Text/NumberWords.h"

#include "Speech/Text/CharacterClasses.h"
#include "Speech/Text/Utf16.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <unordered_map>
#include <vector>

namespace tovik {

namespace {

constexpr std::array<std::u16string_view, 20> kOnes{
    u"zero",     u"one",     u"two",     u"three",     u"four",     u"five",    u"six",
    u"seven",    u"eight",   u"nine",    u"ten",       u"eleven",   u"twelve",  u"thirteen",
    u"fourteen", u"fifteen", u"sixteen", u"seventeen", u"eighteen", u"nineteen"};
constexpr std::array<std::u16string_view, 8> kTens{u"twenty", u"thirty",  u"forty",  u"fifty",
                                                   u"sixty",  u"seventy", u"eighty", u"ninety"};
constexpr std::array<std::u16string_view, 20> kOrdinals{
    u"first",     u"second",    u"third",       u"fourth",     u"fifth",      u"sixth",      u"seventh",
    u"eighth",    u"ninth",     u"tenth",       u"eleventh",   u"twelfth",    u"thirteenth", u"fourteenth",
    u"fifteenth", u"sixteenth", u"seventeenth", u"eighteenth", u"nineteenth", u"twentieth"};
constexpr std::array<std::u16string_view, 12> kMonths{u"January",   u"February", u"March",    u"April",
                                                      u"May",       u"June",     u"July",     u"August",
                                                      u"September", u"October",  u"November", u"December"};

using Table = std::unordered_map<std::u16string_view, int>;

template <std::size_t N>
Table tableOf(const std::array<std::u16string_view, N>& words, int firstValue, int step) {
    Table table;
    for (std::size_t i = 0; i < N; ++i) {
        table.emplace(words[i], firstValue + static_cast<int>(i) * step);
    }
    return table;
}

std::optional<int> valueIn(const Table& table, std::u16string_view word) {
    const auto found = table.find(word);
    return found == table.end() ? std::nullopt : std::optional(found->second);
}

std::optional<std::int64_t> scaleOf(std::u16string_view word) {
    if (word == u"thousand") {
        return 1'000;
    }
    if (word == u"million") {
        return 1'000'000;
    }
    if (word == u"billion") {
        return 1'000'000'000;
    }
    return std::nullopt;
}

/// Adds up a number word by word.
class NumberSum {
public:
    void take(std::u16string_view word) {
        if (const auto value = onesValue(word)) {
            add(group_, *value);
        } else if (const auto tens = tensValue(word)) {
            add(group_, *tens);
        } else if (word == u"hundred") {
            group_ = scaledGroup(100);
        } else if (const auto scale = scaleOf(word)) {
            add(total_, scaledGroup(*scale));
            group_ = 0;
        }
    }

    [[nodiscard]] std::optional<std::int64_t> sum() {
        add(total_, group_);
        return overflowed_ ? std::nullopt : std::optional(total_);
    }

private:
    void add(std::int64_t& to, std::int64_t value) {
        overflowed_ = __builtin_add_overflow(to, value, &to) || overflowed_;
    }
    [[nodiscard]] std::int64_t scaledGroup(std::int64_t scale) {
        std::int64_t scaled = 0;
        overflowed_ =
            __builtin_mul_overflow(std::max<std::int64_t>(group_, 1), scale, &scaled) || overflowed_;
        return scaled;
    }

    std::int64_t total_ = 0;
    std::int64_t group_ = 0;
    bool overflowed_ = false;
};

} // namespace

std::optional<int> onesValue(std::u16string_view word) {
    static const auto table = tableOf(kOnes, 0, 1);
    return valueIn(table, word);
}

std::optional<int> tensValue(std::u16string_view word) {
    static const auto table = tableOf(kTens, 20, 10);
    return valueIn(table, word);
}

std::optional<int> ordinalValue(std::u16string_view word) {
    static const auto table = [] {
        auto made = tableOf(kOrdinals, 1, 1);
        made.emplace(u"thirtieth", 30);
        return made;
    }();
    return valueIn(table, word);
}

std::u16string writtenOrdinal(int value) {
    const bool isTeen = value >= 11 && value <= 13;
    const auto* ending = u"th";
    switch (isTeen ? 0 : value % 10) {
    case 1:
        ending = u"st";
        break;
    case 2:
        ending = u"nd";
        break;
    case 3:
        ending = u"rd";
        break;
    default:
        break;
    }
    return toUtf16(std::to_string(value)) + ending;
}

std::optional<int> monthNumber(std::u16string_view word) {
    static const auto lowerNames = [] {
        std::vector<std::u16string> names;
        std::transform(kMonths.begin(), kMonths.end(), std::back_inserter(names), lowerCased);
        return names;
    }();
    const auto found = std::find(lowerNames.begin(), lowerNames.end(), word);
    return found == lowerNames.end() ? std::nullopt
                                     : std::optional(static_cast<int>(found - lowerNames.begin()) + 1);
}

std::u16string_view monthName(int number) {
    return kMonths.at(static_cast<std::size_t>(number) - 1);
}

std::optional<std::int64_t> spokenNumber(std::u16string_view words) {
    auto lower = lowerCased(words);
    std::replace(lower.begin(), lower.end(), u'-', u' ');
    NumberSum sum;
    for (const auto word : pieces(lower, u' ')) {
        sum.take(word);
    }
    return sum.sum();
}

} // namespace tovik

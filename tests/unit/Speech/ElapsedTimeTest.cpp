// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Speech/Text/ElapsedTime.h"

#include "Rows.h"

namespace tovik::test {

namespace {

using ElapsedRow = Row<std::int64_t, std::string>;
class FormattedElapsedTime : public testing::TestWithParam<ElapsedRow> {};

TEST_P(FormattedElapsedTime, isAsOnAClock) {
    EXPECT_EQ(formattedElapsedTime(GetParam().input), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(Rows, FormattedElapsedTime,
                         testing::Values(ElapsedRow{"start", 0, "0:00"},
                                         ElapsedRow{"seven seconds", 7, "0:07"},
                                         ElapsedRow{"59 seconds", 59, "0:59"},
                                         ElapsedRow{"a minute", 60, "1:00"},
                                         ElapsedRow{"minutes and seconds", 754, "12:34"},
                                         ElapsedRow{"last second before an hour", 3599, "59:59"},
                                         ElapsedRow{"an hour", 3600, "1:00:00"},
                                         ElapsedRow{"an hour and five seconds", 3605, "1:00:05"},
                                         ElapsedRow{"many hours", 360'000 + 3599, "100:59:59"},
                                         ElapsedRow{"before the start", -5, "0:00"}),
                         rowName<testing::TestParamInfo<ElapsedRow>>);

TEST(ElapsedSeconds, areWholeAndNeverNegative) {
    const Date start{};
    EXPECT_EQ(elapsedSeconds(start, start + std::chrono::milliseconds(1999)), 1);
    EXPECT_EQ(elapsedSeconds(start, start - std::chrono::milliseconds(1999)), 0);
}

} // namespace

} // namespace tovik::test

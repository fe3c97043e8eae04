// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Speech/Text/TextPattern.h"

#include "Speech/Text/TextFault.h"
#include "support/RecordingLog.h"

#include <gmock/gmock.h>

namespace tovik::test {

namespace {

std::optional<std::u16string> star(const TextMatch&) {
    return u"*";
}

TEST(TextPattern, whenTheExpressionIsInvalid_isNone) {
    EXPECT_FALSE(TextPattern::compile(u"("));
}

TEST(TextPattern, whenAMatchIsLeftAlone_replacesTheOthers) {
    std::u16string text = u"a1 b2 c3";
    const auto replaced =
        TextPattern::compile(u"([a-z])(\\d)")
            ->replaceAll(text, [](const TextMatch& match) -> std::optional<std::u16string> {
                return match.group(1) == u"b" ? std::nullopt : std::optional(std::u16string(match.group(2)));
            });
    EXPECT_TRUE(replaced.value());
    EXPECT_EQ(text, u"1 b2 3");
}

TEST(TextPattern, whenNothingMatches_saysSo) {
    std::u16string text = u"abc";
    EXPECT_FALSE(TextPattern::compile(u"x")->replaceAll(text, star).value());
    EXPECT_EQ(text, u"abc");
}

TEST(TextPattern, whenAGroupTookNoPart_isEmptyAndAbsent) {
    std::u16string text = u"ab";
    (void)TextPattern::compile(u"a(x)?b")->replaceAll(text, [](const TextMatch& match) {
        EXPECT_FALSE(match.has(1));
        EXPECT_EQ(match.group(1), u"");
        return std::optional(std::u16string(match.has(0) ? u"whole" : u"none"));
    });
    EXPECT_EQ(text, u"whole");
}

TEST(TextPattern, whenTheStackRunsOut_leavesTheTextAndNamesTheReason) {
    const std::u16string whole = std::u16string(100'000, u'a') + u"b";
    auto text = whole;
    const auto replaced = TextPattern::compile(u"(?:a|x)+c|b", {2000, 10'000})->replaceAll(text, star);
    ASSERT_FALSE(replaced);
    EXPECT_EQ(replaced.error().description, "U_REGEX_STACK_OVERFLOW");
    EXPECT_EQ(text, whole);
}

TEST(TextPattern, whenTheTimeRunsOut_leavesTheTextAndNamesTheReason) {
    const std::u16string whole(40, u'a');
    auto text = whole;
    const auto replaced = TextPattern::compile(u"(?:a+)+c", {20, 0})->replaceAll(text, star);
    ASSERT_FALSE(replaced);
    EXPECT_EQ(replaced.error().description, "U_REGEX_TIME_OUT");
    EXPECT_EQ(text, whole);
}

TEST(TextPattern, whenTheResultGrowsTooLong_leavesTheText) {
    const std::u16string whole(kLongestText / 2, u'a');
    auto text = whole;
    const auto replaced = TextPattern::compile(u"a")->replaceAll(
        text, [](const TextMatch&) { return std::optional<std::u16string>(u"bbb"); });
    ASSERT_FALSE(replaced);
    EXPECT_EQ(replaced.error().description, "the result is too long");
    EXPECT_EQ(text, whole);
}

TEST(TextFault, inTheLog_namesTheRuleAndTheReason) {
    RecordingLog log;
    reportTextFault(log, "formatDates", "U_REGEX_TIME_OUT");
    EXPECT_THAT(
        log.printed(),
        testing::ElementsAre(
            "[TovikVoice] Text rule formatDates gave up (U_REGEX_TIME_OUT); the text stays as it was"));
}

} // namespace

} // namespace tovik::test

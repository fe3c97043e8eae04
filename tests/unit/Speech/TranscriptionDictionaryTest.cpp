// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Speech/Text/TranscriptionDictionary.h"

#include "Rows.h"
#include "support/MemoryUserDefaults.h"
#include "support/RecordingLog.h"

#include <gmock/gmock.h>

#include <nlohmann/json.hpp>

namespace tovik::test {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Mapping = TranscriptionDictionary::Mapping;

constexpr auto kKey = "transcription.customDictionary";
const Mapping kSeed{
    {"bot to bot", "Tovik Record"}, {"quill on a i", "Quillon AI"}, {"brindle pad", "Brindlepad"}};

struct Dictionary {
    MemoryUserDefaults defaults;
    RecordingLog log;
    std::optional<TranscriptionDictionary> loaded;

    TranscriptionDictionary& with(const PropertyValue& stored) {
        defaults.set(kKey, stored);
        return *(loaded.emplace(defaults, log), loaded);
    }
};

struct ApplyCase {
    Mapping mapping;
    std::string text;
};
using ApplyRow = Row<ApplyCase, std::string>;
class Apply : public testing::TestWithParam<ApplyRow> {};

TEST_P(Apply, correctsTheTranscript) {
    Dictionary dictionary;
    EXPECT_EQ(dictionary.with(GetParam().input.mapping).apply(GetParam().input.text), GetParam().expected);
    EXPECT_THAT(dictionary.log.printed(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(
    Seed, Apply,
    testing::Values(ApplyRow{"any case matches", {kSeed, "BOT TO BOT is great"}, "Tovik Record is great"},
                    ApplyRow{"a word that goes on does not match", {kSeed, "robot to bot"}, "robot to bot"},
                    ApplyRow{"spelled letters", {kSeed, "ask quill on a i now"}, "ask Quillon AI now"},
                    ApplyRow{
                        "several at once", {kSeed, "bot to bot, Brindle Pad"}, "Tovik Record, Brindlepad"},
                    ApplyRow{"empty text", {kSeed, ""}, ""}),
    rowName<testing::TestParamInfo<ApplyRow>>);

INSTANTIATE_TEST_SUITE_P(
    Order, Apply,
    testing::Values(
        ApplyRow{"a shorter key sees what a longer one inserted",
                 {{{"new york", "New York"}, {"york", "Yorkshire"}}, "i love new york"},
                 "i love New Yorkshire"},
        ApplyRow{"a longer key never comes back", {{{"a b c", "x"}, {"y", "a b c"}}, "y"}, "a b c"},
        ApplyRow{"length is counted in characters",
                 // Three characters of six units against four characters of four units.
                 {{{"e\u0301e\u0301e\u0301", "long"}, {"\u00E9\u00E9\u00E9x", "e\u0301e\u0301e\u0301"}},
                  "\u00E9\u00E9\u00E9x"},
                 "long"},
        ApplyRow{"a correction does not see its own insertion", {{{"a", "a a"}}, "a a"}, "a a a a"}),
    rowName<testing::TestParamInfo<ApplyRow>>);

INSTANTIATE_TEST_SUITE_P(
    Boundaries, Apply,
    testing::Values(
        ApplyRow{"a key that ends in signs needs a word behind them",
                 {{{"c++", "C++"}}, "c++ rocks"},
                 "c++ rocks"},
        ApplyRow{"a key that ends in signs before a word", {{{"c++", "C++"}}, "c++x"}, "C++x"},
        ApplyRow{"a key that begins with a sign needs a word before it",
                 {{{".net", "NET"}}, "use .net x.net"},
                 "use .net xNET"},
        ApplyRow{"signs in a key are literal", {{{"a.b", "hit"}}, "axb a.b"}, "axb hit"},
        ApplyRow{"every metacharacter is literal",
                 {{{"a*?+[](){}^$|\\./b", "hit"}}, "say a*?+[](){}^$|\\./b now"},
                 "say hit now"},
        ApplyRow{"an apostrophe ends a word", {{{"don", "Don"}}, "don't don\u2019t"}, "Don't Don\u2019t"},
        ApplyRow{"an underscore does not", {{{"foo", "X"}}, "foo_bar foo"}, "foo_bar X"},
        ApplyRow{"a digit does not", {{{"foo", "X"}}, "foo1 1foo foo"}, "foo1 1foo X"},
        ApplyRow{
            "a combining mark goes with its letter", {{{"cafe", "X"}}, "cafe\u0301 cafe"}, "cafe\u0301 X"},
        ApplyRow{"a key with a combining mark", {{{"cafe\u0301", "X"}}, "Cafe\u0301 bar"}, "X bar"},
        ApplyRow{"a soft hyphen is looked through",
                 {{{"foo", "X"}}, "foo\u00ADbar foo\u00AD bar"},
                 "foo\u00ADbar foo\u00AD bar"},
        ApplyRow{"scripts without spaces are one word", {{{"中文", "X"}}, "说中文吗 中文"}, "说中文吗 X"},
        ApplyRow{"an emoji is no word", {{{"\U0001F600", "X"}}, "\U0001F600 a\U0001F600b"}, "\U0001F600 aXb"},
        ApplyRow{"spaces in a key are plain spaces",
                 {{{"a b", "X"}}, "a b a\u00A0b a  b a\tb"},
                 "X a\u00A0b a  b a\tb"},
        ApplyRow{"an empty key matches at each boundary", {{{"", "|"}}, "ab c"}, "|ab| |c|"}),
    rowName<testing::TestParamInfo<ApplyRow>>);

INSTANTIATE_TEST_SUITE_P(
    Letters, Apply,
    testing::Values(
        ApplyRow{"keys of any case match", {{{"FOO bar", "X"}}, "foo BAR"}, "X"},
        ApplyRow{"the sharp s matches two letters", {{{"strasse", "X"}}, "Straße STRASSE"}, "X X"},
        ApplyRow{"and two letters match it", {{{"straße", "X"}}, "strasse"}, "X"},
        ApplyRow{"a ligature matches its letters", {{{"first", "X"}}, "ﬁrst ﬁrﬆ"}, "X X"},
        ApplyRow{"half a ligature does not", {{{"f", "X"}, {"irst", "Y"}}, "ﬁrst"}, "ﬁrst"},
        ApplyRow{"long s and kelvin", {{{"sky", "X"}}, "\u017F\u212Ay"}, "X"},
        ApplyRow{"both sigmas", {{{"οδος", "X"}}, "ΟΔΟΣ οδοσ"}, "X X"},
        ApplyRow{"letters beyond the basic plane", {{{"\U00010428", "X"}}, "\U00010400 y"}, "X y"},
        ApplyRow{"the dotted capital i", {{{"i\u0307x", "X"}}, "\u0130x"}, "X"},
        ApplyRow{"a letter and a mark match the letter that holds both",
                 {{{"\u01F0", "X"}}, "J\u030C j\u030C \u01F0"},
                 "X X X"},
        ApplyRow{"and it matches them", {{{"j\u030Ca", "X"}}, "\u01F0a J\u030CA"}, "X X"},
        ApplyRow{"a letter that holds two marks",
                 {{{"\u0390", "X"}}, "\u0399\u0308\u0301 \u1FD3 \u0390"},
                 "X X X"}),
    rowName<testing::TestParamInfo<ApplyRow>>);

INSTANTIATE_TEST_SUITE_P(
    Templates, Apply,
    testing::Values(
        ApplyRow{"the matched text", {{{"hello", "$0!"}}, "Hello you, hello"}, "Hello! you, hello!"},
        ApplyRow{"no group", {{{"hello", "a$1b"}}, "hello"}, "ab"},
        ApplyRow{"a literal dollar", {{{"five bucks", "\\$5"}}, "five bucks"}, "$5"},
        ApplyRow{"a trailing backslash and dollar", {{{"a", "x\\"}, {"b", "y$"}}, "a b"}, "x\\ y$"},
        ApplyRow{"matched text that looks like a template", {{{"$0\\$1", "<$0>"}}, "a$0\\$1"}, "a<$0\\$1>"},
        ApplyRow{"plain text whatever was matched", {{{"hello", "bYe"}}, "HELLO"}, "bYe"},
        ApplyRow{"an empty replacement", {{{"hello ", ""}}, "hello you"}, "you"}),
    rowName<testing::TestParamInfo<ApplyRow>>);

class Template : public testing::TestWithParam<TextRow> {};

TEST_P(Template, forAMatchOfHello_inserts) {
    Dictionary dictionary;
    EXPECT_EQ(dictionary.with({{"hello", GetParam().input}}).apply("Hello"), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, Template,
    testing::Values(TextRow{"nothing", "", ""}, TextRow{"plain text", "a b", "a b"},
                    TextRow{"the matched text", "$0!", "Hello!"},
                    TextRow{"the matched text twice", "$0 $0", "Hello Hello"},
                    TextRow{"groups that are not there", "a$1b$9c", "abc"},
                    TextRow{"only one digit names a group", "$10", "0"},
                    TextRow{"a digit behind the matched text", "$05", "Hello5"},
                    TextRow{"a dollar before a letter", "$x", "$x"},
                    TextRow{"a dollar at the end", "5 $", "5 $"}, TextRow{"two dollars", "$$0", "$Hello"},
                    TextRow{"braces mean nothing", "${0}", "${0}"}, TextRow{"a literal dollar", "\\$0", "$0"},
                    TextRow{"a literal backslash", "\\\\", "\\"},
                    TextRow{"a backslash before a letter", "\\n\\u0041", "nu0041"},
                    TextRow{"a backslash at the end", "a\\", "a\\"},
                    TextRow{"a backslash before a character of two units", "\\\U0001F600", "\U0001F600"},
                    TextRow{"a digit of another script", "$\u0660", "$\u0660"}),
    rowName<testing::TestParamInfo<TextRow>>);

using ParseRow = Row<std::string, Mapping>;
class ParseDisplayString : public testing::TestWithParam<ParseRow> {};

TEST_P(ParseDisplayString, replacesAndStoresTheMapping) {
    Dictionary dictionary;
    auto& loaded = dictionary.with(kSeed);
    loaded.updateFromDisplayString(GetParam().input);
    EXPECT_EQ(loaded.getDictionary(), GetParam().expected);
    EXPECT_EQ(dictionary.defaults.value(kKey), PropertyValue(GetParam().expected));
    EXPECT_TRUE(dictionary.defaults.value(kKey)->is_object());
}

INSTANTIATE_TEST_SUITE_P(
    Rows, ParseDisplayString,
    testing::Values(
        ParseRow{"both separators", "a → b, c = d, , e", {{"a", "b"}, {"c", "d"}}},
        ParseRow{"the arrow wins", "x = 1 → 2", {{"x = 1", "2"}}}, ParseRow{"nothing", "", {}},
        ParseRow{"nothing valid", "=x,x=,x,→", {}},
        ParseRow{"the first separator counts", "a=b=c", {{"a", "b=c"}}},
        ParseRow{"the first arrow counts", "a→b→c", {{"a", "b→c"}}},
        ParseRow{"a leading separator leaves one side", "=a=b", {}},
        ParseRow{"sides of white space", " =x, x= \n, \u00A0→ x", {}},
        ParseRow{"heard in lower case, replacement as it is", "New York=NYC Now", {{"new york", "NYC Now"}}},
        ParseRow{"both trimmed", "\n a\t= \u00A0b \u0085", {{"a", "b"}}},
        ParseRow{"later wins", "a=1,A=2", {{"a", "2"}}},
        ParseRow{"line feeds do not separate", "a=1\nb=2", {{"a", "1\nb=2"}}},
        ParseRow{"lower case of every script", "ÄÖ\u0130=x", {{"äöi\u0307", "x"}}}),
    rowName<testing::TestParamInfo<ParseRow>>);

TEST(TranscriptionDictionary, whenNothingIsStored_beginsWithTheSeedAndStoresIt) {
    MemoryUserDefaults defaults;
    RecordingLog log;
    const TranscriptionDictionary dictionary(defaults, log);
    EXPECT_EQ(dictionary.getDictionary(), kSeed);
    EXPECT_EQ(defaults.value(kKey), PropertyValue(kSeed));
    EXPECT_THAT(defaults.writes(), ElementsAre(kKey));
}

TEST(TranscriptionDictionary, whenAMapIsStored_takesItAsItStandsAndWritesNothing) {
    Dictionary dictionary;
    EXPECT_EQ(dictionary.with({{"Foo", "Bar"}}).getDictionary(), (Mapping{{"Foo", "Bar"}}));
    EXPECT_THAT(dictionary.defaults.writes(), ElementsAre(kKey));
}

TEST(TranscriptionDictionary, whenAnEmptyMapIsStored_staysEmpty) {
    Dictionary dictionary;
    auto& loaded = dictionary.with(PropertyValue::object());
    EXPECT_THAT(loaded.getDictionary(), IsEmpty());
    EXPECT_EQ(loaded.apply("bot to bot"), "bot to bot");
}

using UnusableRow = Row<PropertyValue, int>;
class UnusableMapping : public testing::TestWithParam<UnusableRow> {};

TEST_P(UnusableMapping, isReplacedByTheSeedAndKeptAside) {
    Dictionary dictionary;
    EXPECT_EQ(dictionary.with(GetParam().input).getDictionary(), kSeed);
    EXPECT_EQ(dictionary.defaults.value(kKey), PropertyValue(kSeed));
    EXPECT_EQ(dictionary.defaults.value("platform.keptAside.transcription.customDictionary"),
              PropertyValue::array({GetParam().input}));
}

INSTANTIATE_TEST_SUITE_P(Rows, UnusableMapping,
                         testing::Values(UnusableRow{"list", PropertyValue::array({"a", "b"}), 0},
                                         UnusableRow{"string", "a=b", 0}, UnusableRow{"number", 3, 0},
                                         UnusableRow{"null", nullptr, 0},
                                         UnusableRow{"a value is a number", {{"a", "b"}, {"c", 1}}, 0},
                                         UnusableRow{"a value is null", {{"a", nullptr}}, 0}),
                         rowName<testing::TestParamInfo<UnusableRow>>);

TEST(TranscriptionDictionary, whenValuesAreUnusableAgain_keepsAllOfThem) {
    Dictionary dictionary;
    (void)dictionary.with(1);
    (void)dictionary.with(2);
    EXPECT_EQ(dictionary.defaults.value("platform.keptAside.transcription.customDictionary"),
              PropertyValue::array({1, 2}));
}

TEST(TranscriptionDictionary, whenACorrectionIsSet_storesItInLowerCaseAtOnce) {
    Dictionary dictionary;
    auto& loaded = dictionary.with(PropertyValue::object());
    loaded.setCorrection("Hello World", "  Hi  ");
    EXPECT_EQ(loaded.getDictionary(), (Mapping{{"hello world", "  Hi  "}}));
    EXPECT_EQ(dictionary.defaults.value(kKey), (PropertyValue{{"hello world", "  Hi  "}}));
}

TEST(TranscriptionDictionary, whenACorrectionIsSetAgain_replacesTheFirst) {
    Dictionary dictionary;
    auto& loaded = dictionary.with({{"hello", "A"}});
    loaded.setCorrection("HELLO", "B");
    EXPECT_EQ(loaded.getDictionary(), (Mapping{{"hello", "B"}}));
    EXPECT_EQ(loaded.apply("hello"), "B");
}

TEST(TranscriptionDictionary, whenACorrectionIsRemoved_forgetsItInAnyCase) {
    Dictionary dictionary;
    auto& loaded = dictionary.with({{"hello", "A"}, {"x", "y"}});
    loaded.removeCorrection("HELLO");
    EXPECT_EQ(loaded.getDictionary(), (Mapping{{"x", "y"}}));
    EXPECT_EQ(dictionary.defaults.value(kKey), (PropertyValue{{"x", "y"}}));
    EXPECT_EQ(loaded.apply("hello x"), "hello y");
}

TEST(TranscriptionDictionary, whenAnAbsentCorrectionIsRemoved_writesAllTheSame) {
    Dictionary dictionary;
    dictionary.with({{"x", "y"}}).removeCorrection("z");
    EXPECT_THAT(dictionary.defaults.writes(), ElementsAre(kKey, kKey));
}

TEST(TranscriptionDictionary, whenTheWholeDictionaryIsSet_takesItAsItStands) {
    Dictionary dictionary;
    auto& loaded = dictionary.with({{"x", "y"}});
    EXPECT_EQ(loaded.apply("x"), "y");
    loaded.setDictionary({{"Big", "small"}});
    EXPECT_EQ(loaded.apply("x big"), "x small");
    EXPECT_EQ(dictionary.defaults.value(kKey), (PropertyValue{{"Big", "small"}}));
}

TEST(TranscriptionDictionary, whenTheDefaultsChangeLater_keepsItsMapping) {
    Dictionary dictionary;
    auto& loaded = dictionary.with({{"x", "y"}});
    dictionary.defaults.set(kKey, {{"x", "z"}});
    EXPECT_EQ(loaded.apply("x"), "y");
    loaded.load();
    EXPECT_EQ(loaded.apply("x"), "z");
}

TEST(TranscriptionDictionary, whenTextIsNotWellFormed_storesWellFormedText) {
    Dictionary dictionary;
    auto& loaded = dictionary.with(PropertyValue::object());
    loaded.setCorrection("a\xFF", "b\xFF");
    EXPECT_EQ(loaded.getDictionary(), (Mapping{{"a\uFFFD", "b\uFFFD"}}));
}

TEST(TranscriptionDictionary, whenCorrectionsMultiplyTheTextWithoutEnd_appliesNoneAndSaysSo) {
    Dictionary dictionary;
    Mapping mapping;
    // Each inserts the next, shorter one ten times.
    for (int length = 9; length > 1; --length) {
        std::string replacement;
        for (int i = 0; i < 10; ++i) {
            replacement += std::string(static_cast<std::size_t>(length) - 1, 'a') + " ";
        }
        mapping[std::string(static_cast<std::size_t>(length), 'a')] = replacement;
    }
    // Nothing of it is kept, not even what the first of them did.
    EXPECT_EQ(dictionary.with(mapping).apply(std::string(9, 'a')), std::string(9, 'a'));
    EXPECT_THAT(
        dictionary.log.printed(),
        ElementsAre(
            "[TovikVoice] Text rule corrections gave up (the result is too long); the text stays as it was"));
}

TEST(TranscriptionDictionary, onATextOfMoreThanFourMillionCharacters_isApplied) {
    Dictionary dictionary;
    const std::string gap((std::size_t{1} << 22U) + 1, '\n');
    const auto corrected = dictionary.with({{"a", "bb"}}).apply("a" + gap + "a");
    EXPECT_TRUE(corrected == "bb" + gap + "bb") << corrected.size();
    EXPECT_THAT(dictionary.log.printed(), IsEmpty());
}

} // namespace

} // namespace tovik::test

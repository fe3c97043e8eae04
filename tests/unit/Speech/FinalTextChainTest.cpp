// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Speech/Text/FinalTextChain.h"

#include "Rows.h"
#include "Speech/Text/Unicode.h"
#include "support/MemoryUserDefaults.h"
#include "support/RecordingLog.h"

#include <gmock/gmock.h>

#include <nlohmann/json.hpp>
#include <thread>
#include <vector>

namespace tovik::test {

namespace {

struct Chain {
    MemoryUserDefaults defaults;
    RecordingLog log;
    FinalTextChain chain{defaults, log, "en_US"};

    Chain() { defaults.set("TovikVoiceRemoveFillerWords", true); }
};

class ProcessTranscription : public testing::TestWithParam<TextRow> {};

TEST_P(ProcessTranscription, cleansTheText) {
    Chain with;
    EXPECT_EQ(with.chain.processTranscription(GetParam().input), GetParam().expected);
    EXPECT_THAT(with.log.printed(), testing::IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(
    Rows, ProcessTranscription,
    testing::Values(TextRow{"empty", "", ""}, TextRow{"spacing comes first", "Wait...um,what", "Wait., what"},
                    TextRow{"fillers go before forms are written", "twenty um five dollars", "$25"},
                    TextRow{"dotted periods are parted before", "at one thirty p.m.x", "at 31 p. m. x"},
                    TextRow{"written forms are not spaced again", "one hundred twenty dollars and five cents",
                            "$120.05"},
                    TextRow{"a time keeps its colon", "um see you at one thirty pm", "see you at 1:30 PM"},
                    TextRow{"nothing is left", "um", ""},
                    TextRow{"grouped numbers keep their comma", "two thousand twenty,then", "2,020, then"}),
    rowName<testing::TestParamInfo<TextRow>>);

class SpacedPunctuation : public testing::TestWithParam<TextRow> {};

TEST_P(SpacedPunctuation, isAsExpected) {
    EXPECT_EQ(toUtf8(withSpacedPunctuation(toUtf16(GetParam().input))), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, SpacedPunctuation,
    testing::Values(
        TextRow{"dots collapse", "Wait...what", "Wait. what"},
        TextRow{"a decimal point is a full stop", "3.14", "3. 14"}, TextRow{"comma", "a,b", "a, b"},
        TextRow{"a clock is not spared", "It is 10:30", "It is 10: 30"},
        TextRow{"every mark", "a!b?c:d;e,f.g", "a! b? c: d; e, f. g"},
        TextRow{"spaces collapse", "a   b", "a b"},
        TextRow{"tabs and line feeds stay", "a \t b\n\n c", "a \t b\n\n c"},
        TextRow{"no-break spaces stay and count as white space", "a,\u00A0\u00A0b", "a,\u00A0\u00A0b"},
        TextRow{"a mark at the end stays", "a.", "a."}, TextRow{"marks of two kinds", "a?!b", "a? ! b"},
        TextRow{"three of one mark pair up", "a!!!b", "a! !! b"},
        TextRow{"four of one mark", "a!!!!b", "a! !! !b"},
        TextRow{"a dot before other marks", "a.,b", "a. , b"},
        TextRow{"a character of two units moves whole", "a.\U0001F600", "a. \U0001F600"},
        TextRow{"p.m.", "at nine p.m.", "at nine p. m."}, TextRow{"only dots", "....", "."},
        TextRow{"leading and trailing spaces collapse only", "  a  ", " a "}),
    rowName<testing::TestParamInfo<TextRow>>);

TEST(FinalTextChain, whenFillersStay_onlySpacesPunctuation) {
    Chain with;
    with.defaults.remove("TovikVoiceRemoveFillerWords");
    EXPECT_EQ(with.chain.processTranscription("so um yeah "), "so um yeah ");
    EXPECT_EQ(with.chain.processTranscription("so um,yeah"), "so um, yeah");
}

TEST(FinalTextChain, whenTheFormatterIsOff_stillRemovesFillers) {
    Chain with;
    with.defaults.set("transcription.formatter.enabled", false);
    EXPECT_EQ(with.chain.processTranscription("um twenty five dollars"), "twenty five dollars");
}

TEST(FinalTextChain, whenTextIsNotWellFormed_replacesWhatIsBroken) {
    Chain with;
    EXPECT_EQ(with.chain.processTranscription("a\xFF um b"), "a\uFFFD b");
}

TEST(FinalTextChain, whenSeveralThreadsUseIt_servesEachOfThem) {
    Chain with;
    std::vector<std::string> results(4);
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < results.size(); ++i) {
        threads.emplace_back([&, i] {
            for (int round = 0; round < 50; ++round) {
                results[i] = with.chain.processTranscription("um twenty five dollars on may the first");
            }
        });
    }
    for (auto& thread : threads) {
        thread.join();
    }
    EXPECT_THAT(results, testing::Each("$25 on May 1"));
}

TEST(FinalTextChain, onAMegabyteOfAnything_doesNotGiveUp) {
    Chain with;
    for (const std::string piece :
         {"one ", " ", ".", "-", "\n", "one hundred dollars and ", "march the ", "the first ", "one oh ",
          "um ", "!", "a\u0301", "\u0301", "中", "twenty-"}) {
        std::string text;
        while (text.size() < 1'000'000) {
            text += piece;
        }
        (void)with.chain.processTranscription(text);
        EXPECT_THAT(with.log.printed(), testing::IsEmpty()) << piece;
    }
}

/// What becomes of a text in which "~" stands for a very long run of line feeds; written in the same way,
/// since nobody could read it otherwise.
std::string cleanedWithGaps(Chain& with, std::string text, std::size_t length) {
    const std::string gap(length, '\n');
    const auto replaceAll = [&text](const std::string& what, const std::string& by) {
        for (auto at = text.find(what); at != std::string::npos; at = text.find(what, at + by.size())) {
            text.replace(at, what.size(), by);
        }
    };
    replaceAll("~", gap);
    text = with.chain.processTranscription(text);
    replaceAll(gap, "~");
    return text;
}

class MegabytesOfWhiteSpace : public testing::TestWithParam<TextRow> {};

TEST_P(MegabytesOfWhiteSpace, insideAForm_areReadOver) {
    Chain with;
    EXPECT_EQ(cleanedWithGaps(with, GetParam().input, 1'000'000), GetParam().expected);
    EXPECT_THAT(with.log.printed(), testing::IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Rows, MegabytesOfWhiteSpace,
                         testing::Values(TextRow{"a whole hour", "one~am", "1:00 AM"},
                                         TextRow{"a time", "one~twenty~pm", "1:20 PM"},
                                         TextRow{"a date", "march~the~first~of~", "March 1~of"},
                                         TextRow{"an ordinal", "the~first~place", "the 1st~place"},
                                         TextRow{"a single amount", "five~dollars", "$5"},
                                         TextRow{"an amount", "two five~dollars~and~one~cent", "$7.01"},
                                         TextRow{"no form at all", "one~x", "one~x"}),
                         rowName<testing::TestParamInfo<TextRow>>);

TEST(FinalTextChain, onATextOfMoreThanFourMillionCharacters_takesEveryStep) {
    Chain with;
    EXPECT_EQ(cleanedWithGaps(with, "five dollars,um~the first place on march the fifth at one am~one two",
                              (std::size_t{1} << 22U) + 1),
              "$5, ~the 1st place on March 5 at 1:00 AM~3");
    EXPECT_THAT(with.log.printed(), testing::IsEmpty());
}

TEST(NumberLocale, isTheFirstThatIsNotEmpty) {
    std::map<std::string, std::string> variables;
    const auto environment = [&](const char* name) -> const char* {
        const auto found = variables.find(name);
        return found == variables.end() ? nullptr : found->second.c_str();
    };
    EXPECT_EQ(numberLocale(environment), "");
    variables["LANG"] = "en_GB.UTF-8";
    EXPECT_EQ(numberLocale(environment), "en_GB.UTF-8");
    variables["LC_NUMERIC"] = "de_DE.UTF-8";
    EXPECT_EQ(numberLocale(environment), "de_DE.UTF-8");
    variables["LC_ALL"] = "";
    EXPECT_EQ(numberLocale(environment), "de_DE.UTF-8");
    variables["LC_ALL"] = "C";
    EXPECT_EQ(numberLocale(environment), "C");
}

} // namespace

} // namespace tovik::test

// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Speech/Text/FinalTextChain.h"

#include "Rows.h"
#include "support/MemoryUserDefaults.h"
#include "support/RecordingLog.h"

#include <gmock/gmock.h>

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

TEST(FinalTextChain, onAMegabyteOfWhiteSpaceInsideAForm_doesNotGiveUp) {
    Chain with;
    const std::string gap(1'000'000, '\n');
    EXPECT_EQ(with.chain.processTranscription("one" + gap + "am"), "1:00 AM");
    EXPECT_EQ(with.chain.processTranscription("one" + gap + "twenty" + gap + "pm"), "1:20 PM");
    EXPECT_EQ(with.chain.processTranscription("march" + gap + "the" + gap + "first" + gap + "of" + gap),
              "March 1" + gap + "of");
    EXPECT_EQ(with.chain.processTranscription("the" + gap + "first" + gap + "place"),
              "the 1st" + gap + "place");
    EXPECT_EQ(with.chain.processTranscription("five" + gap + "dollars"), "$5");
    EXPECT_EQ(with.chain.processTranscription("two five" + gap + "dollars" + gap + "and" + gap + "one" + gap +
                                              "cent"),
              "$7.01");
    EXPECT_EQ(with.chain.processTranscription("one" + gap + "x"), "one" + gap + "x");
    EXPECT_THAT(with.log.printed(), testing::IsEmpty());
}

} // namespace

} // namespace tovik::test

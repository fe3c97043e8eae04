// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Engines/Apertium/WarmPipeline.h"

#include "support/ComesTrue.h"
#include "support/ManualTime.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <sys/wait.h>

#include <algorithm>
#include <optional>

namespace tovik {
namespace {

using testing::HasSubstr;

/// Whether a process of this test runs, or waits to be collected, which is not done here.
bool hasChild() {
    siginfo_t info{};
    return ::waitid(P_ALL, 0, &info, WEXITED | WNOHANG | WNOWAIT) == 0;
}

/// Pipelines of ordinary programs: what cat answers is the text itself.
class WarmPipelineTest : public testing::Test {
protected:
    void use(std::vector<Stage> stages) {
        pipeline = std::make_unique<WarmPipeline>(std::move(stages), time);
    }
    /// A stage in the shell's words; $STARTS is a file.
    void useShell(const std::string& script) {
        use({{"sh", "-c", "STARTS=" + startsFile() + "; echo start >> $STARTS; " + script}});
    }

    void begin(const std::string& text) {
        outcome.reset();
        pipeline->translate(text, [this](const Result<std::string>& answer) {
            ++completions;
            outcome = answer;
        });
    }
    /// The worker's answers come from a thread of its own, while the clock stands still.
    bool waitUntil(const std::function<bool()>& holds) {
        return test::comesTrue([&] {
            time.runPending();
            return holds();
        });
    }
    Result<std::string> translate(const std::string& text) {
        begin(text);
        EXPECT_TRUE(waitUntil([this] { return outcome.has_value(); }));
        return outcome.value_or(Error{"test", 0, "no answer"});
    }
    void expectFailure(const std::string& text, const std::string& sentence) {
        const auto answer = translate(text);
        ASSERT_FALSE(answer) << answer.value();
        EXPECT_THAT(answer.error().description, HasSubstr(sentence));
    }

    std::string startsFile() const { return folder / "starts"; }
    std::ptrdiff_t starts() const {
        return std::ranges::count(test::readFile(startsFile()).value_or(""), '\n');
    }

    test::TemporaryFolder folder;
    test::ManualTime time;
    std::unique_ptr<WarmPipeline> pipeline;
    int completions = 0;
    std::optional<Result<std::string>> outcome;
};

TEST_F(WarmPipelineTest, texts_goThroughEveryStage) {
    use({{"cat"}, {"sed", "-u", "-z", "s/house/casa/"}, {"cat"}});
    EXPECT_EQ(translate("my house").value(), "my casa");
    EXPECT_EQ(translate("one\n\nhouse 😀").value(), "one\n\ncasa 😀");
}

TEST_F(WarmPipelineTest, programs_areStartedOnceAndKept) {
    useShell("exec cat");
    EXPECT_EQ(starts(), 0);
    for (auto count = 0; count < 5; ++count) {
        EXPECT_TRUE(translate("text"));
    }
    EXPECT_EQ(starts(), 1);
}

TEST_F(WarmPipelineTest, textsOfOneMoment_areAnsweredInTurn) {
    use({{"cat"}});
    std::string answers;
    for (const auto* text : {"a", "b", "c"}) {
        pipeline->translate(text, [&](const Result<std::string>& answer) { answers += answer.value(); });
    }
    EXPECT_TRUE(waitUntil([&] { return answers == "abc"; }));
}

TEST_F(WarmPipelineTest, nothingToTranslate_needsNoProgram) {
    useShell("exec cat");
    EXPECT_EQ(translate("\n 😀").value(), "\n 😀");
    EXPECT_EQ(starts(), 0);
}

TEST_F(WarmPipelineTest, aTextLargerThanAnyPipe_passes) {
    use({{"cat"}, {"cat"}});
    std::string text = "word";
    while (text.size() < 1000000) {
        text += " word";
    }
    EXPECT_EQ(translate(text).value(), text);
}

// When programs die.

TEST_F(WarmPipelineTest, programsThatDiedMeanwhile_areStartedAgain) {
    // Ends after one text of this length.
    useShell("exec head -c 10");
    EXPECT_EQ(translate("house").value(), "house");
    EXPECT_EQ(translate("other").value(), "other");
    EXPECT_EQ(starts(), 2);
}

TEST_F(WarmPipelineTest, programsThatDieOverEveryText_failIt) {
    useShell("exec head -c 3");
    expectFailure("house", "stopped");
    EXPECT_EQ(starts(), 1);
    expectFailure("house", "stopped");
    EXPECT_EQ(starts(), 2);
}

TEST_F(WarmPipelineTest, aDeadStageInTheMiddle_failsTheText) {
    use({{"cat"}, {"true"}, {"cat"}});
    expectFailure(std::string(300, 'a') + " house", "stopped");
}

TEST_F(WarmPipelineTest, aProgramThatIsMissing_isNamed) {
    use({{"cat"}, {"/no/such/program"}});
    expectFailure("house", "/no/such/program");
}

TEST_F(WarmPipelineTest, anAnswerThatIsNone_failsTheText) {
    use({{"sh", "-c", "printf 'garbage\\0'; exec cat > /dev/null"}});
    expectFailure("house", "no proper answer");
}

TEST_F(WarmPipelineTest, anAnswerWithoutEnd_failsTheText) {
    use({{"yes"}});
    expectFailure("house", "stopped");
}

// Time.

TEST_F(WarmPipelineTest, programsThatHang_areGivenUpAfterTenSeconds) {
    useShell("exec tail -f /dev/null");
    begin("house");
    EXPECT_TRUE(waitUntil([this] { return starts() == 1; }));
    time.advance(Seconds(9.9));
    EXPECT_EQ(completions, 0);
    time.advance(Seconds(0.2));
    EXPECT_TRUE(waitUntil([this] { return completions == 1; }));
    EXPECT_EQ(outcome->error().description, "The Apertium translator took too long.");
}

TEST_F(WarmPipelineTest, afterProgramsThatHung_theNextTextGetsNewOnes) {
    useShell("[ $(wc -l < $STARTS) = 1 ] && exec tail -f /dev/null; exec cat");
    begin("house");
    EXPECT_TRUE(waitUntil([this] { return starts() == 1; }));
    time.advance(Seconds(11));
    EXPECT_TRUE(waitUntil([this] { return completions == 1; }));
    EXPECT_EQ(translate("house").value(), "house");
}

TEST_F(WarmPipelineTest, aTextThatWaitsBehindAHangingOne_isGivenUpToo) {
    useShell("exec tail -f /dev/null");
    begin("first");
    begin("second");
    EXPECT_TRUE(waitUntil([this] { return starts() == 1; }));
    time.advance(Seconds(11));
    EXPECT_TRUE(waitUntil([this] { return completions == 2; }));
    EXPECT_FALSE(*outcome);
}

TEST_F(WarmPipelineTest, aLongText_hasLonger) {
    useShell("exec tail -f /dev/null");
    begin(std::string(100, 'a') + std::string(100000, '\n'));
    EXPECT_TRUE(waitUntil([this] { return starts() == 1; }));
    time.advance(Seconds(19));
    EXPECT_EQ(completions, 0);
    time.advance(Seconds(2));
    EXPECT_TRUE(waitUntil([this] { return completions == 1; }));
}

TEST_F(WarmPipelineTest, afterFiveIdleMinutes_programsAreEnded) {
    useShell("exec cat");
    EXPECT_TRUE(translate("text"));
    time.advance(Seconds(299));
    EXPECT_TRUE(translate("text"));
    time.advance(Seconds(299));
    EXPECT_TRUE(translate("text"));
    EXPECT_EQ(starts(), 1);
    time.advance(Seconds(301));
    // No process of this test is left: none runs, and none waits to be collected.
    EXPECT_TRUE(waitUntil([] { return !hasChild(); }));
    EXPECT_TRUE(translate("text"));
    EXPECT_EQ(starts(), 2);
}

// The end.

TEST_F(WarmPipelineTest, whenItEnds_hangingProgramsEndAndNothingIsAnswered) {
    useShell("exec tail -f /dev/null");
    begin("house");
    begin("second");
    EXPECT_TRUE(waitUntil([this] { return starts() == 1; }));
    pipeline.reset();
    EXPECT_FALSE(hasChild());
    time.advance(Seconds(1000));
    EXPECT_EQ(completions, 0);
}

} // namespace
} // namespace tovik

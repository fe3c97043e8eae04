// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "SpeechServiceContract.h"

#include "Audio/RecognitionRequest.h"
#include "Engines/PocketSphinx/PocketSphinxService.h"
#include "Engines/Server/SpeechServerService.h"
#include "Engines/Vosk/VoskService.h"
#include "support/FakeSpeechService.h"
#include "support/HttpServer.h"
#include "support/ManualTime.h"
#include "support/MemoryUserDefaults.h"
#include "support/RecognitionAnswers.h"
#include "support/RecordingLog.h"
#include "support/Recordings.h"
#include "support/TemporaryFolder.h"
#include "support/VoskFolder.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <nlohmann/json.hpp>
#include <span>
#include <thread>

namespace tovik::test {
namespace {

using testing::MatchesRegex;

class FakeWorld : public SpeechWorld {
public:
    FakeWorld() { service_.answerWith(text()); }

    [[nodiscard]] SpeechService& service() override { return service_; }
    [[nodiscard]] const std::vector<float>& sentence() const override { return sentence_; }
    [[nodiscard]] std::string text() const override { return "what was said"; }
    [[nodiscard]] double sampleRate() const override { return 48000; }

private:
    FakeSpeechService service_;
    const std::vector<float> sentence_ = std::vector<float>(48000, 0.25F);
};

class PocketSphinxWorld : public SpeechWorld {
public:
    [[nodiscard]] SpeechService& service() override { return service_; }
    [[nodiscard]] const std::vector<float>& sentence() const override { return sentence_; }
    [[nodiscard]] std::string text() const override { return "go forward ten meters"; }
    [[nodiscard]] double sampleRate() const override { return kRecordingRate; }

private:
    RecordingLog log_;
    PocketSphinxService service_{log_};
    const std::vector<float> sentence_ = readRecording(kGoForward);
};

/// A server that has heard the sentence when any sound comes.
class SpeechServerWorld : public SpeechWorld {
public:
    SpeechServerWorld() { defaults_.set("platform.speech.serverUrl", server_.url()); }

    [[nodiscard]] SpeechService& service() override { return service_; }
    [[nodiscard]] const std::vector<float>& sentence() const override { return sentence_; }
    [[nodiscard]] std::string text() const override { return "Go forward ten meters."; }
    [[nodiscard]] double sampleRate() const override { return 48000; }
    [[nodiscard]] bool givesPartialResults() const override { return false; }

private:
    const TemporaryFolder folder_;
    HttpServer server_{
        [](HttpExchange& exchange) { exchange.answerJson(200, R"({"text": " Go forward ten meters."})"); }};
    RecordingLog log_;
    MemoryUserDefaults defaults_;
    ManualTime time_;
    SpeechServerService service_{{.log = log_,
                                  .defaults = defaults_,
                                  .queue = time_,
                                  .secrets = nullptr,
                                  .failedAudioFolder = folder_ / "failed",
                                  .isAllowed = [](const ServerAddress&) { return true; },
                                  .embedded = nullptr}};
    const std::vector<float> sentence_ = std::vector<float>(48000, 0.25F);
};

/// Vosk with a library of ours, which hears a sentence in any sound.
class VoskWorld : public SpeechWorld {
public:
    VoskWorld() { folder_.addModel("vosk-model-small-en-us-0.15", {text()}); }

    [[nodiscard]] SpeechService& service() override { return service_; }
    [[nodiscard]] const std::vector<float>& sentence() const override { return sentence_; }
    [[nodiscard]] std::string text() const override { return "go forward ten meters"; }
    [[nodiscard]] double sampleRate() const override { return 44100; }

private:
    const VoskFolder folder_;
    RecordingLog log_;
    VoskService service_{log_, {VoskFolder::library()}, {folder_.models()}};
    const std::vector<float> sentence_ = std::vector<float>(44100, 0.25F);
};

class SpeechServiceContract : public testing::TestWithParam<SpeechWorldKind> {
protected:
    [[nodiscard]] std::shared_ptr<RecognitionRequest> request(RecognitionSettings settings = {}) const {
        return std::make_shared<RecognitionRequest>(std::move(settings), world_->sampleRate());
    }

    void append(RecognitionRequest& request, const std::vector<float>& sound) const {
        for (std::size_t i = 0; i < sound.size(); i += 1024) {
            request.append({std::span(sound).subspan(i, std::min<std::size_t>(1024, sound.size() - i)),
                            world_->sampleRate()});
        }
    }

    [[nodiscard]] std::shared_ptr<SpeechRecognizer> recognizer() const {
        return world_->service().makeRecognizer("en-US");
    }

    const std::unique_ptr<SpeechWorld> world_ = GetParam().make();
};

TEST_P(SpeechServiceContract, whenTheLocaleIsServed_theRecognizerIsAvailable) {
    ASSERT_NE(recognizer(), nullptr);
    EXPECT_TRUE(recognizer()->isAvailable());
}

TEST_P(SpeechServiceContract, whenTheLocaleIsUnknown_thereIsNoRecognizer) {
    EXPECT_EQ(world_->service().makeRecognizer("xx-AT"), nullptr);
    EXPECT_EQ(world_->service().makeRecognizer(""), nullptr);
}

TEST_P(SpeechServiceContract, afterBeingPreparedForWords_recognizes) {
    world_->service().prepare({"Tovik Record"});
    const auto utterance = request();
    append(*utterance, world_->sentence());
    utterance->endAudio();
    const RecognitionAnswers answers;
    const auto task = recognizer()->startTask(utterance, answers.handler());
    EXPECT_EQ(answers.waitForText(), world_->text());
}

TEST_P(SpeechServiceContract, theCurrentLocaleIsALanguageAndARegion) {
    EXPECT_THAT(world_->service().currentLocaleIdentifier(), MatchesRegex("[a-z]+(-[A-Z0-9]+)?"));
}

TEST_P(SpeechServiceContract, whenTheSoundCameBeforeTheTask_allOfItIsRecognized) {
    const auto utterance = request();
    append(*utterance, world_->sentence());
    utterance->endAudio();
    const RecognitionAnswers answers;
    const auto task = recognizer()->startTask(utterance, answers.handler());
    EXPECT_EQ(answers.waitForText(), world_->text());
}

TEST_P(SpeechServiceContract, whenTheSoundComesFromAnotherThreadDuringTheTask_itIsRecognized) {
    const auto utterance = request();
    const RecognitionAnswers answers;
    const auto task = recognizer()->startTask(utterance, answers.handler());
    std::thread microphone([&] {
        append(*utterance, world_->sentence());
        utterance->endAudio();
    });
    EXPECT_EQ(answers.waitForText(), world_->text());
    microphone.join();
}

TEST_P(SpeechServiceContract, whenTheTaskIsFinished_theTextComesWithoutAnEndOfTheSound) {
    const auto utterance = request();
    append(*utterance, world_->sentence());
    const RecognitionAnswers answers;
    const auto task = recognizer()->startTask(utterance, answers.handler());
    task->finish();
    EXPECT_EQ(answers.waitForText(), world_->text());
}

TEST_P(SpeechServiceContract, whenTheTaskIsDropped_theTextComesAllTheSame) {
    const auto utterance = request();
    const RecognitionAnswers answers;
    recognizer()->startTask(utterance, answers.handler()).reset();
    append(*utterance, world_->sentence());
    utterance->endAudio();
    EXPECT_EQ(answers.waitForText(), world_->text());
}

TEST_P(SpeechServiceContract, theTextComesOnAnotherThread) {
    const auto utterance = request();
    append(*utterance, world_->sentence());
    utterance->endAudio();
    const RecognitionAnswers answers;
    const auto task = recognizer()->startTask(utterance, answers.handler());
    const auto end = answers.waitForEnd();
    ASSERT_TRUE(end);
    EXPECT_NE(end->thread, std::this_thread::get_id());
}

TEST_P(SpeechServiceContract, whenNothingWasSaid_theTaskEndsInAnErrorWithoutResult) {
    const auto utterance = request();
    append(*utterance, std::vector<float>(static_cast<std::size_t>(2 * world_->sampleRate())));
    utterance->endAudio();
    const RecognitionAnswers answers;
    const auto task = recognizer()->startTask(utterance, answers.handler());
    const auto end = answers.waitForEnd();
    ASSERT_TRUE(end);
    EXPECT_FALSE(end->result);
    ASSERT_TRUE(end->error);
    EXPECT_EQ(end->error->description, "No speech detected");
}

TEST_P(SpeechServiceContract, whenThereWasNoSoundAtAll_theTaskEndsInAnError) {
    const auto utterance = request();
    utterance->endAudio();
    const RecognitionAnswers answers;
    const auto task = recognizer()->startTask(utterance, answers.handler());
    EXPECT_EQ(answers.waitForText(), "<No speech detected>");
}

TEST_P(SpeechServiceContract, whenPartialResultsAreWanted_theyComeBeforeTheFinalOne) {
    RecognitionSettings settings;
    settings.reportPartialResults = true;
    const auto utterance = request(settings);
    append(*utterance, world_->sentence());
    utterance->endAudio();
    const RecognitionAnswers answers;
    const auto task = recognizer()->startTask(utterance, answers.handler());
    ASSERT_TRUE(answers.waitForEnd());
    const auto all = answers.all();
    if (world_->givesPartialResults()) {
        ASSERT_GE(all.size(), 2U);
    }
    for (std::size_t i = 0; i + 1 < all.size(); ++i) {
        ASSERT_TRUE(all[i].result);
        EXPECT_FALSE(all[i].result->isFinal);
        EXPECT_FALSE(all[i].result->formattedString.empty());
    }
}

TEST_P(SpeechServiceContract, whenPartialResultsAreNotWanted_onlyTheFinalOneComes) {
    const auto utterance = request();
    append(*utterance, world_->sentence());
    utterance->endAudio();
    const RecognitionAnswers answers;
    const auto task = recognizer()->startTask(utterance, answers.handler());
    ASSERT_TRUE(answers.waitForEnd());
    EXPECT_EQ(answers.all().size(), 1U);
}

TEST_P(SpeechServiceContract, whenASecondUtteranceBeginsWhileTheFirstIsDecoded_bothTextsCome) {
    const auto first = request();
    const auto second = request();
    const RecognitionAnswers firstAnswers;
    const RecognitionAnswers secondAnswers;
    const auto speaker = recognizer();
    const auto firstTask = speaker->startTask(first, firstAnswers.handler());
    append(*first, world_->sentence());
    first->endAudio();
    const auto secondTask = speaker->startTask(second, secondAnswers.handler());
    append(*second, world_->sentence());
    second->endAudio();
    EXPECT_EQ(firstAnswers.waitForText(), world_->text());
    EXPECT_EQ(secondAnswers.waitForText(), world_->text());
    EXPECT_EQ(firstAnswers.all().size(), 1U);
    EXPECT_EQ(secondAnswers.all().size(), 1U);
}

TEST_P(SpeechServiceContract, afterAnUtteranceWithoutSpeech_theNextOneIsRecognized) {
    const auto silent = request();
    silent->endAudio();
    const RecognitionAnswers nothing;
    const auto silentTask = recognizer()->startTask(silent, nothing.handler());
    const auto utterance = request();
    append(*utterance, world_->sentence());
    utterance->endAudio();
    const RecognitionAnswers answers;
    const auto task = recognizer()->startTask(utterance, answers.handler());
    EXPECT_EQ(nothing.waitForText(), "<No speech detected>");
    EXPECT_EQ(answers.waitForText(), world_->text());
}

INSTANTIATE_TEST_SUITE_P(
    Services, SpeechServiceContract,
    testing::Values(SpeechWorldKind{"Fake", [] { return std::make_unique<FakeWorld>(); }},
                    SpeechWorldKind{"SpeechServer", [] { return std::make_unique<SpeechServerWorld>(); }},
                    SpeechWorldKind{"Vosk", [] { return std::make_unique<VoskWorld>(); }},
                    SpeechWorldKind{"PocketSphinx", [] { return std::make_unique<PocketSphinxWorld>(); }}),
    [](const auto& kind) { return kind.param.name; });

} // namespace
} // namespace tovik::test

// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
//
// The real library with a real model: only where tools/fetch-vosk --model has brought them.
#include "Audio/RecognitionRequest.h"
#include "Engines/Vosk/VoskService.h"
#include "support/Buzz.h"
#include "support/RealVosk.h"
#include "support/RecognitionAnswers.h"
#include "support/RecordingLog.h"
#include "support/Recordings.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <functional>
#include <random>

namespace tovik::test {
namespace {

namespace fs = std::filesystem;

using testing::HasSubstr;
using testing::IsEmpty;

/// One model for all tests, since each loading takes a second.
class VoskRealModel : public testing::Test {
protected:
    static void SetUpTestSuite() {
        service_ = std::make_unique<VoskService>(log_, std::vector{realVoskFolder() + "/libvosk.so"},
                                                 std::vector{realVoskFolder() + "/models"});
    }
    static void TearDownTestSuite() { service_.reset(); }

    RecognitionAnswers hear(const std::vector<float>& sound,
                            std::vector<std::string> contextualStrings = {}) {
        return hearWith(*service_, sound, std::move(contextualStrings));
    }

    RecognitionAnswers hearWith(VoskService& service, const std::vector<float>& sound,
                                std::vector<std::string> contextualStrings = {}) {
        RecognitionSettings settings;
        settings.reportPartialResults = true;
        settings.contextualStrings = std::move(contextualStrings);
        const auto request = std::make_shared<RecognitionRequest>(settings, kRecordingRate);
        request->append({sound, kRecordingRate});
        request->endAudio();
        const RecognitionAnswers answers;
        task_ = service.makeRecognizer("en-US")->startTask(request, answers.handler());
        return answers;
    }

    static inline RecordingLog log_;
    static inline std::unique_ptr<VoskService> service_;
    std::unique_ptr<RecognitionTask> task_;
};

TEST_F(VoskRealModel, hearsWhatPeopleSay) {
    EXPECT_EQ(hear(readRecording(kGoForward)).waitForText(), "go forward ten meters");
    EXPECT_EQ(hear(readRecording(kGoSomewhere)).waitForText(), "go somewhere and do something");
    EXPECT_EQ(hear(readRecording(kRecordings + "cards/001.wav")).waitForText(), "ten of clubs");
    EXPECT_THAT(log_.logged(), IsEmpty());
}

TEST_F(VoskRealModel, tellsWhatItHearsMeanwhile) {
    const auto answers = hear(readRecording(kGoSomewhere));
    ASSERT_EQ(answers.waitForText(), "go somewhere and do something");
    std::vector<std::string> partials;
    for (const auto& answer : answers.all()) {
        if (answer.result && !answer.result->isFinal) {
            partials.push_back(answer.result->formattedString);
        }
    }
    EXPECT_THAT(partials, testing::Contains(testing::StartsWith("go somewhere")));
}

TEST_F(VoskRealModel, whenALikelyReadingHasAWordToFavour_takesThatOne) {
    const auto sound = readRecording(kRecordings + "cards/002.wav");
    EXPECT_EQ(hear(sound).waitForText(), "for queen of gloves");
    EXPECT_EQ(hear(sound, {"Clubs"}).waitForText(), "for queen of clubs");
}

TEST_F(VoskRealModel, wordsBeforeAndAfterAPauseAreOneText) {
    auto sound = readRecording(kGoForward);
    sound.resize(sound.size() + 3 * static_cast<std::size_t>(kRecordingRate));
    const auto more = readRecording(kGoSomewhere);
    sound.insert(sound.end(), more.begin(), more.end());
    EXPECT_EQ(hear(sound).waitForText(), "go forward ten meters go somewhere and do something");
}

TEST_F(VoskRealModel, aWordBesideAHum_isHeard) {
    auto five = readRecording(kRecordings + "cards/004.wav");
    five.resize(12000);
    for (const double frequency : {100.0, 150.0, 200.0}) {
        auto sound = buzz(frequency, 4);
        std::transform(five.begin(), five.end(), sound.begin() + 20000, sound.begin() + 20000, std::plus<>());
        EXPECT_THAT(hear(sound).waitForText(), HasSubstr("five")) << frequency;
    }
}

/// Four seconds without a word.
struct Wordless {
    std::string name;
    std::function<float(double seconds, double noise)> at;

    friend void PrintTo(const Wordless& row, std::ostream* out) { *out << row.name; }
};

class VoskRealModelWordless : public VoskRealModel, public testing::WithParamInterface<Wordless> {};

TEST_P(VoskRealModelWordless, isNoSpeech) {
    std::minstd_rand random(5);
    std::normal_distribution<double> noise;
    std::vector<float> sound(static_cast<std::size_t>(4 * kRecordingRate));
    for (std::size_t i = 0; i < sound.size(); ++i) {
        sound[i] = GetParam().at(static_cast<double>(i) / kRecordingRate, noise(random));
    }
    EXPECT_EQ(hear(sound).waitForText(), "<No speech detected>");
}

float tone(double frequency, double seconds) {
    return static_cast<float>(0.2 * std::sin(2 * M_PI * frequency * seconds));
}

INSTANTIATE_TEST_SUITE_P(
    Rows, VoskRealModelWordless,
    testing::Values(
        Wordless{"Silence", [](double, double) { return 0.0F; }},
        Wordless{"FaintNoise", [](double, double noise) { return static_cast<float>(0.001 * noise); }},
        Wordless{"LoudNoise", [](double, double noise) { return static_cast<float>(0.1 * noise); }},
        Wordless{"Hum120", [](double seconds, double) { return tone(120, seconds); }},
        Wordless{"Hum200", [](double seconds, double) { return tone(200, seconds); }},
        Wordless{"Whistle440", [](double seconds, double) { return tone(440, seconds); }},
        Wordless{"Beeps", [](double seconds,
                             double) { return std::fmod(seconds, 1) < 0.25 ? tone(880, seconds) : 0.0F; }},
        Wordless{"Typing",
                 [](double seconds, double noise) {
                     return static_cast<float>(0.5 * std::exp(-std::fmod(seconds * 8, 1) * 50) * noise);
                 }}),
    [](const auto& row) { return row.param.name; });

/// A file of the model that is not as it should be; the library ends its process over each, or hangs, or
/// makes no recognizer of it.
struct Broken {
    std::string name;
    std::string file;
    std::string content;

    friend void PrintTo(const Broken& row, std::ostream* out) { *out << row.name; }
};

class VoskRealModelBroken : public VoskRealModel, public testing::WithParamInterface<Broken> {};

/// The only model in a folder, in another one: its files as links.
void linkFiles(const fs::path& models, const fs::path& copy) {
    const auto model = fs::directory_iterator(models)->path();
    fs::create_directories(copy);
    for (const auto& entry : fs::recursive_directory_iterator(model)) {
        const auto place = copy / fs::relative(entry.path(), model);
        if (entry.is_directory()) {
            fs::create_directories(place);
        } else {
            fs::create_symlink(entry.path(), place);
        }
    }
}

TEST_P(VoskRealModelBroken, isRefusedAndTheProgramLivesOn) {
    const TemporaryFolder folder;
    const auto copy = fs::path(folder.path()) / "vosk-model-en-us-broken";
    linkFiles(realVoskFolder() + "/models", copy);
    fs::remove(copy / GetParam().file);
    writeFile((copy / GetParam().file).string(), GetParam().content);
    RecordingLog log;
    VoskService service(log, {realVoskFolder() + "/libvosk.so"}, {folder.path()});
    EXPECT_THAT(hearWith(service, readRecording(kGoForward)).waitForText(), HasSubstr("is not usable"));
    EXPECT_FALSE(service.makeRecognizer("en-US")->isAvailable());
}

INSTANTIATE_TEST_SUITE_P(Rows, VoskRealModelBroken,
                         testing::Values(Broken{"CrashesWhileLoading", "graph/disambig_tid.int", ""},
                                         Broken{"CrashesWhileListening", "ivector/splice.conf", ""},
                                         Broken{"HasNoGraph", "graph/Gr.fst", ""},
                                         Broken{"HasNonsenseForAGraph", "graph/HCLr.fst", "nonsense"},
                                         Broken{"HasNoAcoustics", "am/final.mdl", "nonsense"},
                                         Broken{"HasNoWords", "graph/words.txt", ""}),
                         [](const auto& row) { return row.param.name; });

} // namespace
} // namespace tovik::test

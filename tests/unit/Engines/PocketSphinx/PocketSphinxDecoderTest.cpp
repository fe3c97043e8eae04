// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Engines/PocketSphinx/PocketSphinxDecoder.h"

#include "Audio/RecognitionRequest.h"
#include "Engines/PocketSphinx/PocketSphinxService.h"
#include "support/Buzz.h"
#include "support/RecognitionAnswers.h"
#include "support/RecordingLog.h"
#include "support/Recordings.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <functional>
#include <ostream>
#include <random>
#include <string_view>
#include <vector>

namespace tovik::test {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::StrCaseEq;

std::vector<std::int16_t> samplesOf(const std::vector<float>& sound) {
    std::vector<std::int16_t> samples;
    for (const auto value : sound) {
        samples.push_back(static_cast<std::int16_t>(value * 32767.0F));
    }
    return samples;
}

std::string decode(UtteranceDecoder& decoder, const std::vector<float>& sound,
                   const std::vector<std::string>& contextualStrings = {}) {
    if (const auto begun = decoder.begin(contextualStrings); !begun) {
        return "<" + begun.error().description + ">";
    }
    const auto samples = samplesOf(sound);
    constexpr std::size_t atOnce = 1024;
    for (std::size_t i = 0; i < samples.size(); i += atOnce) {
        const auto accepted =
            decoder.accept(std::span(samples).subspan(i, std::min(atOnce, samples.size() - i)));
        if (!accepted) {
            return "<" + accepted.error().description + ">";
        }
    }
    const auto text = decoder.finish();
    return text ? text.value() : "<" + text.error().description + ">";
}

std::unique_ptr<UtteranceDecoder> loadDecoder() {
    auto loaded = PocketSphinxDecoder::load(PocketSphinxService::packageModel);
    return loaded ? std::move(loaded.value()) : nullptr;
}

TEST(PocketSphinxDecoder, recognizesOneUtteranceAfterAnother) {
    const auto decoder = loadDecoder();
    ASSERT_NE(decoder, nullptr);
    EXPECT_EQ(decode(*decoder, readRecording(kGoForward)), "go forward ten meters");
    EXPECT_EQ(decode(*decoder, readRecording(kGoSomewhere)), "go somewhere and do something");
    EXPECT_EQ(decode(*decoder, {}), "<No speech detected>");
    EXPECT_EQ(decode(*decoder, readRecording(kGoForward)), "go forward ten meters");
}

TEST(PocketSphinxDecoder, whenQuietComesFirst_hearsTheSameWords) {
    for (const std::size_t frames : {1600, 4800, 12800}) {
        // A decoder of its own each, since the utterance before has its share in the mean.
        const auto decoder = loadDecoder();
        ASSERT_NE(decoder, nullptr);
        auto sound = std::vector<float>(frames);
        const auto speech = readRecording(kGoForward);
        sound.insert(sound.end(), speech.begin(), speech.end());
        EXPECT_EQ(decode(*decoder, sound), "go forward ten meters") << frames;
    }
}

TEST(PocketSphinxDecoder, whenSomebodySpeaksForLong_keepsEveryWordInItsPlace) {
    const auto decoder = loadDecoder();
    ASSERT_NE(decoder, nullptr);
    const auto sentence = readRecording(kGoForward);
    const std::vector<float> pause(8000);
    // Longer than the search goes on in one piece.
    constexpr int times = 15;
    std::vector<float> sound;
    for (int turn = 0; turn < times; ++turn) {
        sound.insert(sound.end(), sentence.begin(), sentence.end());
        sound.insert(sound.end(), pause.begin(), pause.end());
    }
    ASSERT_GT(sound.size(), std::size_t{16000} * 40);
    std::string expected;
    for (int turn = 0; turn < times; ++turn) {
        expected += turn == 0 ? "" : " ";
        expected += "go forward ten";
    }
    auto text = decode(*decoder, sound);
    // How the last word of the sentence is heard depends on what came before.
    for (const auto* last : {" meters", " years"}) {
        for (auto found = text.find(last); found != std::string::npos; found = text.find(last)) {
            text.erase(found, std::string_view(last).size());
        }
    }
    EXPECT_EQ(text, expected);
}

TEST(PocketSphinxDecoder, makesNoWordsOfNoise) {
    const auto decoder = loadDecoder();
    ASSERT_NE(decoder, nullptr);
    std::mt19937 random(7);
    for (const auto loudness : {0.0F, 0.001F, 0.01F, 0.1F, 0.3F}) {
        std::normal_distribution<float> noise(0, loudness);
        std::vector<float> sound(48000);
        std::generate(sound.begin(), sound.end(),
                      [&] { return loudness == 0 ? 0 : std::clamp(noise(random), -1.0F, 1.0F); });
        EXPECT_EQ(decode(*decoder, sound), "<No speech detected>") << loudness;
    }
}

TEST(PocketSphinxDecoder, whenAHumGoesOnForLong_hearsAWordBesideIt) {
    const auto decoder = loadDecoder();
    ASSERT_NE(decoder, nullptr);
    const auto forward = readRecording(kGoForward);
    for (const double frequency : {100.0, 150.0, 200.0}) {
        auto sound = buzz(frequency, 8);
        std::transform(forward.begin(), forward.begin() + 20000, sound.begin() + 20000, sound.begin() + 20000,
                       std::plus<>());
        EXPECT_THAT(decode(*decoder, sound), HasSubstr("forward")) << frequency;
    }
}

TEST(PocketSphinxDecoder, makesNoWordsOfTheQuietBeforeSomebodySpeaks) {
    const auto decoder = loadDecoder();
    ASSERT_NE(decoder, nullptr);
    auto quiet = readRecording(kGoForward);
    quiet.resize(4000);
    EXPECT_EQ(decode(*decoder, quiet), "<No speech detected>");
}

TEST(PocketSphinxDecoder, whenAWordIsInTheVocabulary_givesItInTheUsersSpelling) {
    const auto decoder = loadDecoder();
    ASSERT_NE(decoder, nullptr);
    EXPECT_EQ(decode(*decoder, readRecording(kGoForward), {"Go Forward", "日本"}), "Go Forward ten meters");
}

TEST(PocketSphinxDecoder, whenAWordLeavesTheVocabulary_forgetsIt) {
    const auto decoder = loadDecoder();
    ASSERT_NE(decoder, nullptr);
    EXPECT_EQ(decode(*decoder, readRecording(kGoForward), {"Go Forward"}), "Go Forward ten meters");
    EXPECT_EQ(decode(*decoder, readRecording(kGoForward), {"Tovik"}), "go forward ten meters");
}

TEST(PocketSphinxDecoder, whenAWordJoinsTheVocabulary_knowsItBesideTheOthers) {
    const auto decoder = loadDecoder();
    ASSERT_NE(decoder, nullptr);
    ASSERT_TRUE(decoder->prepare({"Go Forward"}).ok());
    EXPECT_EQ(decode(*decoder, readRecording(kGoForward), {"Go Forward"}), "Go Forward ten meters");
    EXPECT_EQ(decode(*decoder, readRecording(kGoForward), {"Go Forward", "Ten Meters"}),
              "Go Forward Ten Meters");
}

TEST(PocketSphinxDecoder, whenTheVocabularyGrowsAgainAndAgain_goesOnRecognizing) {
    const auto decoder = loadDecoder();
    ASSERT_NE(decoder, nullptr);
    std::vector<std::string> terms{"Go Forward"};
    // More steps than there is room for, so that it begins anew on the way.
    for (int i = 0; i < 32; ++i) {
        terms.push_back("Zork" + std::string(1, static_cast<char>('a' + i % 26)) +
                        std::string(1, static_cast<char>('a' + i / 26)));
        ASSERT_TRUE(decoder->prepare(terms).ok()) << i;
    }
    EXPECT_EQ(decode(*decoder, readRecording(kGoForward), terms), "Go Forward ten meters");
}

TEST(PocketSphinxDecoder, whenTheVocabularyIsLarge_goesOnRecognizing) {
    const auto decoder = loadDecoder();
    ASSERT_NE(decoder, nullptr);
    std::vector<std::string> terms{"Go Forward", "Ten"};
    for (char first = 'a'; first <= 'z'; ++first) {
        for (char second = 'a'; second <= 'z'; ++second) {
            terms.push_back(std::string("Zork") + first + "ovi" + second + "on");
        }
    }
    EXPECT_THAT(decode(*decoder, readRecording(kGoForward), terms), StrCaseEq("go forward ten meters"));
    const auto sentence = kRecordings + "librivox/sense_and_sensibility_01_austen_64kb-0870.wav";
    EXPECT_THAT(decode(*decoder, readRecording(sentence), terms), HasSubstr("in his power to do for"));
}

/// How a model is broken.
struct Damage {
    std::string name;
    std::string file;
    void (*apply)(const fs::path& file);

    friend void PrintTo(const Damage& damage, std::ostream* out) { *out << damage.name; }
};

void empty(const fs::path& file) {
    fs::resize_file(file, 0);
}
void cutShort(const fs::path& file) {
    fs::resize_file(file, fs::file_size(file) / 2);
}
void fillWithNonsense(const fs::path& file) {
    std::fstream stream(file, std::ios::in | std::ios::out | std::ios::binary);
    stream.seekp(64);
    for (int i = 0; i < 4096; ++i) {
        stream.put(static_cast<char>(i * 7));
    }
}
void remove(const fs::path& file) {
    fs::remove(file);
}

class BrokenModel : public testing::TestWithParam<Damage> {};

TEST_P(BrokenModel, isAnErrorAndNoEndOfTheProgram) {
    const TemporaryFolder folder;
    const fs::path root = fs::path(folder.path()) / "model";
    fs::copy(PocketSphinxService::packageModel, root, fs::copy_options::recursive);
    GetParam().apply(root / GetParam().file);

    RecordingLog log;
    PocketSphinxService service(log, root);
    const auto request = std::make_shared<RecognitionRequest>(RecognitionSettings{}, kRecordingRate);
    request->endAudio();
    const RecognitionAnswers answers;
    const auto task = service.makeRecognizer("en-US")->startTask(request, answers.handler());
    const auto end = answers.waitForEnd();
    ASSERT_TRUE(end && end->error);
    EXPECT_EQ(end->error->domain, "SpeechRecognition");
    EXPECT_THAT(end->error->description, HasSubstr("The English speech model is not usable"));
    EXPECT_THAT(end->error->description, HasSubstr("Install the Debian package pocketsphinx-en-us"));
    EXPECT_EQ(service.whyUnavailable(), end->error->description);
}

std::vector<Damage> damages() {
    std::vector<Damage> all;
    const std::vector<std::pair<std::string, std::string>> files{{"Mdef", "en-us/mdef"},
                                                                 {"Features", "en-us/feat.params"},
                                                                 {"Means", "en-us/means"},
                                                                 {"Variances", "en-us/variances"},
                                                                 {"Mixtures", "en-us/sendump"},
                                                                 {"Transitions", "en-us/transition_matrices"},
                                                                 {"LanguageModel", "en-us.lm.bin"},
                                                                 {"Dictionary", "cmudict-en-us.dict"}};
    for (const auto& [name, file] : files) {
        all.push_back({"Missing" + name, file, remove});
        all.push_back({"Empty" + name, file, empty});
        if (name != "Dictionary" && name != "Features") {
            all.push_back({"Short" + name, file, cutShort});
        }
    }
    all.push_back({"NonsenseMeans", "en-us/means", fillWithNonsense});
    all.push_back({"NonsenseMdef", "en-us/mdef", fillWithNonsense});
    all.push_back({"NonsenseTransitions", "en-us/transition_matrices", fillWithNonsense});
    all.push_back({"NonsenseDictionary", "cmudict-en-us.dict",
                   [](const fs::path& file) { std::ofstream(file) << "this is\nno dictionary\n"; }});
    return all;
}

INSTANTIATE_TEST_SUITE_P(Damages, BrokenModel, testing::ValuesIn(damages()),
                         [](const auto& damage) { return damage.param.name; });

} // namespace
} // namespace tovik::test

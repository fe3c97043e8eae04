// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Engines/Vosk/VoskService.h"

#include "Audio/RecognitionRequest.h"
#include "support/RecognitionAnswers.h"
#include "support/RecordingLog.h"
#include "support/VoskFolder.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <filesystem>
#include <thread>

namespace tovik::test {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class VoskServiceTest : public testing::Test {
protected:
    VoskService& service(const std::vector<std::string>& libraries = {VoskFolder::library()}) {
        if (!service_) {
            service_ = std::make_unique<VoskService>(log_, libraries, std::vector{folder_.models()});
        }
        return *service_;
    }

    /// Seconds of sound (true) and of quiet (false), and what comes of it.
    RecognitionAnswers hear(const std::vector<bool>& seconds, const std::string& locale = "en-US",
                            std::vector<std::string> contextualStrings = {}) {
        std::vector<float> sound;
        for (const bool isLoud : seconds) {
            sound.insert(sound.end(), 16000, isLoud ? 0.25F : 0.0F);
        }
        return hearSound(sound, locale, std::move(contextualStrings));
    }

    /// A second of a pure tone.
    RecognitionAnswers hearHum(double frequency) {
        std::vector<float> sound(16000);
        for (std::size_t i = 0; i < sound.size(); ++i) {
            sound[i] =
                static_cast<float>(0.2 * std::sin(2 * M_PI * frequency * static_cast<double>(i) / 16000));
        }
        return hearSound(sound, "en-US", {});
    }

    RecognitionAnswers hearSound(const std::vector<float>& sound, const std::string& locale,
                                 std::vector<std::string> contextualStrings) {
        RecognitionSettings settings;
        settings.reportPartialResults = true;
        settings.contextualStrings = std::move(contextualStrings);
        const auto request = std::make_shared<RecognitionRequest>(settings, 16000);
        request->append({sound, 16000});
        request->endAudio();
        const RecognitionAnswers answers;
        task_ = service().makeRecognizer(locale)->startTask(request, answers.handler());
        return answers;
    }

    const VoskFolder folder_;
    RecordingLog log_;
    std::unique_ptr<VoskService> service_;
    std::unique_ptr<RecognitionTask> task_;
};

TEST_F(VoskServiceTest, whenLibraryAndModelAreThere_recognizes) {
    folder_.addModel("vosk-model-small-en-us-0.15", {"hello there"});
    EXPECT_EQ(hear({true}).waitForText(), "hello there");
    EXPECT_EQ(service().whyUnavailable("en-US"), std::nullopt);
    EXPECT_THAT(log_.logged(), IsEmpty());
}

TEST_F(VoskServiceTest, whenThereIsAPause_joinsWhatStandsBeforeAndAfter) {
    folder_.addModel("en", {"hello there"});
    const auto answers = hear({true, false, true});
    EXPECT_EQ(answers.waitForText(), "hello there hello there");
    std::vector<std::string> partials;
    for (const auto& answer : answers.all()) {
        if (answer.result && !answer.result->isFinal) {
            partials.push_back(answer.result->formattedString);
        }
    }
    EXPECT_THAT(partials, ElementsAre("hello", "hello there", "hello there hello"));
}

TEST_F(VoskServiceTest, whenALikelyReadingHasAWordToFavour_takesThatOne) {
    folder_.addModel("en", {"get hub is down", "github is down", "got hubs down"});
    EXPECT_EQ(hear({true}).waitForText(), "get hub is down");
    EXPECT_EQ(hear({true}, "en-US", {"GitHub"}).waitForText(), "github is down");
}

TEST_F(VoskServiceTest, whenNothingIsHeard_saysThatThereWasNoSpeech) {
    folder_.addModel("en", {"hello"});
    EXPECT_EQ(hear({false}).waitForText(), "<No speech detected>");
}

TEST_F(VoskServiceTest, eachLanguageHasItsOwnModel) {
    folder_.addModel("vosk-model-small-fr-0.22", {"bonjour"});
    folder_.addModel("vosk-model-small-cn-0.22", {"你好"});
    folder_.addModel("vosk-model-de-0.21", {"hallo"});
    EXPECT_EQ(hear({true}, "fr-FR").waitForText(), "bonjour");
    EXPECT_EQ(hear({true}, "zh-CN").waitForText(), "你好");
    EXPECT_EQ(hear({true}, "de_DE.UTF-8").waitForText(), "hallo");
    EXPECT_EQ(hear({true}, "fr-FR").waitForText(), "bonjour");
    EXPECT_EQ(service().makeRecognizer("ja-JP"), nullptr);
    EXPECT_EQ(service().makeRecognizer(""), nullptr);
}

TEST_F(VoskServiceTest, whenTheModelIsMissing_saysWhereToGetOne) {
    EXPECT_FALSE(service().serves("it-IT"));
    EXPECT_THAT(service().whyUnavailable("it-IT").value_or(""),
                AllOf(HasSubstr("There is no Vosk model for it-IT"), HasSubstr("https://alphacephei.com"),
                      HasSubstr(folder_.models())));
}

TEST_F(VoskServiceTest, whenAModelTurnsUpLater_findsIt) {
    EXPECT_FALSE(service().serves("it-IT"));
    folder_.addModel("vosk-model-it-0.22", {"ciao"});
    EXPECT_TRUE(service().serves("it-IT"));
    EXPECT_EQ(hear({true}, "it-IT").waitForText(), "ciao");
}

TEST_F(VoskServiceTest, whenTheLibraryIsMissing_saysWhereToGetItOnce) {
    folder_.addModel("en", {"hello"});
    auto& vosk = service({"/nowhere/libvosk.so"});
    EXPECT_EQ(vosk.makeRecognizer("en-US"), nullptr);
    EXPECT_EQ(vosk.makeRecognizer("en-US"), nullptr);
    EXPECT_THAT(
        vosk.whyUnavailable("en-US").value_or(""),
        AllOf(HasSubstr("The Vosk library is not usable: it is not installed"), HasSubstr("libvosk.so")));
    EXPECT_THAT(log_.logged(), ElementsAre(HasSubstr("The Vosk library is not usable")));
}

TEST_F(VoskServiceTest, whenTheLibraryIsAnother_namesWhatItLacks) {
    folder_.addModel("en", {"hello"});
    service({"libm.so.6"});
    EXPECT_THAT(hear({true}).waitForText(), HasSubstr("libm.so.6 has no vosk_set_log_level"));
    EXPECT_THAT(service().whyUnavailable("en-US").value_or(""),
                HasSubstr("libm.so.6 has no vosk_set_log_level"));
}

TEST_F(VoskServiceTest, whenTheFirstOfTheLibrariesIsAnother_takesTheNext) {
    folder_.addModel("en", {"hello"});
    service({"libm.so.6", VoskFolder::library()});
    EXPECT_EQ(hear({true}).waitForText(), "hello");
}

TEST_F(VoskServiceTest, whenTheModelIsBroken_saysSoAndLivesOn) {
    std::filesystem::create_directories(folder_.models() + "/vosk-model-en-us-0.22");
    EXPECT_THAT(service().whyUnavailable("en-US").value_or(""), HasSubstr("am/final.mdl is missing"));
    EXPECT_FALSE(service().makeRecognizer("en-US")->isAvailable());
    folder_.addModel("vosk-model-de-0.21", {});
    EXPECT_THAT(hear({true}, "de-DE").waitForText(),
                HasSubstr("is not usable: the library refuses it. Unpack it again."));
    EXPECT_FALSE(service().makeRecognizer("de-DE")->isAvailable());
}

TEST_F(VoskServiceTest, whenTheLibraryBreaksDownOverTheModel_saysSoAndLivesOn) {
    folder_.addModel("vosk-model-de-0.21", {"hallo"});
    writeFile(folder_.models() + "/vosk-model-de-0.21/breaks", "");
    EXPECT_THAT(hear({true}, "de-DE").waitForText(), HasSubstr("the library breaks down over it"));
    EXPECT_FALSE(service().makeRecognizer("de-DE")->isAvailable());
    EXPECT_THAT(log_.logged(), ElementsAre(HasSubstr("the library breaks down over it. Unpack it again.")));
}

TEST_F(VoskServiceTest, whenTheModelHasNoWords_saysSo) {
    folder_.addModel("vosk-model-de-0.21", {"hallo"});
    std::filesystem::create_directories(folder_.models() + "/vosk-model-de-0.21/graph");
    writeFile(folder_.models() + "/vosk-model-de-0.21/graph/words.txt", "");
    EXPECT_THAT(service().whyUnavailable("de-DE").value_or(""), HasSubstr("its words.txt is empty"));
}

TEST_F(VoskServiceTest, whenAHumIsTakenForAWord_saysThatThereWasNoSpeech) {
    folder_.addModel("en", {"and"});
    EXPECT_EQ(hearHum(440).waitForText(), "<No speech detected>");
}

TEST_F(VoskServiceTest, whenManyWordsAreHeardBesideAHum_keepsThem) {
    folder_.addModel("en", {"this was whispered beside a fan"});
    EXPECT_EQ(hearHum(440).waitForText(), "this was whispered beside a fan");
}

/// Three languages, one more than stay loaded.
class VoskLanguages : public VoskServiceTest {
protected:
    VoskLanguages() {
        folder_.addModel("fr", {"bonjour"});
        folder_.addModel("de", {"hallo"});
        folder_.addModel("es", {"hola"});
    }

    /// The processes in which models are loaded.
    static std::size_t loadedModels() {
        std::size_t count = 0;
        for (const auto& thread : std::filesystem::directory_iterator("/proc/self/task")) {
            const auto children = readFile((thread.path() / "children").string()).value_or("");
            count += static_cast<std::size_t>(std::count(children.begin(), children.end(), ' '));
        }
        return count;
    }

    static std::shared_ptr<RecognitionRequest> soundOfOneSecond() {
        const auto request = std::make_shared<RecognitionRequest>(RecognitionSettings{}, 16000);
        request->append({std::vector<float>(16000, 0.25F), 16000});
        return request;
    }
};

TEST_F(VoskLanguages, whileOneIsSpoken_asksForTheOthersCostItNothing) {
    const auto request = soundOfOneSecond();
    const RecognitionAnswers answers;
    task_ = service().makeRecognizer("fr-FR")->startTask(request, answers.handler());
    EXPECT_NE(service().makeRecognizer("de-DE"), nullptr);
    EXPECT_NE(service().makeRecognizer("es-ES"), nullptr);
    request->endAudio();
    EXPECT_EQ(answers.waitForText(), "bonjour");
}

TEST_F(VoskLanguages, aRecognizerThatIsHeld_canStillBeUsed) {
    const auto french = service().makeRecognizer("fr-FR");
    EXPECT_NE(service().makeRecognizer("de-DE"), nullptr);
    EXPECT_NE(service().makeRecognizer("es-ES"), nullptr);
    const auto request = soundOfOneSecond();
    request->endAudio();
    const RecognitionAnswers answers;
    task_ = french->startTask(request, answers.handler());
    EXPECT_EQ(answers.waitForText(), "bonjour");
}

TEST_F(VoskLanguages, thatNobodySpeaksAnyMore_areUnloaded) {
    for (const auto* locale : {"fr-FR", "de-DE", "es-ES"}) {
        EXPECT_THAT(hear({true}, locale).waitForText(), testing::Not(IsEmpty()));
    }
    EXPECT_TRUE(service().waitUntilReady("es-ES", Seconds(60)));
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (loadedModels() > 2 && std::chrono::steady_clock::now() < deadline) {
        // What has just been answered may still have been in the way.
        EXPECT_NE(service().makeRecognizer("es-ES"), nullptr);
        std::this_thread::yield();
    }
    EXPECT_EQ(loadedModels(), 2U);
}

/// Which of some models is the one for a locale.
struct Preference {
    std::string name;
    std::vector<std::string> models;
    std::string locale;
    std::string best;

    friend void PrintTo(const Preference& row, std::ostream* out) { *out << row.name; }
};

class VoskPreference : public testing::TestWithParam<Preference> {};

TEST_P(VoskPreference, isTheFittingOne) {
    const VoskFolder folder;
    for (const auto& model : GetParam().models) {
        folder.addModel(model, {"x"});
    }
    const auto found = VoskModels({folder.models()}).find(GetParam().locale);
    EXPECT_EQ(found.value_or("none"),
              GetParam().best == "none" ? "none" : folder.models() + "/" + GetParam().best);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, VoskPreference,
    testing::Values(
        Preference{"Big", {"vosk-model-small-fr-0.22", "vosk-model-fr-0.22"}, "fr-FR", "vosk-model-fr-0.22"},
        Preference{"Newer", {"vosk-model-fr-0.21", "vosk-model-fr-0.22"}, "fr-FR", "vosk-model-fr-0.22"},
        Preference{"Region",
                   {"vosk-model-en-in-0.5", "vosk-model-small-en-us-0.15"},
                   "en-US",
                   "vosk-model-small-en-us-0.15"},
        Preference{"OtherRegion", {"vosk-model-en-us-0.22"}, "en-GB", "vosk-model-en-us-0.22"},
        Preference{"Chinese", {"vosk-model-cn-0.22"}, "zh-CN", "vosk-model-cn-0.22"},
        Preference{"Plain", {"de"}, "de-DE", "de"},
        Preference{"PlainRegion", {"de", "de-DE"}, "de-DE", "de-DE"},
        Preference{"Underscore", {"en_US"}, "en-US", "en_US"},
        Preference{"Speaker", {"vosk-model-spk-0.4"}, "es-ES", "none"},
        Preference{"Longer", {"vosk-model-eng-1"}, "en-US", "none"},
        Preference{"Unrelated", {"english", "deutsch"}, "de-DE", "none"}),
    [](const auto& row) { return row.param.name; });

} // namespace
} // namespace tovik::test

// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Engines/SpeechEngines.h"

#include "Audio/DictationLanguage.h"
#include "Audio/RecognitionRequest.h"
#include "support/HttpServer.h"
#include "support/ManualTime.h"
#include "support/MemoryUserDefaults.h"
#include "support/RecognitionAnswers.h"
#include "support/RecordingLog.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <filesystem>
#include <nlohmann/json.hpp>

namespace tovik::test {
namespace {

namespace fs = std::filesystem;
using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

/// Engines in a world where nothing is there at first: no library, no server, no model.
class SpeechEnginesTest : public testing::Test {
protected:
    SpeechEnginesTest() {
        setenv("LC_ALL", "en_US.UTF-8", 1);
        defaults_.set("platform.speechModel", "/nowhere");
    }
    ~SpeechEnginesTest() override { unsetenv("LC_ALL"); }

    void addVosk() {
        fs::create_directories(data_);
        fs::create_symlink(TOVIK_TEST_VOSK, data_ + "/libvosk.so");
    }
    void addVoskModel(const std::string& name, const std::string& says) {
        fs::create_directories(data_ + "/models/" + name + "/am");
        writeFile(data_ + "/models/" + name + "/am/final.mdl", "model");
        writeFile(data_ + "/models/" + name + "/says", says);
    }
    void addPocketSphinx() { defaults_.remove("platform.speechModel"); }
    void addServer() { defaults_.set("platform.speech.serverUrl", server_.url()); }
    /// An address that is not known to be of this machine, though nothing leaves it.
    void addServerElsewhere() { defaults_.set("platform.speech.serverUrl", "https://0.0.0.0:1"); }

    SpeechEngines& engines() {
        if (!engines_) {
            engines_.emplace(SpeechEngines::Services{.log = log_,
                                                     .defaults = defaults_,
                                                     .queue = time_,
                                                     .secrets = nullptr,
                                                     .dataFolder = folder_.path()});
        }
        return *engines_;
    }

    /// What comes of a second of sound; empty when there is no recognizer that is available.
    std::string dictate(const std::string& locale = "en-US") {
        const auto recognizer = engines().makeRecognizer(locale);
        if (!recognizer || !recognizer->isAvailable()) {
            return {};
        }
        const auto request = std::make_shared<RecognitionRequest>(RecognitionSettings{}, 16000);
        const std::vector<float> sound(16000, 0.25F);
        request->append({sound, 16000});
        request->endAudio();
        const RecognitionAnswers answers;
        const auto task = recognizer->startTask(request, answers.handler());
        return answers.waitForText();
    }

    const TemporaryFolder folder_;
    const std::string data_ = folder_ / "tovik-record";
    HttpServer server_{
        [](HttpExchange& exchange) { exchange.answerJson(200, R"({"text": "from the server"})"); }};
    RecordingLog log_;
    MemoryUserDefaults defaults_;
    ManualTime time_;
    std::optional<SpeechEngines> engines_;
};

TEST_F(SpeechEnginesTest, whenVoskHasTheLocale_itRecognizes) {
    addVosk();
    addVoskModel("en", "from vosk");
    addServer();
    EXPECT_EQ(dictate(), "from vosk");
    EXPECT_EQ(engines().whyUnavailable(), std::nullopt);
}

TEST_F(SpeechEnginesTest, whenVoskHasOtherLocalesOnly_theServerRecognizes) {
    addVosk();
    addVoskModel("fr", "bonjour");
    addServer();
    EXPECT_EQ(dictate(), "from the server");
    EXPECT_EQ(dictate("fr-FR"), "bonjour");
}

TEST_F(SpeechEnginesTest, whenThereIsNoServerEither_pocketSphinxRecognizes) {
    addPocketSphinx();
    // A tone is no speech to it.
    EXPECT_EQ(dictate(), "<No speech detected>");
    EXPECT_EQ(engines().whyUnavailable(), std::nullopt);
}

TEST_F(SpeechEnginesTest, whenNoEngineServesALocale_thereIsNoRecognizerForIt) {
    addPocketSphinx();
    EXPECT_EQ(engines().makeRecognizer("fr-FR"), nullptr);
    EXPECT_NE(engines().makeRecognizer("en-US"), nullptr);
}

TEST_F(SpeechEnginesTest, whenAnEngineIsChosen_noOtherRecognizes) {
    addVosk();
    addVoskModel("en", "from vosk");
    addServer();
    defaults_.set("platform.speech.engine", "server");
    EXPECT_EQ(dictate(), "from the server");
    defaults_.set("platform.speech.engine", "vosk");
    EXPECT_EQ(dictate(), "from vosk");
    EXPECT_EQ(engines().makeRecognizer("ja-JP"), nullptr);
    defaults_.set("platform.speech.engine", "pocketsphinx");
    EXPECT_EQ(dictate(), "");
    EXPECT_THAT(engines().whyUnavailable().value_or(""), HasSubstr("pocketsphinx-en-us"));
}

TEST_F(SpeechEnginesTest, whenTheChosenEngineDoesNotExist_countsAsAutoAndSaysSo) {
    addServer();
    defaults_.set("platform.speech.engine", "abacus");
    EXPECT_EQ(dictate(), "from the server");
    EXPECT_THAT(log_.logged(), Contains(HasSubstr("There is no speech engine \"abacus\"")));
}

TEST_F(SpeechEnginesTest, whenTheServerIsAway_theNextEngineRecognizesFromThenOn) {
    addPocketSphinx();
    defaults_.set("platform.speech.serverUrl", HttpServer([](HttpExchange&) {}).url());
    // Nobody knows it yet.
    EXPECT_THAT(dictate(), HasSubstr("cannot be reached"));
    EXPECT_EQ(dictate(), "<No speech detected>");
    EXPECT_THAT(log_.logged(), Contains(AllOf(HasSubstr("cannot be reached"),
                                              HasSubstr("Another engine recognizes this dictation"))));
}

TEST_F(SpeechEnginesTest, whenTheServerFailedAndNobodyElseKnowsTheLanguage_itIsAskedAgain) {
    addPocketSphinx();
    addServer();
    server_.setHandler([](HttpExchange& exchange) { exchange.answerJson(500, "{}"); });
    EXPECT_THAT(dictate("de-DE"), HasSubstr("error 500"));
    EXPECT_THAT(dictate("de-DE"), HasSubstr("error 500"));
    server_.setHandler(
        [](HttpExchange& exchange) { exchange.answerJson(200, R"({"text": "from the server"})"); });
    EXPECT_EQ(dictate("de-DE"), "from the server");
}

TEST_F(SpeechEnginesTest, whenNothingIsThere_saysWhatToInstall) {
    EXPECT_THAT(engines().whyUnavailable().value_or(""),
                HasSubstr("Install the Debian package pocketsphinx-en-us"));
    defaults_.set("platform.speech.engine", "vosk");
    EXPECT_THAT(engines().whyUnavailable().value_or(""), HasSubstr("There is no Vosk model for en-US"));
    defaults_.set("platform.speech.engine", "server");
    EXPECT_THAT(engines().whyUnavailable().value_or(""), HasSubstr("No speech server is set"));
    defaults_.set("platform.speech.serverUrl", "speech.example");
    EXPECT_THAT(engines().whyUnavailable().value_or(""),
                HasSubstr("The address of the speech server is none"));
}

TEST_F(SpeechEnginesTest, whenTheServerIsElsewhere_theUserIsAskedFirst) {
    addServerElsewhere();
    EXPECT_TRUE(engines().needsConsent());
    EXPECT_FALSE(engines().isRefused());
    EXPECT_THAT(engines().consentText(), HasSubstr("would be sent to the speech server https://0.0.0.0:1"));
    EXPECT_FALSE(engines().makeRecognizer("en-US")->isAvailable());
}

TEST_F(SpeechEnginesTest, whenTheUserRefuses_nothingGoesThereAndTheOthersServe) {
    addServerElsewhere();
    engines().answerConsent(false);
    EXPECT_FALSE(engines().needsConsent());
    EXPECT_TRUE(engines().isRefused());
    EXPECT_EQ(dictate(), "");
    addVosk();
    addVoskModel("en", "from vosk");
    EXPECT_FALSE(engines().isRefused());
    EXPECT_EQ(dictate(), "from vosk");
}

TEST_F(SpeechEnginesTest, whenTheUserAllows_remembersItForThisServerOnly) {
    addServerElsewhere();
    engines().answerConsent(true);
    EXPECT_FALSE(engines().needsConsent());
    EXPECT_FALSE(engines().isRefused());
    defaults_.set("platform.speech.serverUrl", "https://0.0.0.0:2");
    EXPECT_TRUE(engines().needsConsent());
}

TEST_F(SpeechEnginesTest, whenTheServerIsOnThisMachine_nobodyIsAsked) {
    addServer();
    EXPECT_FALSE(engines().needsConsent());
}

TEST_F(SpeechEnginesTest, whenTheServerIsNotUsed_nobodyIsAsked) {
    addServerElsewhere();
    defaults_.set("platform.speech.engine", "pocketsphinx");
    EXPECT_FALSE(engines().needsConsent());
    defaults_.remove("platform.speech.engine");
    addVosk();
    addVoskModel("en", "from vosk");
    EXPECT_FALSE(engines().needsConsent());
    defaults_.set(kSelectedDictationLocaleKey, "fr-FR");
    EXPECT_TRUE(engines().needsConsent());
}

TEST_F(SpeechEnginesTest, whenPrepared_theEngineOfTheNextDictationIsLoaded) {
    addVosk();
    addVoskModel("en", "from vosk");
    engines().prepare({"Tovik"});
    EXPECT_TRUE(engines().waitUntilReady(Seconds(60)));
    EXPECT_THAT(log_.logged(), IsEmpty());
}

} // namespace
} // namespace tovik::test

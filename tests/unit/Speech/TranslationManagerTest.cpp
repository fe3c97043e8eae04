// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Speech/Translation/TranslationManager.h"

#include "support/FakeTranslationService.h"
#include "support/ManualTime.h"
#include "support/MemoryUserDefaults.h"
#include "support/RecordingLog.h"
#include "unit/Speech/Rows.h"

#include <gmock/gmock.h>

#include <nlohmann/json.hpp>

namespace tovik {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Optional;

const TranslationPair kEnglishToSpanish{"en", "es"};
const Error kServiceError{"Service", 7, "The engine stopped."};

class TranslationManagerTest : public testing::Test {
protected:
    TranslationManagerTest() {
        defaults.set("TranslationEnabled", true);
        service.answers.emplace(kEnglishToSpanish, TranslationAvailability::installed);
    }

    void translate(const std::string& text) {
        manager->translate(text, [this](const std::optional<TranslationResult>& result) {
            ++completions;
            outcome = result;
        });
    }

    /// As far as a text that waits for the service's answer.
    void startTranslating(const std::string& text) {
        translate(text);
        time.runPending();
        service.handOverSessions();
    }

    test::ManualTime time;
    test::RecordingLog log;
    test::MemoryUserDefaults defaults;
    test::FakeTranslationService service{time};
    std::unique_ptr<TranslationManager> manager = std::make_unique<TranslationManager>(
        TranslationManager::Ports{.queue = time, .log = log, .defaults = defaults, .service = service});
    int completions = 0;
    std::optional<TranslationResult> outcome;
};

// The languages and the settings.

TEST_F(TranslationManagerTest, theTable_hasTwentyLanguagesByName) {
    std::vector<std::string> ids;
    std::vector<std::string> names;
    for (const auto& language : manager->availableLanguages()) {
        ids.push_back(language.id);
        names.push_back(language.name);
    }
    EXPECT_THAT(ids, ElementsAre("ar", "zh-Hans", "zh-Hant", "nl", "en", "fr", "de", "hi", "id", "it", "ja",
                                 "ko", "pl", "pt-BR", "ru", "es", "th", "tr", "uk", "vi"));
    EXPECT_THAT(names, ElementsAre("Arabic", "Chinese (Simplified)", "Chinese (Traditional)", "Dutch",
                                   "English", "French", "German", "Hindi", "Indonesian", "Italian",
                                   "Japanese", "Korean", "Polish", "Portuguese (Brazil)", "Russian",
                                   "Spanish", "Thai", "Turkish", "Ukrainian", "Vietnamese"));
}

TEST_F(TranslationManagerTest, withoutSettings_isOffAndFromEnglishToSpanish) {
    defaults.remove("TranslationEnabled");
    const auto writes = defaults.writes().size();
    EXPECT_FALSE(manager->isEnabled());
    EXPECT_EQ(manager->sourceLanguageCode(), "en");
    EXPECT_EQ(manager->targetLanguageCode(), "es");
    EXPECT_THAT(manager->sourceLanguage(), Optional(TranslationLanguage{"en", "English"}));
    EXPECT_THAT(manager->targetLanguage(), Optional(TranslationLanguage{"es", "Spanish"}));
    EXPECT_EQ(defaults.writes().size(), writes);
}

TEST_F(TranslationManagerTest, settings_areReadAtEachUse) {
    EXPECT_TRUE(manager->isEnabled());
    defaults.set("TranslationEnabled", false);
    defaults.set("TranslationSourceLanguage", "de");
    defaults.set("TranslationTargetLanguage", "pt-BR");
    EXPECT_FALSE(manager->isEnabled());
    EXPECT_EQ(manager->sourceLanguageCode(), "de");
    EXPECT_EQ(manager->targetLanguageCode(), "pt-BR");
    EXPECT_THAT(manager->sourceLanguage(), Optional(TranslationLanguage{"de", "German"}));
    EXPECT_THAT(manager->targetLanguage(), Optional(TranslationLanguage{"pt-BR", "Portuguese (Brazil)"}));
}

TEST_F(TranslationManagerTest, aCodeThatIsNotInTheTable_isNoLanguage) {
    defaults.set("TranslationSourceLanguage", "xx");
    EXPECT_EQ(manager->sourceLanguageCode(), "xx");
    EXPECT_EQ(manager->sourceLanguage(), std::nullopt);
}

TEST_F(TranslationManagerTest, isAvailable_followsTheService) {
    EXPECT_TRUE(manager->isAvailable());
    service.reason = "Install something.";
    EXPECT_FALSE(manager->isAvailable());
}

// What is delivered untranslated without a word.

struct QuietCase {
    std::string name;
    PropertyValue enabled;
    std::string text;
    std::string source;
    std::string target;

    friend std::ostream& operator<<(std::ostream& out, const QuietCase& row) { return out << row.name; }
};

class UntranslatedTest : public TranslationManagerTest, public testing::WithParamInterface<QuietCase> {};

TEST_P(UntranslatedTest, isCompletedWithoutAResultAndWithoutALine) {
    defaults.set("TranslationEnabled", GetParam().enabled);
    defaults.set("TranslationSourceLanguage", GetParam().source);
    defaults.set("TranslationTargetLanguage", GetParam().target);
    // Also where no service is: the first reason counts.
    service.reason = "Install something.";
    translate(GetParam().text);
    time.runPending();
    EXPECT_EQ(completions, 1);
    EXPECT_EQ(outcome, std::nullopt);
    EXPECT_THAT(log.logged(), IsEmpty());
    EXPECT_THAT(service.asked, IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Texts, UntranslatedTest,
                         testing::Values(QuietCase{"off", false, "hello", "en", "es"},
                                         QuietCase{"a switch that is no boolean", "true", "hello", "en",
                                                   "es"},
                                         QuietCase{"an empty text", true, "", "en", "es"},
                                         QuietCase{"equal languages", true, "hello", "en", "en"},
                                         QuietCase{"equal unknown languages", true, "hello", "xx", "xx"}),
                         test::rowName<testing::TestParamInfo<QuietCase>>);

TEST_F(TranslationManagerTest, withoutAService_saysSoAndDeliversUntranslated) {
    service.reason = "Install something.";
    translate("hello");
    EXPECT_EQ(completions, 1);
    EXPECT_EQ(outcome, std::nullopt);
    EXPECT_THAT(log.logged(), ElementsAre("[TovikVoice] Translation requires macOS 15+",
                                          "[TovikVoice] Install something."));
    EXPECT_THAT(log.printed(), IsEmpty());
}

// One translation.

TEST_F(TranslationManagerTest, translate_returnsBeforeTheServiceIsAsked) {
    translate("hello");
    EXPECT_THAT(service.asked, IsEmpty());
    EXPECT_EQ(completions, 0);
    time.runPending();
    EXPECT_THAT(service.asked, ElementsAre(kEnglishToSpanish));
    EXPECT_THAT(service.offered, ElementsAre(kEnglishToSpanish));
}

TEST_F(TranslationManagerTest, aTranslation_isHandedOverWithItsLanguages) {
    startTranslating("good morning");
    EXPECT_THAT(service.texts, ElementsAre("good morning"));
    service.answer(std::string("buenos días"));
    EXPECT_EQ(completions, 1);
    EXPECT_THAT(outcome, Optional(TranslationResult{"good morning", "buenos días", "en", "es"}));
    EXPECT_THAT(log.logged(), ElementsAre("[TovikVoice] Translated: 'good morning' → 'buenos días'"));
    EXPECT_THAT(log.printed(), IsEmpty());
}

TEST_F(TranslationManagerTest, theLogLine_cutsEachSideTo50Characters) {
    std::string source;
    std::string target;
    for (auto count = 0; count < 120; ++count) {
        source += "é";
        target += "🇪🇸";
    }
    startTranslating(source);
    service.answer(target);
    EXPECT_THAT(log.logged(), ElementsAre("[TovikVoice] Translated: '" + source.substr(0, 50 * 2) + "' → '" +
                                          target.substr(0, 50 * 8) + "'"));
    ASSERT_TRUE(outcome);
    EXPECT_EQ(outcome->translatedText, target);
}

TEST_F(TranslationManagerTest, languagesChangedMeanwhile_areTheOnesUsed) {
    service.answers.emplace(TranslationPair{"fr", "de"}, TranslationAvailability::installed);
    translate("bonjour");
    defaults.set("TranslationSourceLanguage", "fr");
    defaults.set("TranslationTargetLanguage", "de");
    time.runPending();
    service.handOverSessions();
    service.answer(std::string("guten Tag"));
    EXPECT_THAT(outcome, Optional(TranslationResult{"bonjour", "guten Tag", "fr", "de"}));
}

TEST_F(TranslationManagerTest, aPairThatMayNeedADownload_isSaidAndTried) {
    service.answers.insert_or_assign(kEnglishToSpanish, TranslationAvailability::supported);
    startTranslating("hello");
    EXPECT_THAT(log.logged(), ElementsAre("[TovikVoice] Language pair supported but may need download. "
                                          "Proceeding — system will prompt if needed."));
    service.answer(kServiceError);
    EXPECT_EQ(completions, 1);
    EXPECT_EQ(outcome, std::nullopt);
}

TEST_F(TranslationManagerTest, aPairThatIsNotSupported_isSaidAndNotTried) {
    defaults.set("TranslationSourceLanguage", "xx");
    translate("hello");
    time.runPending();
    EXPECT_EQ(completions, 1);
    EXPECT_EQ(outcome, std::nullopt);
    EXPECT_THAT(log.logged(), ElementsAre("[TovikVoice] Language pair xx → es not supported"));
    EXPECT_THAT(service.offered, IsEmpty());
}

TEST_F(TranslationManagerTest, aServiceThatCannotBeAsked_isAnError) {
    service.answers.insert_or_assign(kEnglishToSpanish, kServiceError);
    translate("hello");
    time.runPending();
    EXPECT_EQ(completions, 1);
    EXPECT_EQ(outcome, std::nullopt);
    EXPECT_THAT(log.logged(), ElementsAre("[TovikVoice] Translation error: The engine stopped."));
}

TEST_F(TranslationManagerTest, aFailure_isSaidAndGivesNoResult) {
    startTranslating("hello");
    service.answer(kServiceError);
    EXPECT_EQ(completions, 1);
    EXPECT_EQ(outcome, std::nullopt);
    EXPECT_THAT(log.logged(), ElementsAre("[TovikVoice] Translation error: The engine stopped."));
}

// A single outcome, however many sessions come.

TEST_F(TranslationManagerTest, aSecondSessionAfterTheAnswer_isNotUsed) {
    startTranslating("hello");
    service.answer(std::string("hola"));
    service.handOverSessions();
    EXPECT_THAT(service.texts, ElementsAre("hello"));
    EXPECT_EQ(completions, 1);
}

TEST_F(TranslationManagerTest, ofTwoSessionsThatTranslate_theFirstAnswerCounts) {
    startTranslating("hello");
    service.handOverSessions();
    EXPECT_THAT(service.texts, ElementsAre("hello", "hello"));
    service.answer(std::string("hola"));
    service.answer(std::string("¡buenas!"));
    EXPECT_EQ(completions, 1);
    ASSERT_TRUE(outcome);
    EXPECT_EQ(outcome->translatedText, "hola");
    EXPECT_EQ(log.logged().size(), 1u);
}

TEST_F(TranslationManagerTest, anErrorAfterTheAnswer_isDropped) {
    startTranslating("hello");
    service.handOverSessions();
    service.answer(std::string("hola"));
    service.answer(kServiceError);
    EXPECT_EQ(completions, 1);
    EXPECT_EQ(log.logged().size(), 1u);
}

TEST_F(TranslationManagerTest, requests_areIndependentOfEachOther) {
    startTranslating("one");
    translate("two");
    time.runPending();
    EXPECT_EQ(service.openOffers(), 2u);
    service.answer(std::string("uno"));
    service.handOverSessions();
    service.answer(std::string("dos"));
    EXPECT_EQ(completions, 2);
    EXPECT_EQ(outcome->originalText, "two");
}

// The bridge.

TEST_F(TranslationManagerTest, theBridge_staysForTenSecondsWhateverHappens) {
    startTranslating("hello");
    service.answer(std::string("hola"));
    time.advance(Seconds(9.9));
    EXPECT_EQ(service.openOffers(), 1u);
    time.advance(Seconds(0.1));
    EXPECT_EQ(service.openOffers(), 0u);
}

TEST_F(TranslationManagerTest, anAnswerAfterTheBridgeIsGone_stillCounts) {
    startTranslating("hello");
    time.advance(Seconds(60));
    EXPECT_EQ(completions, 0);
    service.answer(std::string("hola"));
    EXPECT_EQ(completions, 1);
    EXPECT_TRUE(outcome);
}

TEST_F(TranslationManagerTest, withoutEverASession_nothingIsCompleted) {
    translate("hello");
    time.advance(Seconds(3600));
    EXPECT_EQ(completions, 0);
    EXPECT_EQ(service.openOffers(), 0u);
}

TEST_F(TranslationManagerTest, aServiceThatNeedsAWindow_failsWithoutAVisibleOne) {
    service.windowIsVisible = false;
    translate("hello");
    time.runPending();
    EXPECT_EQ(completions, 1);
    EXPECT_EQ(outcome, std::nullopt);
    EXPECT_THAT(log.logged(),
                ElementsAre("[TovikVoice] Translation error: No visible window for translation bridge"));
    EXPECT_THAT(service.offered, IsEmpty());
}

TEST_F(TranslationManagerTest, aServiceThatNeedsAWindow_translatesOnceOneIsVisible) {
    service.windowIsVisible = false;
    translate("hello");
    time.runPending();
    service.windowIsVisible = true;
    startTranslating("good morning");
    service.answer(std::string("buenos días"));
    EXPECT_EQ(completions, 2);
    EXPECT_THAT(outcome, Optional(TranslationResult{"good morning", "buenos días", "en", "es"}));
}

TEST_F(TranslationManagerTest, whenTheManagerIsGone_nothingIsCompletedAndNothingStaysOnOffer) {
    startTranslating("hello");
    translate("never begun");
    manager.reset();
    EXPECT_EQ(service.openOffers(), 0u);
    service.answer(std::string("hola"));
    time.advance(Seconds(20));
    EXPECT_EQ(completions, 0);
}

} // namespace
} // namespace tovik

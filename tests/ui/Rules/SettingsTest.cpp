// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/Settings/CleanupSection.h"
#include "UserInterface/Settings/TranslationSection.h"
#include "support/FakeTextTranslator.h"
#include "support/MemoryUserDefaults.h"
#include "support/RecordingLog.h"

#include <gmock/gmock.h>

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace tovik {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr auto kDefault = "kind of, sort of, um, uh, erm, hmm";

struct CleanupSettingsTest : testing::Test {
    test::MemoryUserDefaults defaults;
    test::RecordingLog log;
    FillerWords fillerWords{defaults};
    std::vector<std::string> toasts;
    CleanupSettings settings{fillerWords, defaults,
                             [this](const std::string& text) { toasts.push_back(text); }};
};

TEST_F(CleanupSettingsTest, atFirst_isOffWithTheDefaultListAndWritesNothing) {
    EXPECT_FALSE(settings.cleanupEnabled());
    EXPECT_EQ(settings.fillerWords(), kDefault);
    EXPECT_THAT(defaults.writes(), IsEmpty());
}

TEST_F(CleanupSettingsTest, theSwitch_isStoredAndSaidAtOnce) {
    settings.cleanupToggled(true);
    EXPECT_EQ(defaults.boolean("TovikVoiceRemoveFillerWords"), true);
    settings.cleanupToggled(false);
    EXPECT_EQ(defaults.boolean("TovikVoiceRemoveFillerWords"), false);
    EXPECT_THAT(toasts, ElementsAre("Cleanup on", "Cleanup off"));
}

TEST_F(CleanupSettingsTest, theList_isStoredWithoutOuterBlanks) {
    EXPECT_EQ(settings.fillerWordsChanged("  um,uh  "), "um,uh");
    EXPECT_EQ(defaults.string("TovikVoiceFillerWords"), "um,uh");
    EXPECT_THAT(toasts, ElementsAre("Filler words saved"));
}

TEST_F(CleanupSettingsTest, aListThatIsCleared_becomesTheDefault) {
    for (const char* nothing : {"", "   ", " \n\t "}) {
        settings.fillerWordsChanged("um");
        EXPECT_EQ(settings.fillerWordsChanged(nothing), kDefault);
        EXPECT_EQ(defaults.string("TovikVoiceFillerWords"), kDefault);
    }
}

TEST_F(CleanupSettingsTest, aDefaultListOfEarlierDays_isShownAsTheDefaultOfToday) {
    EXPECT_EQ(settings.fillerWordsChanged("you know, I mean, kind of, sort of, um, uh, erm, hmm"), kDefault);
    EXPECT_EQ(defaults.string("TovikVoiceFillerWords"), kDefault);
}

struct TranslationSettingsTest : testing::Test {
    test::MemoryUserDefaults defaults;
    test::FakeTextTranslator translator;
    std::vector<std::string> toasts;
    TranslationSettings settings{translator, defaults,
                                 [this](const std::string& text) { toasts.push_back(text); }};
};

TEST_F(TranslationSettingsTest, atFirst_isOffFromEnglishToSpanishAndWritesNothing) {
    EXPECT_FALSE(settings.translationEnabled());
    EXPECT_EQ(settings.sourceLanguage(), "en");
    EXPECT_EQ(settings.targetLanguage(), "es");
    EXPECT_THAT(defaults.writes(), IsEmpty());
}

TEST_F(TranslationSettingsTest, whatCanBeChosen_dependsOnTheServiceAndTheSwitch) {
    struct Row {
        const char* name;
        bool isThere;
        bool isOn;
        const char* title;
        bool languages;
    };
    const Row rows[] = {
        {"service, off", true, false, "Translate after dictation", false},
        {"service, on", true, true, "Translate after dictation", true},
        {"no service, off", false, false, "Translate after dictation (requires macOS 15+)", false},
        {"no service, on", false, true, "Translate after dictation (requires macOS 15+)", false},
    };
    for (const auto& row : rows) {
        translator.missing = row.isThere ? std::nullopt : std::optional<std::string>("No translator.");
        defaults.set("TranslationEnabled", row.isOn);
        EXPECT_EQ(settings.toggleTitle(), row.title) << row.name;
        EXPECT_EQ(settings.isToggleEnabled(), row.isThere) << row.name;
        EXPECT_EQ(settings.areLanguagesEnabled(), row.languages) << row.name;
        EXPECT_EQ(settings.translationEnabled(), row.isOn) << row.name;
        EXPECT_EQ(settings.explanation(), translator.missing) << row.name;
    }
}

TEST_F(TranslationSettingsTest, theSwitch_isStoredAndSaidAtOnce) {
    settings.translationToggled(true);
    EXPECT_EQ(defaults.boolean("TranslationEnabled"), true);
    settings.translationToggled(false);
    EXPECT_EQ(defaults.boolean("TranslationEnabled"), false);
    EXPECT_THAT(toasts, ElementsAre("Translation on", "Translation off"));
}

TEST_F(TranslationSettingsTest, aLanguage_isStoredAndSaidAtOnce) {
    settings.sourceLanguageChanged("de");
    settings.targetLanguageChanged("pt-BR");
    EXPECT_EQ(defaults.string("TranslationSourceLanguage"), "de");
    EXPECT_EQ(defaults.string("TranslationTargetLanguage"), "pt-BR");
    EXPECT_EQ(settings.sourceLanguage(), "de");
    EXPECT_EQ(settings.targetLanguage(), "pt-BR");
    EXPECT_THAT(toasts, ElementsAre("Source language saved", "Target language saved"));
}

TEST_F(TranslationSettingsTest, whenNoLanguageIsSelected_nothingHappens) {
    settings.sourceLanguageChanged(std::nullopt);
    settings.targetLanguageChanged(std::nullopt);
    EXPECT_THAT(defaults.writes(), IsEmpty());
    EXPECT_THAT(toasts, IsEmpty());
}

} // namespace
} // namespace tovik

// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/Settings/TranslationSettings.h"

#include "support/FakeTextTranslator.h"
#include "support/MemoryUserDefaults.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace tovik {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

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

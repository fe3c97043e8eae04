// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Audio/DictationLanguage.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tovik {

void PrintTo(const DictationLocale& locale, std::ostream* out) {
    *out << locale.identifier << " " << locale.title;
}

namespace {

using testing::ElementsAre;

TEST(LocaleDisplay, inMenuOrder_namesEachLanguageBehindItsFlag) {
    EXPECT_THAT(localeDisplay(),
                ElementsAre(DictationLocale{"en-US", "\U0001F1FA\U0001F1F8 English (US)"},
                            DictationLocale{"en-GB", "\U0001F1EC\U0001F1E7 English (UK)"},
                            DictationLocale{"fr-FR", "\U0001F1EB\U0001F1F7 French"},
                            DictationLocale{"es-ES", "\U0001F1EA\U0001F1F8 Spanish"},
                            DictationLocale{"de-DE", "\U0001F1E9\U0001F1EA German"},
                            DictationLocale{"it-IT", "\U0001F1EE\U0001F1F9 Italian"},
                            DictationLocale{"zh-CN", "\U0001F1E8\U0001F1F3 Chinese (Simplified)"},
                            DictationLocale{"ja-JP", "\U0001F1EF\U0001F1F5 Japanese"}));
}

TEST(LocaleDisplay, whenReadAgain_isTheSameTable) {
    EXPECT_EQ(&localeDisplay(), &localeDisplay());
}

TEST(SupportedLocales, standInFallbackOrder) {
    EXPECT_THAT(supportedLocales(),
                ElementsAre("en-US", "en-GB", "fr-FR", "es-ES", "de-DE", "it-IT", "zh-CN", "ja-JP"));
}

TEST(AutoDetect, isNoRowOfTheTable) {
    EXPECT_EQ(kAutoDetectTitle, "\U0001F310 Auto-detect");
    for (const auto& row : localeDisplay()) {
        EXPECT_NE(row.title, kAutoDetectTitle);
    }
}

} // namespace
} // namespace tovik

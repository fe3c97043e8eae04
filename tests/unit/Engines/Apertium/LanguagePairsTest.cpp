// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Engines/Apertium/LanguagePairs.h"

#include "Speech/Translation/TranslationLanguage.h"

#include <gmock/gmock.h>

namespace tovik {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using testing::Optional;

TEST(LanguagePairs, modes_areLookedForUnderEveryNameTheyMayHave) {
    EXPECT_THAT(modeNames({"en", "es"}), ElementsAre("eng-spa", "en-spa", "eng-es", "en-es"));
    EXPECT_EQ(modeNames({"es", "pt-BR"}).front(), "spa-por_BR");
    EXPECT_THAT(modeNames({"zh-Hans", "en"}), ElementsAre("zho-eng", "zh-eng", "zho-en", "zh-en"));
}

TEST(LanguagePairs, everyLanguageOfTheTable_hasModeNames) {
    for (const auto& language : availableTranslationLanguages()) {
        EXPECT_THAT(modeNames({language.id, "en"}), Not(IsEmpty())) << language.id;
    }
    EXPECT_THAT(modeNames({"xx", "en"}), IsEmpty());
    EXPECT_THAT(modeNames({"en", "../../etc/passwd"}), IsEmpty());
}

TEST(LanguagePairs, packages_areKnownForBothDirections) {
    struct Row {
        TranslationPair pair;
        const char* package;
    };
    const Row rows[] = {
        {{"en", "es"}, "apertium-eng-spa"}, {{"es", "en"}, "apertium-eng-spa"},
        {{"fr", "es"}, "apertium-fr-es"},   {{"pt-BR", "es"}, "apertium-es-pt"},
        {{"it", "es"}, "apertium-spa-ita"}, {{"uk", "ru"}, "apertium-rus-ukr"},
    };
    for (const auto& row : rows) {
        EXPECT_THAT(packageOfPair(row.pair), Optional(std::string(row.package)));
    }
    EXPECT_EQ(packageOfPair({"en", "ja"}), std::nullopt);
    EXPECT_EQ(packageOfPair({"en", "en"}), std::nullopt);
}

} // namespace
} // namespace tovik

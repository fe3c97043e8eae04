// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Speech/Translation/TranslationLanguage.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

namespace tovik {
namespace {

TEST(TranslationLanguages, areTwentyInTheOrderOfTheirNames) {
    const auto& languages = availableTranslationLanguages();
    EXPECT_EQ(languages.size(), 20U);
    EXPECT_TRUE(std::is_sorted(languages.begin(), languages.end(),
                               [](const auto& one, const auto& other) { return one.name < other.name; }));
}

TEST(TranslationLanguages, haveAnIdentifierEach) {
    std::set<std::string> ids;
    for (const auto& language : availableTranslationLanguages()) {
        ids.insert(language.id);
    }
    EXPECT_EQ(ids.size(), 20U);
    EXPECT_TRUE(ids.contains(kDefaultSourceLanguage));
    EXPECT_TRUE(ids.contains(kDefaultTargetLanguage));
}

TEST(TranslationLanguages, knowWhichChineseAndWhichPortugueseIsMeant) {
    const auto& languages = availableTranslationLanguages();
    const auto has = [&languages](const TranslationLanguage& wanted) {
        return std::find(languages.begin(), languages.end(), wanted) != languages.end();
    };
    EXPECT_TRUE(has({"zh-Hans", "Chinese (Simplified)"}));
    EXPECT_TRUE(has({"zh-Hant", "Chinese (Traditional)"}));
    EXPECT_TRUE(has({"pt-BR", "Portuguese (Brazil)"}));
}

} // namespace
} // namespace tovik

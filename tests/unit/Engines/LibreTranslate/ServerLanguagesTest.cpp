// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Engines/LibreTranslate/ServerLanguages.h"

#include <gmock/gmock.h>

namespace tovik {
namespace {

using testing::Optional;

std::optional<ServerLanguages> read(const char* json) {
    return ServerLanguages::read(nlohmann::json::parse(json, nullptr, false));
}

TEST(ServerLanguages, pairs_areThoseThatTheServerTells) {
    const auto languages =
        read(R"([{"code":"en","name":"English","targets":["es","en"]},{"code":"es","targets":[]}])");
    ASSERT_TRUE(languages);
    EXPECT_THAT(languages->codesFor({"en", "es"}), Optional(TranslationPair{"en", "es"}));
    EXPECT_EQ(languages->codesFor({"es", "en"}), std::nullopt);
    EXPECT_EQ(languages->codesFor({"en", "fr"}), std::nullopt);
    EXPECT_EQ(languages->codesFor({"fr", "en"}), std::nullopt);
}

TEST(ServerLanguages, withoutTargets_everyLanguageIsOne) {
    const auto languages = read(R"([{"code":"en"},{"code":"de"}])");
    ASSERT_TRUE(languages);
    EXPECT_TRUE(languages->codesFor({"en", "de"}));
    EXPECT_FALSE(languages->codesFor({"en", "es"}));
}

TEST(ServerLanguages, codesOfOlderServers_areKnown) {
    struct Row {
        const char* json;
        TranslationPair pair;
        TranslationPair codes;
    };
    const Row rows[] = {
        {R"([{"code":"zh"},{"code":"zt"}])", {"zh-Hans", "zh-Hant"}, {"zh", "zt"}},
        {R"([{"code":"zh-Hans"},{"code":"zh-Hant"}])", {"zh-Hans", "zh-Hant"}, {"zh-Hans", "zh-Hant"}},
        {R"([{"code":"en"},{"code":"pt"}])", {"en", "pt-BR"}, {"en", "pt"}},
        {R"([{"code":"en"},{"code":"pt"},{"code":"pb"}])", {"en", "pt-BR"}, {"en", "pb"}},
        {R"([{"code":"en"},{"code":"pt"},{"code":"pt-BR"}])", {"pt-BR", "en"}, {"pt-BR", "en"}},
    };
    for (const auto& row : rows) {
        EXPECT_THAT(read(row.json).value().codesFor(row.pair), Optional(row.codes)) << row.json;
    }
}

TEST(ServerLanguages, whatIsNoList_isNone) {
    for (const auto* json :
         {"{}", "\"en\"", "[\"en\"]", "[{\"name\":\"English\"}]", "[{\"code\":1}]", "nonsense", ""}) {
        EXPECT_FALSE(read(json)) << json;
    }
}

} // namespace
} // namespace tovik

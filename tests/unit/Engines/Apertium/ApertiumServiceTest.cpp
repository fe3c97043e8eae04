// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Engines/Apertium/ApertiumService.h"

#include "Speech/Translation/TranslationManager.h"
#include "support/ManualTime.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <chrono>
#include <optional>
#include <thread>

namespace tovik {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::Optional;

class ApertiumServiceTest : public testing::Test {
protected:
    void install(const std::string& mode, const std::string& pipeline) {
        test::writeFile(folder / (mode + ".mode"), pipeline);
    }

    TranslationAvailability availability(const TranslationPair& pair) {
        std::optional<Result<TranslationAvailability>> answer;
        service.availability(pair, [&](const Result<TranslationAvailability>& given) { answer = given; });
        time.runPending();
        return answer.value().value();
    }

    Result<std::string> translate(const TranslationPair& pair, const std::string& text) {
        std::optional<Result<std::string>> outcome;
        const auto offer = service.offerSessions(pair, [&](const TranslationSession& session) {
            session(text, [&](const Result<std::string>& answer) { outcome = answer; });
        });
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(15);
        while (!outcome && std::chrono::steady_clock::now() < deadline) {
            time.runPending();
            std::this_thread::yield();
        }
        return outcome.value_or(Error{"test", 0, "no answer"});
    }

    test::TemporaryFolder folder;
    test::ManualTime time;
    ApertiumService service{time, folder.path()};
};

TEST_F(ApertiumServiceTest, withoutAnyMode_saysWhatToInstall) {
    EXPECT_EQ(service.whyUnavailable(),
              "To translate on this machine, install the packages apertium and apertium-eng-spa.");
    install("eng-spa", "cat");
    EXPECT_EQ(service.whyUnavailable(), std::nullopt);
}

TEST_F(ApertiumServiceTest, withoutItsFolder_saysWhatToInstall) {
    const ApertiumService elsewhere(time, folder / "missing");
    EXPECT_NE(elsewhere.whyUnavailable(), std::nullopt);
}

TEST_F(ApertiumServiceTest, aPair_isInstalledSupportedOrUnsupported) {
    install("fr-es", "cat");
    install("spa-por_BR", "cat");
    EXPECT_EQ(availability({"fr", "es"}), TranslationAvailability::installed);
    EXPECT_EQ(availability({"es", "pt-BR"}), TranslationAvailability::installed);
    EXPECT_EQ(availability({"es", "fr"}), TranslationAvailability::supported);
    EXPECT_EQ(availability({"en", "es"}), TranslationAvailability::supported);
    EXPECT_EQ(availability({"en", "ja"}), TranslationAvailability::unsupported);
    EXPECT_EQ(availability({"xx", "es"}), TranslationAvailability::unsupported);
}

TEST_F(ApertiumServiceTest, aPairThatIsInstalledMeanwhile_isNoticed) {
    EXPECT_EQ(availability({"en", "es"}), TranslationAvailability::supported);
    install("eng-spa", "cat");
    EXPECT_EQ(availability({"en", "es"}), TranslationAvailability::installed);
}

TEST_F(ApertiumServiceTest, aPairWhosePackageIsAbsent_failsWithItsName) {
    EXPECT_EQ(translate({"en", "es"}, "hello").error().description,
              "To translate en → es, install the package apertium-eng-spa.");
    EXPECT_EQ(translate({"en", "ja"}, "hello").error().description,
              "Apertium has no translator for en → ja.");
}

TEST_F(ApertiumServiceTest, aModeThatIsNoPipeline_fails) {
    install("eng-spa", "rm -rf / ; true");
    EXPECT_THAT(translate({"en", "es"}, "hello").error().description, HasSubstr("not a plain pipeline"));
}

TEST_F(ApertiumServiceTest, pairs_haveTheirOwnPrograms) {
    install("eng-spa", "sed -u -e 's/house/casa/'");
    install("spa-eng", "sed -u -e 's/casa/house/'");
    EXPECT_EQ(translate({"en", "es"}, "a house").value(), "a casa");
    EXPECT_EQ(translate({"es", "en"}, "a casa").value(), "a house");
}

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

TEST(ModeFile, aPipeline_becomesItsProgramsInNullFlushMode) {
    const auto stages = stagesOfMode("lt-proc '/data/a b.bin' | apertium-tagger -g $2 '/data/x.prob' |\n"
                                     "  lt-proc $1 '/data/gen.bin'\n");
    ASSERT_TRUE(stages);
    EXPECT_THAT(stages.value(), ElementsAre(Stage{"lt-proc", "-z", "/data/a b.bin"},
                                            Stage{"apertium-tagger", "-z", "-g", "/data/x.prob"},
                                            Stage{"lt-proc", "-z", "-n", "/data/gen.bin"}));
}

TEST(ModeFile, quotesInsideAnArgument_joinIt) {
    const auto stages = stagesOfMode("cg-proc '/a'/b'|c'");
    ASSERT_TRUE(stages);
    EXPECT_THAT(stages.value(), ElementsAre(Stage{"cg-proc", "-z", "/a/b|c"}));
}

TEST(ModeFile, anythingButAPipeline_isRefused) {
    for (const auto* content : {"", "  \n", "a |", "| a", "a || b", "a; b", "a && b", "a > b", "a < b",
                                "a `b`", "a $(b)", "a 'b", "a \"b\"", "a \\b"}) {
        const auto stages = stagesOfMode(content);
        EXPECT_FALSE(stages) << content;
    }
}

} // namespace
} // namespace tovik

// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Engines/Apertium/ApertiumService.h"

#include "support/ManualTime.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <chrono>
#include <optional>
#include <thread>

namespace tovik {
namespace {

using testing::HasSubstr;

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

} // namespace
} // namespace tovik

// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Engines/Apertium/ApertiumService.h"
#include "Engines/LibreTranslate/LibreTranslateService.h"
#include "Linux/Desktop/QtMainQueue.h"
#include "support/EventLoop.h"
#include "support/FakeSecretStore.h"
#include "support/FakeTranslationService.h"
#include "support/MemoryUserDefaults.h"
#include "support/RecordingLog.h"
#include "support/TranslationServer.h"

#include <QString>

#include <gmock/gmock.h>

#include <algorithm>
#include <chrono>
#include <functional>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

namespace tovik::test {
namespace {

using testing::HasSubstr;

const TranslationPair kEnglishToSpanish{"en", "es"};

/// A service that translates from English to Spanish, and what it stands on.
class ServiceWorld {
public:
    virtual ~ServiceWorld() = default;
    [[nodiscard]] virtual TranslationService& service() = 0;
    /// Ends the service.
    virtual void end() = 0;

    QtMainQueue queue;
};

class FakeWorld : public ServiceWorld {
public:
    FakeWorld() {
        service_->answers.emplace(kEnglishToSpanish, TranslationAvailability::installed);
        service_->phrases =
            std::map<std::string, std::string>{{"good morning", "buenos días"}, {"my friend", "mi amigo"}};
    }
    TranslationService& service() override { return *service_; }
    void end() override { service_.reset(); }

private:
    std::unique_ptr<FakeTranslationService> service_ = std::make_unique<FakeTranslationService>(queue);
};

class ApertiumWorld : public ServiceWorld {
public:
    TranslationService& service() override { return *service_; }
    void end() override { service_.reset(); }

private:
    std::unique_ptr<ApertiumService> service_ = std::make_unique<ApertiumService>(queue);
};

class LibreTranslateWorld : public ServiceWorld {
public:
    LibreTranslateWorld() { defaults_.set("platform.translation.url", server_.url()); }
    TranslationService& service() override { return *service_; }
    void end() override { service_.reset(); }

private:
    TranslationServer server_;
    RecordingLog log_;
    MemoryUserDefaults defaults_;
    FakeSecretStore secrets_{queue};
    std::unique_ptr<LibreTranslateService> service_ = std::make_unique<LibreTranslateService>(
        LibreTranslateService::Ports{queue, log_, defaults_, secrets_});
};

/// Whether a translation begins with a capital is the engine's business.
std::string lowerCase(const std::string& text) {
    return QString::fromStdString(text).toLower().toStdString();
}

struct WorldKind {
    std::string name;
    std::function<std::unique_ptr<ServiceWorld>()> make;
};

class TranslationServiceContract : public testing::TestWithParam<WorldKind> {
protected:
    TranslationService& service() { return world->service(); }

    TranslationSession session() {
        TranslationSession session;
        const auto offer = service().offerSessions(kEnglishToSpanish,
                                                   [&](const TranslationSession& given) { session = given; });
        EXPECT_TRUE(offer);
        EXPECT_FALSE(session) << "sessions come later";
        EXPECT_TRUE(runUntil([&] { return session != nullptr; }));
        return session;
    }

    std::string translate(const std::string& text, std::chrono::seconds patience = std::chrono::seconds(15)) {
        std::vector<Result<std::string>> outcomes;
        session()(text, [&](const Result<std::string>& outcome) { outcomes.push_back(outcome); });
        EXPECT_TRUE(outcomes.empty()) << "answers come later";
        EXPECT_TRUE(runUntil([&] { return !outcomes.empty(); }, patience));
        runPendingEvents();
        EXPECT_EQ(outcomes.size(), 1u);
        if (outcomes.empty() || !outcomes.front()) {
            ADD_FAILURE() << (outcomes.empty() ? "no answer" : outcomes.front().error().description);
            return {};
        }
        return outcomes.front().value();
    }

    std::unique_ptr<ServiceWorld> world = GetParam().make();
};

TEST_P(TranslationServiceContract, aServiceThatIsThere_givesNoReasonWhyNot) {
    EXPECT_EQ(service().whyUnavailable(), std::nullopt);
}

TEST_P(TranslationServiceContract, availability_isAnsweredOnceAndLater) {
    std::vector<Result<TranslationAvailability>> answers;
    const auto take = [&](const Result<TranslationAvailability>& answer) { answers.push_back(answer); };
    service().availability(kEnglishToSpanish, take);
    EXPECT_TRUE(answers.empty());
    EXPECT_TRUE(runUntil([&] { return answers.size() == 1; }));
    service().availability({"xx", "es"}, take);
    service().availability({"en", "xx"}, take);
    EXPECT_TRUE(runUntil([&] { return answers.size() == 3; }));
    runPendingEvents();
    ASSERT_EQ(answers.size(), 3u);
    EXPECT_EQ(answers[0].value(), TranslationAvailability::installed);
    EXPECT_EQ(answers[1].value(), TranslationAvailability::unsupported);
    EXPECT_EQ(answers[2].value(), TranslationAvailability::unsupported);
}

TEST_P(TranslationServiceContract, aText_isTranslated) {
    EXPECT_EQ(translate("good morning"), "buenos días");
}

TEST_P(TranslationServiceContract, aDroppedOffer_handsOverNoSession) {
    auto sessions = 0;
    {
        const auto offer =
            service().offerSessions(kEnglishToSpanish, [&](const TranslationSession&) { ++sessions; });
    }
    EXPECT_EQ(translate("good morning"), "buenos días");
    EXPECT_EQ(sessions, 0);
}

TEST_P(TranslationServiceContract, aDroppedSession_stillAnswers) {
    std::optional<Result<std::string>> answer;
    session()("good morning", [&](const Result<std::string>& outcome) { answer = outcome; });
    EXPECT_TRUE(runUntil([&] { return answer.has_value(); }));
    EXPECT_EQ(answer->value(), "buenos días");
}

TEST_P(TranslationServiceContract, textsAtTheSameTime_areEachAnswered) {
    constexpr auto kCount = 8;
    std::vector<std::string> answers;
    const auto shared = session();
    for (auto count = 0; count < kCount; ++count) {
        shared(count % 2 == 0 ? "my friend" : "good morning", [&](const Result<std::string>& outcome) {
            answers.push_back(outcome ? lowerCase(outcome.value()) : outcome.error().description);
        });
    }
    EXPECT_TRUE(runUntil([&] { return answers.size() == kCount; }));
    EXPECT_EQ(std::ranges::count(answers, "mi amigo"), kCount / 2);
    EXPECT_EQ(std::ranges::count(answers, "buenos días"), kCount / 2);
}

TEST_P(TranslationServiceContract, whatIsNoLanguage_survives) {
    const std::string texts[] = {
        "\n", " ", "\n\n\t\n", std::string("\0", 1), "😀", "👩‍👩‍👧🇪🇸",
    };
    for (const auto& text : texts) {
        EXPECT_EQ(translate(text), text);
    }
}

TEST_P(TranslationServiceContract, whenTheServiceEnds_nothingIsAnswered) {
    auto answers = 0;
    auto isLater = false;
    const auto count = [&](const auto&) { ++answers; };
    const auto inFlight = session();
    inFlight("good morning", count);
    service().availability(kEnglishToSpanish, count);
    world->end();
    world->queue.asyncAfter(Seconds(0.05), [&] { isLater = true; });
    EXPECT_TRUE(runUntil([&] { return isLater; }));
    EXPECT_EQ(answers, 0);
}

INSTANTIATE_TEST_SUITE_P(
    Services, TranslationServiceContract,
    testing::Values(WorldKind{"FakeTranslationService", [] { return std::make_unique<FakeWorld>(); }},
                    WorldKind{"Apertium", [] { return std::make_unique<ApertiumWorld>(); }},
                    WorldKind{"LibreTranslate", [] { return std::make_unique<LibreTranslateWorld>(); }}),
    [](const auto& kind) { return kind.param.name; });

/// What is neither letter nor space, in order; apostrophes and hyphens belong to words.
std::string marksOf(const std::string& text) {
    QString marks;
    for (const auto character : QString::fromStdString(text)) {
        if (!character.isLetter() && character != ' ' && character != QChar(0x2019) && character != '\'') {
            marks += character;
        }
    }
    return marks.toStdString();
}

/// Those that really translate.
class RealTranslationContract : public TranslationServiceContract {};

TEST_P(RealTranslationContract, lineBreaksQuotesEmojiAndZeroBytes_stayWhereTheyStand) {
    struct Row {
        const char* name;
        std::string text;
        std::string translation;
    };
    const Row rows[] = {
        {"line breaks", "good morning\n\nthe house\r\n", "buenos días\n\nla casa\r\n"},
        {"wide gaps and a tab", "  good morning   house\tfriend ", "  buenos días   casa\tamigo "},
        {"quotes", "the \"house\" of my friend", "la \"casa\" de mi amigo"},
        {"an emoji", "good morning 😀 friend", "buenos días 😀 amigo"},
        {"a zero byte", std::string("house\0friend", 12), std::string("casa\0amigo", 10)},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(lowerCase(translate(row.text)), row.translation) << row.name;
    }
}

TEST_P(RealTranslationContract, everyMark_survives) {
    const std::string texts[] = {
        "friend [house] {house} ^house$ <house> house/house @ \\ friend",
        "house * house # house ~ house + house = house",
        "don’t say “good morning” to ‘friends’ (they know)...",
        "50% of $100, 3.5 and 1,000; yes?! - no",
        "the xyzzy house",
    };
    for (const auto& text : texts) {
        EXPECT_EQ(marksOf(translate(text)), marksOf(text)) << text;
    }
    EXPECT_THAT(translate("the xyzzy house"), HasSubstr("xyzzy"));
}

TEST_P(RealTranslationContract, aVeryLongText_comesBackWhole) {
    std::string text;
    while (text.size() < 200000) {
        text += "good morning my friend\n";
    }
    const auto translation = lowerCase(translate(text, std::chrono::seconds(60)));
    EXPECT_EQ(std::ranges::count(translation, '\n'), std::ranges::count(text, '\n'));
    EXPECT_TRUE(translation.ends_with("buenos días mi amigo\n"));
}

TEST_P(RealTranslationContract, anEndlessWord_comesBackAsItIs) {
    const auto word = std::string(200000, 'x');
    EXPECT_EQ(lowerCase(translate("good morning " + word + " house")), "buenos días " + word + " casa");
}

INSTANTIATE_TEST_SUITE_P(
    Services, RealTranslationContract,
    testing::Values(WorldKind{"Apertium", [] { return std::make_unique<ApertiumWorld>(); }},
                    WorldKind{"LibreTranslate", [] { return std::make_unique<LibreTranslateWorld>(); }}),
    [](const auto& kind) { return kind.param.name; });

} // namespace
} // namespace tovik::test

// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Engines/LibreTranslate/LibreTranslateService.h"

#include "support/ComesTrue.h"
#include "support/FakeSecretStore.h"
#include "support/HttpServer.h"
#include "support/ManualTime.h"
#include "support/MemoryUserDefaults.h"
#include "support/RecordingLog.h"

#include <gmock/gmock.h>

#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

namespace tovik {
namespace {

using test::HttpExchange;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Optional;

constexpr auto kLanguages = R"([{"code":"en","targets":["es"]},{"code":"es","targets":["en"]}])";
constexpr auto kHola = R"({"translatedText":"hola"})";

/// The network is real, the clock is not.
class LibreTranslateServiceTest : public testing::Test {
protected:
    LibreTranslateServiceTest() { defaults.set("platform.translation.url", server.url()); }

    /// The server tells its languages, and does this with translations.
    static test::HttpServer::Handler answering(const test::HttpServer::Handler& onTranslate) {
        return [onTranslate](HttpExchange& exchange) {
            if (exchange.request().target == "/languages") {
                exchange.answerJson(200, kLanguages);
            } else {
                onTranslate(exchange);
            }
        };
    }

    /// Runs the queue, while the clock stands still.
    bool waitUntil(const std::function<bool()>& holds) {
        return test::comesTrue([&] {
            time.runPending();
            return holds();
        });
    }

    void beginTranslating(const std::string& text, const TranslationPair& pair = {"en", "es"}) {
        outcome.reset();
        offer = service->offerSessions(pair, [this, text](const TranslationSession& session) {
            session(text, [this](const Result<std::string>& answer) {
                ++completions;
                outcome = answer;
            });
        });
        time.runPending();
    }
    Result<std::string> translate(const std::string& text, const TranslationPair& pair = {"en", "es"}) {
        beginTranslating(text, pair);
        EXPECT_TRUE(waitUntil([this] { return outcome.has_value(); }));
        return outcome.value_or(Error{"test", 0, "no answer"});
    }
    Result<TranslationAvailability> availability(const TranslationPair& pair = {"en", "es"}) {
        std::optional<Result<TranslationAvailability>> answer;
        service->availability(pair, [&](const Result<TranslationAvailability>& given) { answer = given; });
        EXPECT_TRUE(waitUntil([&] { return answer.has_value(); }));
        return answer.value_or(Error{"test", 0, "no answer"});
    }

    std::vector<std::string> targets() {
        std::vector<std::string> all;
        for (const auto& request : server.requests()) {
            all.push_back(request.method + " " + request.target);
        }
        return all;
    }
    nlohmann::json lastContent() { return nlohmann::json::parse(server.requests().back().body); }

    test::HttpServer server{answering([](HttpExchange& exchange) { exchange.answerJson(200, kHola); })};
    test::ManualTime time;
    test::RecordingLog log;
    test::MemoryUserDefaults defaults;
    test::FakeSecretStore secrets{time};
    std::unique_ptr<LibreTranslateService> service = std::make_unique<LibreTranslateService>(
        LibreTranslateService::Ports{.queue = time, .log = log, .defaults = defaults, .secrets = secrets});
    std::optional<Subscription> offer;
    int completions = 0;
    std::optional<Result<std::string>> outcome;
};

// Which server.

TEST_F(LibreTranslateServiceTest, theSetting_saysWhetherThereIsAServer) {
    struct Row {
        std::string url;
        bool isChosen;
        bool isUsable;
    };
    const Row rows[] = {
        {"", false, false},
        {"/", false, false},
        {"https://translate.example", true, true},
        {"http://[::1]:5000/", true, true},
        {"nonsense", true, false},
        {"ftp://translate.example", true, false},
        {"http://", true, false},
    };
    for (const auto& row : rows) {
        defaults.set("platform.translation.url", row.url);
        EXPECT_EQ(service->isChosen(), row.isChosen) << row.url;
        EXPECT_EQ(!service->whyUnavailable(), row.isUsable) << row.url;
    }
    defaults.remove("platform.translation.url");
    EXPECT_FALSE(service->isChosen());
}

TEST_F(LibreTranslateServiceTest, anAddressWithAPath_isKept) {
    defaults.set("platform.translation.url", server.url() + "/libre//");
    (void)availability();
    EXPECT_THAT(targets(), ElementsAre("GET /libre/languages"));
}

// The languages.

TEST_F(LibreTranslateServiceTest, languages_areAskedOnce) {
    EXPECT_EQ(availability().value(), TranslationAvailability::installed);
    EXPECT_EQ(availability({"es", "en"}).value(), TranslationAvailability::installed);
    EXPECT_EQ(availability({"en", "de"}).value(), TranslationAvailability::unsupported);
    EXPECT_TRUE(translate("hello"));
    EXPECT_THAT(targets(), ElementsAre("GET /languages", "POST /translate"));
}

TEST_F(LibreTranslateServiceTest, questionsAtTheSameTime_shareOneRequest) {
    auto answers = 0;
    for (auto count = 0; count < 3; ++count) {
        service->availability({"en", "es"}, [&](const auto&) { ++answers; });
    }
    EXPECT_TRUE(waitUntil([&] { return answers == 3; }));
    EXPECT_THAT(targets(), ElementsAre("GET /languages"));
}

TEST_F(LibreTranslateServiceTest, anotherServer_isAskedForItsOwn) {
    EXPECT_TRUE(availability());
    test::HttpServer other([](HttpExchange& exchange) { exchange.answerJson(200, R"([{"code":"de"}])"); });
    defaults.set("platform.translation.url", other.url());
    EXPECT_EQ(availability().value(), TranslationAvailability::unsupported);
    EXPECT_EQ(other.requests().size(), 1u);
}

TEST_F(LibreTranslateServiceTest, afterAFailure_languagesAreAskedAgain) {
    server.setHandler([](HttpExchange& exchange) { exchange.answerJson(503, "{}"); });
    EXPECT_FALSE(availability());
    server.setHandler([](HttpExchange& exchange) { exchange.answerJson(200, kLanguages); });
    EXPECT_TRUE(availability());
}

TEST_F(LibreTranslateServiceTest, withoutAServerBehindTheAddress_isAnError) {
    defaults.set("platform.translation.url", "http://127.0.0.1:1");
    const auto answer = availability();
    ASSERT_FALSE(answer);
    EXPECT_THAT(answer.error().description, HasSubstr("gave no answer"));
}

// One translation.

TEST_F(LibreTranslateServiceTest, aText_isSentAsItIs) {
    const std::string text("Grüße \"world\"\n😀\0end", 24);
    EXPECT_EQ(translate(text).value(), "hola");
    const auto content = lastContent();
    EXPECT_EQ(content, nlohmann::json({{"q", text}, {"source", "en"}, {"target", "es"}, {"format", "text"}}));
    EXPECT_EQ(server.requests().back().headers.at("content-type"), "application/json");
}

TEST_F(LibreTranslateServiceTest, bytesThatAreNoText_areReplaced) {
    EXPECT_TRUE(translate("a\xFF b"));
    EXPECT_EQ(lastContent()["q"], "a\uFFFD b");
}

TEST_F(LibreTranslateServiceTest, anEmptyTranslation_isAFailure) {
    server.setHandler(
        answering([](HttpExchange& exchange) { exchange.answerJson(200, R"({"translatedText":""})"); }));
    const auto answer = translate("hello");
    ASSERT_FALSE(answer);
    EXPECT_THAT(answer.error().description, HasSubstr("cannot be understood"));
}

TEST_F(LibreTranslateServiceTest, aLongText_hasLonger) {
    EXPECT_TRUE(availability());
    server.setHandler(answering([](HttpExchange& exchange) { exchange.stall(); }));
    beginTranslating(std::string(20000, 'x'));
    EXPECT_TRUE(waitUntil([this] { return server.requests().size() == 2; }));
    time.advance(Seconds(29.9));
    EXPECT_EQ(completions, 0);
    time.advance(Seconds(0.2));
    EXPECT_EQ(completions, 1);
}

TEST_F(LibreTranslateServiceTest, aPairThatTheServerDoesNotTranslate_isNotSent) {
    EXPECT_FALSE(translate("hello", {"en", "de"}));
    EXPECT_THAT(targets(), ElementsAre("GET /languages"));
}

// The key.

TEST_F(LibreTranslateServiceTest, aKeyInTheSettings_isSent) {
    defaults.set("platform.translation.apiKey", "from settings");
    EXPECT_TRUE(translate("hello"));
    EXPECT_EQ(lastContent()["api_key"], "from settings");
    EXPECT_THAT(secrets.lookUps, IsEmpty());
}

TEST_F(LibreTranslateServiceTest, aKeyThatOthersCouldReadOnTheWay_isNotSentAndThatIsSaid) {
    // An address that is this machine's only because it is nobody's.
    defaults.set("platform.translation.url", "http://0.0.0.0:" + std::to_string(server.port()));
    defaults.set("platform.translation.apiKey", "from settings");
    EXPECT_TRUE(translate("hello"));
    EXPECT_FALSE(lastContent().contains("api_key"));
    EXPECT_THAT(log.logged(), ElementsAre("[TovikVoice] The translation server's key is not sent, since the "
                                          "connection to 0.0.0.0 is not encrypted"));
}

TEST_F(LibreTranslateServiceTest, aKeyInTheSecretStore_isSentAndAskedForOnce) {
    secrets.secrets["platform.translation.apiKey"] = "from store";
    EXPECT_TRUE(translate("hello"));
    EXPECT_TRUE(translate("again"));
    EXPECT_EQ(lastContent()["api_key"], "from store");
    EXPECT_THAT(secrets.lookUps, ElementsAre("platform.translation.apiKey"));
}

TEST_F(LibreTranslateServiceTest, aKeyThatWasRefused_isLookedUpAgain) {
    secrets.secrets["platform.translation.apiKey"] = "old";
    server.setHandler(answering([](HttpExchange& exchange) {
        const bool isRight = exchange.request().body.find("\"new\"") != std::string::npos;
        exchange.answerJson(isRight ? 200 : 403, isRight ? kHola : "{}");
    }));
    EXPECT_FALSE(translate("hello"));
    secrets.secrets["platform.translation.apiKey"] = "new";
    EXPECT_TRUE(translate("hello"));
}

TEST_F(LibreTranslateServiceTest, withoutASecretStore_goesOnWithoutAKeyAndSaysSo) {
    secrets.failure = Error{"test", 1, "Secret store: nobody there"};
    EXPECT_TRUE(translate("hello"));
    EXPECT_FALSE(lastContent().contains("api_key"));
    EXPECT_THAT(log.logged(),
                ElementsAre("[TovikVoice] Translating without a key. Secret store: nobody there"));
}

TEST_F(LibreTranslateServiceTest, aLockedSecretStore_holdsUpThreeSecondsOnly) {
    secrets.secrets["platform.translation.apiKey"] = "late";
    secrets.lock();
    beginTranslating("hello");
    EXPECT_TRUE(waitUntil([this] { return !secrets.lookUps.empty(); }));
    time.advance(Seconds(2.9));
    EXPECT_EQ(server.requests().size(), 1u);
    time.advance(Seconds(0.2));
    EXPECT_TRUE(waitUntil([this] { return outcome.has_value(); }));
    EXPECT_FALSE(lastContent().contains("api_key"));

    secrets.unlock();
    time.runPending();
    EXPECT_TRUE(translate("again"));
    EXPECT_EQ(lastContent()["api_key"], "late");
    EXPECT_EQ(completions, 2);
}

// When things go wrong.

struct Fault {
    std::string name;
    test::HttpServer::Handler handler;
    std::string sentence;

    friend std::ostream& operator<<(std::ostream& out, const Fault& fault) { return out << fault.name; }
};

const std::vector<Fault>& faults() {
    static const std::vector<Fault> all{
        {"badRequest", [](HttpExchange& e) { e.answerJson(400, R"({"error":"no"})"); },
         "answered with error 400"},
        {"unauthorized", [](HttpExchange& e) { e.answerJson(401, "{}"); }, "refuses the key"},
        {"forbidden", [](HttpExchange& e) { e.answerJson(403, R"({"error":"Invalid API key"})"); },
         "refuses the key"},
        {"notFound", [](HttpExchange& e) { e.answer(404, "text/html", "<html>"); },
         "answered with error 404"},
        {"tooMany", [](HttpExchange& e) { e.answerJson(429, "{}"); }, "too many requests"},
        {"serverError", [](HttpExchange& e) { e.answerJson(500, ""); }, "answered with error 500"},
        {"unavailable", [](HttpExchange& e) { e.answer(503, "text/plain", "busy"); },
         "answered with error 503"},
        {"redirection",
         [](HttpExchange& e) {
             e.answer(307, "text/plain", "", {{"Location", "/elsewhere"}});
         },
         "has moved"},
        {"noJson", [](HttpExchange& e) { e.answer(200, "application/json", "{\"translatedText\": \"ho"); },
         "cannot be understood"},
        {"otherJson", [](HttpExchange& e) { e.answerJson(200, R"({"translatedText": 5})"); },
         "cannot be understood"},
        {"emptyJson", [](HttpExchange& e) { e.answerJson(200, "null"); }, "cannot be understood"},
        {"brokenText", [](HttpExchange& e) { e.answerJson(200, "{\"translatedText\": \"\xFF\"}"); },
         "cannot be understood"},
        {"nestedWithoutEnd", [](HttpExchange& e) { e.answerJson(200, std::string(500000, '[')); },
         "cannot be understood"},
        {"nothing", [](HttpExchange& e) { e.answerJson(200, ""); }, "cannot be understood"},
        {"hangUp", [](HttpExchange&) {}, "gave no answer"},
        {"halfAHead", [](HttpExchange& e) { e.sendRaw("HTTP/1.1 200 OK\r\nContent-Ty"); }, "gave no answer"},
        {"halfABody",
         [](HttpExchange& e) { e.sendRaw("HTTP/1.1 200 OK\r\nContent-Length: 900\r\n\r\n{\"tra"); },
         "gave no answer"},
        {"noHttp", [](HttpExchange& e) { e.sendRaw("SSH-2.0-OpenSSH\r\n"); }, "gave no answer"},
        {"endless",
         [](HttpExchange& e) {
             e.sendRaw("HTTP/1.1 200 OK\r\n\r\n");
             while (e.sendRaw(std::string(1 << 20, ' '))) {
             }
         },
         "too long"},
    };
    return all;
}

class FaultTest : public LibreTranslateServiceTest, public testing::WithParamInterface<Fault> {};

TEST_P(FaultTest, inATranslation_isAnErrorAndTheNextOneWorks) {
    server.setHandler(answering(GetParam().handler));
    const auto answer = translate("hello");
    ASSERT_FALSE(answer);
    EXPECT_THAT(answer.error().description, HasSubstr(GetParam().sentence));
    EXPECT_THAT(answer.error().description, testing::Not(HasSubstr("hello")));
    server.setHandler(answering([](HttpExchange& exchange) { exchange.answerJson(200, kHola); }));
    EXPECT_EQ(translate("hello").value(), "hola");
    EXPECT_EQ(completions, 2);
}

TEST_P(FaultTest, inTheLanguages_isAnError) {
    server.setHandler(GetParam().handler);
    const auto answer = availability();
    ASSERT_FALSE(answer);
    EXPECT_THAT(answer.error().description, HasSubstr(GetParam().sentence));
}

INSTANTIATE_TEST_SUITE_P(Server, FaultTest, testing::ValuesIn(faults()),
                         [](const auto& row) { return row.param.name; });

/// Servers that keep one waiting.
class PatienceTest : public LibreTranslateServiceTest, public testing::WithParamInterface<Fault> {};

TEST_P(PatienceTest, inATranslation_endsAfterTenSeconds) {
    EXPECT_TRUE(availability());
    server.setHandler(answering(GetParam().handler));
    beginTranslating("hello");
    EXPECT_TRUE(waitUntil([this] { return server.requests().size() == 2; }));
    time.advance(Seconds(9.9));
    EXPECT_EQ(completions, 0);
    time.advance(Seconds(0.2));
    ASSERT_EQ(completions, 1);
    EXPECT_THAT(outcome->error().description, HasSubstr("it took too long"));
    EXPECT_TRUE(waitUntil([this] { return server.openConnections() == 0; }));
    EXPECT_EQ(completions, 1);
}

TEST_P(PatienceTest, inTheLanguages_endsAfterTenSeconds) {
    server.setHandler(GetParam().handler);
    std::optional<Result<TranslationAvailability>> answer;
    service->availability({"en", "es"},
                          [&](const Result<TranslationAvailability>& given) { answer = given; });
    EXPECT_TRUE(waitUntil([this] { return server.requests().size() == 1; }));
    time.advance(Seconds(10.1));
    ASSERT_TRUE(answer);
    EXPECT_THAT(answer->error().description, HasSubstr("it took too long"));
}

TEST_P(PatienceTest, whenTheServiceEnds_isHungUpOnAndNothingIsAnswered) {
    EXPECT_TRUE(availability());
    server.setHandler(answering(GetParam().handler));
    beginTranslating("hello");
    EXPECT_TRUE(waitUntil([this] { return server.requests().size() == 2; }));
    service.reset();
    EXPECT_TRUE(waitUntil([this] { return server.openConnections() == 0; }));
    time.advance(Seconds(60));
    EXPECT_EQ(completions, 0);
}

INSTANTIATE_TEST_SUITE_P(
    Server, PatienceTest,
    testing::Values(Fault{"stall", [](HttpExchange& e) { e.stall(); }, ""},
                    Fault{"drip", [](HttpExchange& e) { e.drip(std::chrono::milliseconds(2)); }, ""}),
    [](const auto& row) { return row.param.name; });

// What a server translates.

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

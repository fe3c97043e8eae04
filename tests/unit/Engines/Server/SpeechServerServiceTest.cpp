// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Audio/DictationLanguage.h"
#include "unit/Engines/Server/SpeechServerFixture.h"

#include <gmock/gmock.h>
#include <malloc.h>
#include <sys/stat.h>

#include <atomic>

namespace tovik::test {
namespace {

using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

class SpeechServerServiceTest : public SpeechServerFixture {};

/// A form in words that do not change from one sending to the next.
std::string withoutBoundary(std::string form) {
    const auto boundary = form.substr(0, form.find("\r\n"));
    for (std::size_t at = 0; !boundary.empty() && (at = form.find(boundary)) != std::string::npos;) {
        form.erase(at, boundary.size());
    }
    return form;
}

TEST_F(SpeechServerServiceTest, uploadsTheSoundAndGivesTheTextInOneLine) {
    answerUploads([](HttpExchange& exchange) {
        exchange.answerJson(200, R"({"text": " Hello there.\n How are you?\n"})");
    });
    EXPECT_EQ(dictate(), "Hello there. How are you?");
    ASSERT_THAT(uploads(), SizeIs(1));
    const auto upload = uploads().front();
    EXPECT_EQ(upload.target, "/v1/audio/transcriptions");
    EXPECT_THAT(upload.headers.at("content-type"), HasSubstr("multipart/form-data; boundary="));
    EXPECT_THAT(upload.body,
                AllOf(HasSubstr("name=\"model\"\r\n\r\nwhisper-1\r\n"),
                      HasSubstr("name=\"response_format\"\r\n\r\njson\r\n"),
                      HasSubstr("filename=\"dictation.wav\"\r\nContent-Type: audio/wav\r\n\r\nRIFF")));
    EXPECT_EQ(upload.headers.count("authorization"), 0U);
    EXPECT_THAT(keptFiles(), IsEmpty());
}

TEST_F(SpeechServerServiceTest, whenFlacIsWanted_uploadsFlac) {
    defaults_.set("platform.speech.serverFormat", "flac");
    EXPECT_EQ(dictate(), "hello there");
    EXPECT_THAT(uploads().front().body,
                HasSubstr("filename=\"dictation.flac\"\r\nContent-Type: audio/flac\r\n\r\nfLaC"));
}

TEST_F(SpeechServerServiceTest, whenALanguageIsChosen_namesItToTheServer) {
    defaults_.set(kSelectedDictationLocaleKey, "fr-FR");
    EXPECT_EQ(dictate("fr-FR"), "hello there");
    EXPECT_THAT(uploads().front().body, HasSubstr("name=\"language\"\r\n\r\nfr\r\n"));
}

TEST_F(SpeechServerServiceTest, whenTheLanguageIsLeftOpen_leavesItToTheServer) {
    EXPECT_EQ(dictate("fr-FR"), "hello there");
    EXPECT_THAT(uploads().front().body, Not(HasSubstr("name=\"language\"")));
}

TEST_F(SpeechServerServiceTest, namesTheVocabularyInThePrompt) {
    const auto utterance = request({"Tovik", "Ångström"});
    append(*utterance);
    utterance->endAudio();
    EXPECT_EQ(start(utterance).waitForText(), "hello there");
    EXPECT_THAT(uploads().front().body, HasSubstr("name=\"prompt\"\r\n\r\nTovik, Ångström\r\n"));
}

TEST_F(SpeechServerServiceTest, opensTheConnectionWhenSomebodyBeginsToSpeak) {
    const auto utterance = request();
    const auto answers = start(utterance);
    // Nothing but a connection can come before the sound has ended.
    EXPECT_TRUE(comesTrue([this] { return server_.openConnections() == 1; }));
    EXPECT_THAT(server_.requests(), IsEmpty());
    append(*utterance);
    utterance->endAudio();
    EXPECT_EQ(answers.waitForText(), "hello there");
}

TEST_F(SpeechServerServiceTest, whenNothingWasSaid_asksNobody) {
    EXPECT_EQ(dictate("en-US", 0), "<No speech detected>");
    EXPECT_THAT(uploads(), IsEmpty());
}

TEST_F(SpeechServerServiceTest, whenTheServerHeardNothing_saysThatThereWasNoSpeech) {
    for (const auto* answer : {R"({"text": ""})", R"({"text": " \n"})", R"({"text": " [BLANK_AUDIO]\n"})"}) {
        answerUploads([answer](HttpExchange& exchange) { exchange.answerJson(200, answer); });
        EXPECT_EQ(dictate(), "<No speech detected>") << answer;
    }
    EXPECT_THAT(keptFiles(), IsEmpty());
}

TEST_F(SpeechServerServiceTest, whenTheKeyIsInTheSettings_sendsIt) {
    defaults_.set("platform.speech.serverKey", "abc");
    EXPECT_EQ(dictate(), "hello there");
    EXPECT_EQ(uploads().front().headers.at("authorization"), "Bearer abc");
}

TEST_F(SpeechServerServiceTest, whenTheKeyIsInTheKeyRing_sendsIt) {
    secrets_.secrets[kServerKeyName] = "ring";
    service().prepare({});
    time_.runPending();
    EXPECT_EQ(dictate(), "hello there");
    EXPECT_EQ(uploads().front().headers.at("authorization"), "Bearer ring");
}

TEST_F(SpeechServerServiceTest, whenTheKeyGoesFromTheSettings_sendsThatOfTheKeyRingAtOnce) {
    defaults_.set("platform.speech.serverKey", "abc");
    secrets_.secrets[kServerKeyName] = "ring";
    time_.runPending();
    EXPECT_EQ(dictate(), "hello there");
    defaults_.remove("platform.speech.serverKey");
    const auto utterance = request();
    const auto answers = start(utterance);
    time_.runPending();
    append(*utterance);
    utterance->endAudio();
    EXPECT_EQ(answers.waitForText(), "hello there");
    EXPECT_EQ(uploads().back().headers.at("authorization"), "Bearer ring");
}

TEST_F(SpeechServerServiceTest, whenTheServerIsSlowerThanSpeech_itHasTimeForALongDictation) {
    setTimeouts(20, 0.05, 0.05);
    answerUploads([](HttpExchange& exchange) {
        if (exchange.request().method == "POST" && exchange.waitForRelease()) {
            exchange.answerJson(200, kText);
        }
    });
    const auto utterance = request();
    for (int second = 0; second < 10; ++second) {
        append(*utterance);
    }
    utterance->endAudio();
    const auto answers = start(utterance);
    ASSERT_TRUE(server_.waitForRequests(1));
    std::this_thread::sleep_for(std::chrono::milliseconds(500));
    server_.release();
    EXPECT_EQ(answers.waitForText(), "hello there");
}

TEST_F(SpeechServerServiceTest, whenTheAnswerIsNestedWithoutEnd_saysThatItHasNoText) {
    answerUploads([](HttpExchange& exchange) { exchange.answerJson(200, std::string(500000, '[')); });
    EXPECT_THAT(dictate(), HasSubstr("gave an answer without a text"));
}

TEST_F(SpeechServerServiceTest, whenOthersCouldReadTheKeyOnTheWay_sendsNoneAndSaysSo) {
    // An address that is this machine's only because it is nobody's.
    defaults_.set("platform.speech.serverUrl", "http://0.0.0.0:" + std::to_string(server_.port()));
    defaults_.set("platform.speech.serverKey", "abc");
    EXPECT_EQ(dictate(), "hello there");
    EXPECT_EQ(uploads().front().headers.count("authorization"), 0U);
    EXPECT_THAT(log_.logged(),
                ElementsAre(HasSubstr("The speech server's key is not sent, since the connection")));
}

TEST_F(SpeechServerServiceTest, whenTheKeyEndsInALineBreak_sendsItWithout) {
    defaults_.set("platform.speech.serverKey", " abc\r\n");
    EXPECT_EQ(dictate(), "hello there");
    EXPECT_EQ(uploads().front().headers.at("authorization"), "Bearer abc");
    EXPECT_THAT(log_.logged(), IsEmpty());
}

TEST_F(SpeechServerServiceTest, whenTheKeyHasAGapInside_sendsNoneAndSaysSo) {
    defaults_.set("platform.speech.serverKey", "one\ntwo");
    EXPECT_EQ(dictate(), "hello there");
    EXPECT_EQ(uploads().front().headers.count("authorization"), 0U);
    EXPECT_THAT(log_.logged(), ElementsAre(AllOf(HasSubstr("The speech server's key is not sent"),
                                                 Not(HasSubstr("one")), Not(HasSubstr("two")))));
}

TEST_F(SpeechServerServiceTest, whenTheConnectionDiesUnanswered_triesOnceMore) {
    std::atomic<int> attempts{0};
    answerUploads([&](HttpExchange& exchange) {
        if (++attempts > 1) {
            exchange.answerJson(200, kText);
        }
    });
    EXPECT_EQ(dictate(), "hello there");
    EXPECT_THAT(uploads(), SizeIs(2));
    EXPECT_TRUE(withoutBoundary(uploads()[0].body) == withoutBoundary(uploads()[1].body));
}

TEST_F(SpeechServerServiceTest, whenItDiesAgain_givesUpAndKeepsTheSound) {
    answerUploads([](HttpExchange&) {});
    EXPECT_THAT(dictate(), HasSubstr("closed the connection without an answer"));
    EXPECT_THAT(uploads(), SizeIs(2));
    ASSERT_THAT(keptFiles(), SizeIs(1));
    EXPECT_EQ(readFile(failedAudio_ + "/" + keptFiles().front())->size(), 44U + 2 * 16000);
    struct stat status {};
    ASSERT_EQ(stat(failedAudio_.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0700U);
    EXPECT_THAT(log_.logged(),
                ElementsAre(HasSubstr("closed the connection without an answer"),
                            HasSubstr("The sound of the dictation is kept in " + failedAudio_)));
}

TEST_F(SpeechServerServiceTest, whenTheNextDictationSucceeds_forgetsTheKeptSound) {
    answerUploads([](HttpExchange& exchange) { exchange.answerJson(500, "{}"); });
    EXPECT_THAT(dictate(), HasSubstr("answered with the error 500"));
    EXPECT_THAT(keptFiles(), SizeIs(1));
    answerUploads([](HttpExchange& exchange) { exchange.answerJson(200, kText); });
    EXPECT_EQ(dictate(), "hello there");
    EXPECT_THAT(keptFiles(), IsEmpty());
}

TEST_F(SpeechServerServiceTest, whenTheNextDictationHasNoSpeech_keepsTheSoundOfTheFailedOne) {
    answerUploads([](HttpExchange& exchange) { exchange.answerJson(500, "{}"); });
    EXPECT_THAT(dictate(), HasSubstr("answered with the error 500"));
    const auto kept = keptFiles();
    EXPECT_THAT(kept, SizeIs(1));
    answerUploads([](HttpExchange& exchange) { exchange.answerJson(200, R"({"text": ""})"); });
    EXPECT_EQ(dictate(), "<No speech detected>");
    EXPECT_EQ(keptFiles(), kept);
}

TEST_F(SpeechServerServiceTest, whenADictationFailsMeanwhile_aSuccessLeavesItsSoundAlone) {
    std::atomic<int> attempts{0};
    answerUploads([&](HttpExchange& exchange) {
        if (++attempts > 1) {
            exchange.answerJson(500, "{}");
        } else if (exchange.waitForRelease()) {
            exchange.answerJson(200, kText);
        }
    });
    const auto utterance = request();
    append(*utterance);
    utterance->endAudio();
    const auto answers = start(utterance);
    ASSERT_TRUE(server_.waitForRequests(1));
    EXPECT_THAT(dictate(), HasSubstr("answered with the error 500"));
    const auto kept = keptFiles();
    EXPECT_THAT(kept, SizeIs(1));
    server_.release();
    EXPECT_EQ(answers.waitForText(), "hello there");
    EXPECT_EQ(keptFiles(), kept);
}

TEST_F(SpeechServerServiceTest, whenSoundIsNotToBeKept_keepsNone) {
    defaults_.set("platform.speech.keepFailedAudio", false);
    answerUploads([](HttpExchange& exchange) { exchange.answerJson(500, "{}"); });
    EXPECT_THAT(dictate(), HasSubstr("answered with the error 500"));
    EXPECT_THAT(keptFiles(), IsEmpty());
}

/// Answers that no second attempt makes better.
class SpeechServerRefusal : public SpeechServerServiceTest, public testing::WithParamInterface<int> {};

TEST_P(SpeechServerRefusal, isNotAskedAgain) {
    answerUploads([](HttpExchange& exchange) { exchange.answerJson(GetParam(), R"({"error": {}})"); });
    EXPECT_THAT(dictate(), HasSubstr(std::to_string(GetParam())));
    EXPECT_THAT(uploads(), SizeIs(1));
    EXPECT_THAT(log_.logged(), Contains(HasSubstr(std::to_string(GetParam()))));
}

INSTANTIATE_TEST_SUITE_P(Statuses, SpeechServerRefusal,
                         testing::Values(301, 400, 401, 403, 404, 413, 429, 500));

TEST_F(SpeechServerServiceTest, whenTheServerAsksForPatience_waitsAndAsksAgain) {
    std::atomic<int> attempts{0};
    answerUploads([&](HttpExchange& exchange) {
        if (++attempts == 1) {
            exchange.answer(429, "application/json", "{}", {{"Retry-After", "0.05"}});
        } else if (attempts == 2) {
            exchange.answer(503, "application/json", "{}", {{"Retry-After", "0"}});
        } else {
            exchange.answerJson(200, kText);
        }
    });
    EXPECT_EQ(dictate(), "hello there");
    EXPECT_THAT(uploads(), SizeIs(3));
}

TEST_F(SpeechServerServiceTest, whenTheServerAsksForMorePatienceThanThereIs_givesUpAtOnce) {
    answerUploads([](HttpExchange& exchange) {
        exchange.answer(503, "application/json", "{}", {{"Retry-After", "3600"}});
    });
    EXPECT_THAT(dictate(), HasSubstr("503"));
    EXPECT_THAT(uploads(), SizeIs(1));
}

TEST_F(SpeechServerServiceTest, whenTheServerDoesNotAnswerInTime_givesUp) {
    setTimeouts(20, 0.05, 20);
    answerUploads([](HttpExchange& exchange) { exchange.stall(); });
    EXPECT_THAT(dictate(), HasSubstr("does not answer"));
    // The server may well read it only after that.
    EXPECT_TRUE(server_.waitForRequests(1));
    EXPECT_THAT(uploads(), SizeIs(1));
}

TEST_F(SpeechServerServiceTest, whenTheAnswerNeverEnds_givesUp) {
    // Long enough for the answer to begin on a busy machine.
    setTimeouts(20, 20, 3);
    answerUploads([](HttpExchange& exchange) { exchange.drip(std::chrono::milliseconds(10)); });
    EXPECT_THAT(dictate(), HasSubstr("does not finish its answer in time"));
}

TEST_F(SpeechServerServiceTest, whenTheAnswerIsNone_saysSo) {
    answerUploads([](HttpExchange& exchange) { exchange.sendRaw("SSH-2.0-nonsense\r\n\r\n"); });
    EXPECT_THAT(dictate(), HasSubstr("did not answer in HTTP"));
    answerUploads([](HttpExchange& exchange) { exchange.answer(200, "text/html", "<html>"); });
    EXPECT_THAT(dictate(), HasSubstr("gave an answer without a text"));
    answerUploads([](HttpExchange& exchange) {
        exchange.sendRaw("HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\n{\"text\"");
    });
    EXPECT_THAT(dictate(), HasSubstr("in the middle of its answer"));
}

TEST_F(SpeechServerServiceTest, whenTheAnswerComesInChunks_putsItTogether) {
    answerUploads([](HttpExchange& exchange) {
        exchange.beginChunked(200, "application/json");
        exchange.sendChunk(R"({"text": "hel)");
        exchange.sendChunk(R"(lo there"})");
        exchange.endChunked();
    });
    EXPECT_EQ(dictate(), "hello there");
}

TEST_F(SpeechServerServiceTest, whenNoServerIsThere_saysSoAndIsUnavailableUntilItIs) {
    const auto url = HttpServer([](HttpExchange&) {}).url();
    defaults_.set("platform.speech.serverUrl", url);
    EXPECT_EQ(service().whyUnavailable(), std::nullopt);
    EXPECT_THAT(dictate(), HasSubstr("The speech server " + url + " cannot be reached"));
    EXPECT_THAT(service().whyUnavailable().value_or(""), HasSubstr("cannot be reached"));
    EXPECT_FALSE(service().makeRecognizer("en-US")->isAvailable());
    EXPECT_THAT(keptFiles(), SizeIs(1));
    defaults_.set("platform.speech.serverUrl", server_.url());
    EXPECT_EQ(dictate(), "hello there");
    EXPECT_EQ(service().whyUnavailable(), std::nullopt);
}

TEST_F(SpeechServerServiceTest, whenTheUserWantsIt_theEmbeddedEngineRecognizesInstead) {
    defaults_.set("platform.speech.embeddedWhenServerFails", true);
    embedded_.answerWith("from this machine");
    answerUploads([](HttpExchange& exchange) { exchange.answerJson(500, "{}"); });
    const auto utterance = request();
    append(*utterance);
    utterance->endAudio();
    const auto answers = start(utterance);
    ASSERT_TRUE(comesTrue([&] {
        time_.runPending();
        return !answers.all().empty();
    }));
    EXPECT_EQ(answers.waitForText(), "from this machine");
    EXPECT_THAT(keptFiles(), SizeIs(1));
}

TEST_F(SpeechServerServiceTest, whenTheUserDoesNotAllowIt_nothingIsSent) {
    isAllowed_ = false;
    EXPECT_FALSE(service().makeRecognizer("en-US")->isAvailable());
    EXPECT_THAT(dictate(), HasSubstr("You have not allowed that your speech is sent to"));
    EXPECT_EQ(server_.openConnections(), 0U);
    EXPECT_THAT(server_.requests(), IsEmpty());
}

TEST_F(SpeechServerServiceTest, whenNoServerIsSet_thereIsNoRecognizer) {
    defaults_.remove("platform.speech.serverUrl");
    EXPECT_EQ(service().makeRecognizer("en-US"), nullptr);
    EXPECT_THAT(service().whyUnavailable().value_or(""), HasSubstr("No speech server is set"));
}

TEST_F(SpeechServerServiceTest, servesTheLanguagesOfItsModel) {
    for (const auto& locale : supportedLocales()) {
        EXPECT_NE(service().makeRecognizer(locale), nullptr) << locale;
    }
    EXPECT_EQ(service().makeRecognizer("tlh-KX"), nullptr);
    defaults_.set("platform.speech.serverModel", "base.en");
    EXPECT_NE(service().makeRecognizer("en_GB.UTF-8"), nullptr);
    EXPECT_EQ(service().makeRecognizer("fr-FR"), nullptr);
    defaults_.set("platform.speech.serverLocales", {"pt_BR"});
    EXPECT_NE(service().makeRecognizer("pt-BR"), nullptr);
    EXPECT_EQ(service().makeRecognizer("en-US"), nullptr);
}

TEST_F(SpeechServerServiceTest, whenEndedWhileTheServerThinks_answersAndKeepsTheSound) {
    answerUploads([](HttpExchange& exchange) { exchange.stall(); });
    const auto utterance = request();
    append(*utterance);
    utterance->endAudio();
    const auto answers = start(utterance);
    ASSERT_TRUE(server_.waitForRequests(1));
    service_.reset();
    EXPECT_EQ(answers.waitForText(), "<Recognition was ended>");
    EXPECT_THAT(keptFiles(), SizeIs(1));
}

TEST_F(SpeechServerServiceTest, onceADictationIsOver_holdsItsSoundNoLonger) {
    // What is sent of sound that never changes is next to nothing.
    defaults_.set("platform.speech.serverFormat", "flac");
    const auto inUse = [] { return ::mallinfo2().uordblks + ::mallinfo2().hblkhd; };
    EXPECT_EQ(dictate(), "hello there");
    time_.runPending();
    const auto before = inUse();
    {
        const auto utterance = request();
        for (int second = 0; second < 100; ++second) {
            append(*utterance);
        }
        utterance->endAudio();
        EXPECT_EQ(start(utterance).waitForText(), "hello there");
    }
    tasks_.clear();
    EXPECT_TRUE(comesTrue([&] {
        time_.runPending();
        return inUse() < before + 1000000;
    }));
}

TEST_F(SpeechServerServiceTest, whenASecondDictationComesBeforeTheFirstIsAnswered_answersBoth) {
    holdUploads();
    const auto first = request();
    append(*first);
    first->endAudio();
    const auto second = request();
    append(*second);
    second->endAudio();
    const auto firstAnswers = start(first);
    const auto secondAnswers = start(second);
    ASSERT_TRUE(server_.waitForRequests(2));
    server_.release();
    server_.release();
    EXPECT_EQ(firstAnswers.waitForText(), "hello there");
    EXPECT_EQ(secondAnswers.waitForText(), "hello there");
}

} // namespace
} // namespace tovik::test

// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Audio/RecognitionRequest.h"
#include "Engines/Server/SpeechServerService.h"
#include "support/ComesTrue.h"
#include "support/FakeSecretStore.h"
#include "support/FakeSpeechService.h"
#include "support/HttpServer.h"
#include "support/ManualTime.h"
#include "support/MemoryUserDefaults.h"
#include "support/RecognitionAnswers.h"
#include "support/RecordingLog.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <filesystem>
#include <functional>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace tovik::test {

inline constexpr auto kText = R"({"text": " hello there"})";

/// A server, and the service that asks it.
class SpeechServerFixture : public testing::Test {
protected:
    SpeechServerFixture() {
        defaults_.set("platform.speech.serverUrl", server_.url());
        setTimeouts(20, 20, 20);
    }

    void setTimeouts(double connect, double firstByte, double whole) {
        // What is added for a second of sound stays.
        defaults_.set("platform.speech.serverTimeouts",
                      {{"connect", connect}, {"firstByte", firstByte}, {"whole", whole}});
    }

    SpeechServerService& service() {
        if (!service_) {
            service_ = std::make_unique<SpeechServerService>(SpeechServerService::Services{
                .log = log_,
                .defaults = defaults_,
                .queue = time_,
                .secrets = &secrets_,
                .failedAudioFolder = failedAudio_,
                .isAllowed = [this](const ServerAddress&) { return isAllowed_.load(); },
                .embedded = [this](const std::string& locale) { return embedded_.makeRecognizer(locale); }});
        }
        return *service_;
    }

    static std::shared_ptr<RecognitionRequest> request(std::vector<std::string> contextualStrings = {}) {
        RecognitionSettings settings;
        settings.contextualStrings = std::move(contextualStrings);
        return std::make_shared<RecognitionRequest>(std::move(settings), 16000);
    }

    static void append(RecognitionRequest& request, float loudness = 0.25F) {
        const std::vector<float> sound(16000, loudness);
        request.append({sound, 16000});
    }

    RecognitionAnswers start(const std::shared_ptr<RecognitionRequest>& request,
                             const std::string& locale = "en-US") {
        RecognitionAnswers answers;
        tasks_.push_back(service().makeRecognizer(locale)->startTask(request, answers.handler()));
        return answers;
    }

    /// A whole dictation, and the text or the error that comes of it.
    std::string dictate(const std::string& locale = "en-US", float loudness = 0.25F) {
        const auto utterance = request();
        append(*utterance, loudness);
        utterance->endAudio();
        return start(utterance, locale).waitForText();
    }

    /// The uploads among what the server was asked for.
    std::vector<ReceivedRequest> uploads() {
        std::vector<ReceivedRequest> found;
        for (auto& one : server_.requests()) {
            if (one.method == "POST") {
                found.push_back(std::move(one));
            }
        }
        return found;
    }

    [[nodiscard]] std::vector<std::string> keptFiles() const {
        return std::filesystem::exists(failedAudio_) ? namesIn(failedAudio_) : std::vector<std::string>();
    }

    /// What the server does with uploads, unless a test says otherwise.
    void answerUploads(std::function<void(HttpExchange&)> how) { server_.setHandler(std::move(how)); }

    /// Each upload is answered after one server_.release().
    void holdUploads() {
        answerUploads([](HttpExchange& exchange) {
            if (exchange.request().method != "POST" || exchange.waitForRelease()) {
                exchange.answerJson(200, kText);
            }
        });
    }

    const TemporaryFolder folder_;
    const std::string failedAudio_ = folder_ / "failed";
    HttpServer server_{[](HttpExchange& exchange) { exchange.answerJson(200, kText); }};
    RecordingLog log_;
    MemoryUserDefaults defaults_;
    ManualTime time_;
    FakeSecretStore secrets_{time_};
    FakeSpeechService embedded_;
    std::atomic<bool> isAllowed_{true};
    std::vector<std::unique_ptr<RecognitionTask>> tasks_;
    std::unique_ptr<SpeechServerService> service_;
};

} // namespace tovik::test

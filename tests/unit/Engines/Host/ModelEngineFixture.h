// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Audio/RecognitionRequest.h"
#include "Engines/Host/ModelEngine.h"
#include "support/RecognitionAnswers.h"
#include "support/RecordingLog.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <filesystem>
#include <functional>
#include <sstream>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace tovik::test {

/// Gives orders to the processes of tovik-test-engine (TestEngineMain.cpp), and tells what they were asked to
/// do.
class ScriptedEngine {
public:
    [[nodiscard]] std::vector<std::string> command() const { return {TOVIK_TEST_ENGINE, folder_.path()}; }

    /// Such as "finish-crash"; once, or for good with "finish-crashes".
    void order(const std::string& deed) const { writeFile(folder_ / deed, ""); }
    void takeBack(const std::string& deed) const { std::filesystem::remove(folder_ / deed); }

    /// The lines of its log that begin so: "process 1234", "learn Tovik Zoom", "begin Tovik", "finish".
    [[nodiscard]] std::vector<std::string> did(const std::string& what) const {
        std::istringstream log(readFile(folder_ / "log").value_or(""));
        std::vector<std::string> lines;
        for (std::string line; std::getline(log, line);) {
            if (line.starts_with(what)) {
                lines.push_back(line);
            }
        }
        return lines;
    }
    void waitUntilItDid(const std::string& what, std::size_t times = 1) const {
        waitUntil([&] { return did(what).size() >= times; });
    }
    /// How many processes there were, and the newest.
    [[nodiscard]] std::size_t processes() const { return did("process ").size(); }
    [[nodiscard]] pid_t process() const { return std::stoi(did("process ").back().substr(8)); }

    /// Throws when a test would hang instead.
    static void waitUntil(const std::function<bool()>& condition) {
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(60);
        while (!condition()) {
            if (std::chrono::steady_clock::now() > end) {
                throw std::runtime_error("what was waited for did not come");
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
    }

private:
    const TemporaryFolder folder_;
};

inline constexpr Seconds kLong{60};

/// An engine that talks with a real process, in which a decoder does what a test orders.
class ModelEngineFixture : public testing::Test {
protected:
    ModelEngineFixture() {
        limits_.silence = kLong;
        limits_.loading = std::chrono::hours(1000);
        limits_.look = Seconds(0.02);
        limits_.pause = Seconds(0.02);
        limits_.clock = [time = time_] { return std::chrono::steady_clock::time_point(time->load()); };
        writeFile(model_, "good");
    }

    void makeEngine() { makeEngine(script_.command()); }

    void makeEngine(std::vector<std::string> command) {
        engine_ = std::make_shared<ModelEngine>(
            log_,
            LocalModel{.check = [this] { return filesThere_ ? Result<void>() : Result<void>(kMissing); },
                       .command = std::move(command),
                       .files = {model_},
                       .unusable =
                           [](const std::string& how) {
                               return Error{"SpeechRecognition", 2, "The model is not usable: " + how + "."};
                           }},
            limits_);
    }

    static std::shared_ptr<RecognitionRequest> makeRequest(std::vector<std::string> contextualStrings = {}) {
        RecognitionSettings settings;
        settings.contextualStrings = std::move(contextualStrings);
        return std::make_shared<RecognitionRequest>(std::move(settings), kEngineRate);
    }

    /// Starts a task on the request; the answers tell what becomes of it.
    RecognitionAnswers start(const std::shared_ptr<RecognitionRequest>& request) {
        RecognitionAnswers answers;
        tasks_.push_back(engine_->makeRecognizer()->startTask(request, answers.handler()));
        return answers;
    }

    static void append(RecognitionRequest& request, std::size_t frames) {
        const std::vector<float> sound(frames, 0.1F);
        request.append({sound, kEngineRate});
    }

    /// A whole utterance of that many frames.
    RecognitionAnswers say(std::size_t frames) {
        const auto request = makeRequest();
        append(*request, frames);
        request->endAudio();
        return start(request);
    }

    void makeReadyEngine() {
        makeEngine();
        ASSERT_TRUE(engine_->waitUntilReady(kLong));
    }

    /// Lets a silence go by, and another one should the process have given a sign of life in between.
    void passTimeUntil(const std::function<bool()>& condition) {
        auto nextJump = std::chrono::steady_clock::now();
        ScriptedEngine::waitUntil([&] {
            if (std::chrono::steady_clock::now() >= nextJump) {
                *time_ = time_->load() + std::chrono::minutes(12);
                nextJump = std::chrono::steady_clock::now() + std::chrono::seconds(5);
            }
            return condition();
        });
    }

    inline static const Error kMissing{"SpeechRecognition", 2, "The model is missing. Install it."};

    const TemporaryFolder folder_;
    const std::string model_ = folder_ / "model";
    const ScriptedEngine script_;
    /// The time as the engine knows it; stands still.
    const std::shared_ptr<std::atomic<std::chrono::steady_clock::duration>> time_ =
        std::make_shared<std::atomic<std::chrono::steady_clock::duration>>();
    RecordingLog log_;
    std::atomic<bool> filesThere_{true};
    ModelProcess::Limits limits_;
    std::shared_ptr<ModelEngine> engine_;
    std::vector<std::unique_ptr<RecognitionTask>> tasks_;
};

} // namespace tovik::test

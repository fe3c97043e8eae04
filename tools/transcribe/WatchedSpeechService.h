// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/SpeechService.h"

#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <stop_token>
#include <string>
#include <vector>

namespace tovik {

/// A speech service that passes everything on to another one and keeps what became of the newest utterance.
class WatchedSpeechService : public SpeechService {
public:
    using Time = std::chrono::steady_clock::time_point;

    /// How an utterance ended: with a text or with an error.
    struct Outcome {
        std::string recognized;
        std::optional<Error> error;
        Time at;
    };

    /// The service outlives this one.
    explicit WatchedSpeechService(SpeechService& service);

    [[nodiscard]] std::shared_ptr<SpeechRecognizer>
    makeRecognizer(const std::string& localeIdentifier) override;
    [[nodiscard]] std::string currentLocaleIdentifier() const override;
    void prepare(const std::vector<std::string>& contextualStrings) override;

    /// Forgets the utterance before; call ahead of each.
    void expectUtterance();
    /// Waits for the end of the utterance, its handler included, and does something again and again
    /// meanwhile. Nothing when no utterance was begun.
    [[nodiscard]] std::optional<Outcome> waitForOutcome(const std::function<void()>& meanwhile);
    /// Waits until the recognizer has taken nearly all of the sound so far; false when stopped before.
    [[nodiscard]] bool waitUntilKeptUp(const std::stop_token& stopped);

private:
    friend class WatchedRecognizer;

    struct State {
        std::mutex mutex;
        std::condition_variable changed;
        std::weak_ptr<RecognitionRequest> request;
        bool begun = false;
        std::optional<Outcome> outcome;
    };

    SpeechService& service_;
    const std::shared_ptr<State> state_ = std::make_shared<State>();
};

} // namespace tovik

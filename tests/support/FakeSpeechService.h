// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/SpeechService.h"
#include "Audio/RecognitionRequest.h"

#include <cstddef>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace tovik::test {

/// One utterance that the program asked the fake to recognize. Lives as long as a test holds it; all
/// operations are for any thread.
class FakeUtterance {
public:
    FakeUtterance(std::string localeIdentifier, std::shared_ptr<RecognitionRequest> request,
                  RecognitionHandler handler);

    [[nodiscard]] const std::string& localeIdentifier() const { return localeIdentifier_; }
    [[nodiscard]] RecognitionRequest& request() const { return *request_; }
    /// Whether the task was asked to finish, and whether it was dropped by its owner.
    [[nodiscard]] bool finished() const;
    [[nodiscard]] bool dropped() const;

    /// Call the program's handler on the calling thread, as often as a test likes: also in an order in which
    /// no recognizer would.
    void deliverPartial(const std::string& text);
    void deliverFinal(const std::string& text);
    void deliverError(const Error& error);
    void deliver(const std::optional<RecognitionResult>& result, const std::optional<Error>& error);

    /// Reads the request's sound up to its end: waits for endAudio(). Once only.
    [[nodiscard]] std::vector<float> readSound();

private:
    friend class FakeRecognizer;
    friend class FakeRecognitionTask;

    const std::string localeIdentifier_;
    const std::shared_ptr<RecognitionRequest> request_;
    const RecognitionHandler handler_;
    mutable std::mutex mutex_;
    bool finished_ = false;
    bool dropped_ = false;
};

/// A speech service that hears what a test tells it. By itself it never answers an utterance: a test calls
/// the deliver operations of FakeUtterance; after answerWith() it answers on a thread of its own instead.
class FakeSpeechService : public SpeechService {
public:
    enum class Locale { available, unavailable, unknown };

    FakeSpeechService();
    /// Waits for its answering threads: every request that they read must have been ended.
    ~FakeSpeechService() override;

    [[nodiscard]] std::shared_ptr<SpeechRecognizer>
    makeRecognizer(const std::string& localeIdentifier) override;
    [[nodiscard]] std::string currentLocaleIdentifier() const override;
    void prepare(const std::vector<std::string>& contextualStrings) override;

    /// How a locale stands from now on, also for recognizers already made. Available at first: "en-US" only;
    /// every other one is unknown, and no recognizer can be made for it.
    void setLocale(const std::string& localeIdentifier, Locale state);
    /// "en-US" at first.
    void setCurrentLocaleIdentifier(std::string localeIdentifier);

    /// From now on every utterance is read to its end and answered on the fake's own thread: with the text,
    /// or with the error "No speech detected" when all of its sound is zero.
    void answerWith(std::string text);

    /// What the service was last told to prepare for; empty before.
    [[nodiscard]] std::vector<std::string> preparedFor() const;
    /// The locales for which a recognizer was asked, in order.
    [[nodiscard]] std::vector<std::string> askedLocales() const;
    [[nodiscard]] std::size_t utteranceCount() const;
    /// Nothing when there is none.
    [[nodiscard]] std::shared_ptr<FakeUtterance> lastUtterance() const;
    /// The utterances in the order in which they began.
    [[nodiscard]] std::vector<std::shared_ptr<FakeUtterance>> utterances() const;

private:
    friend class FakeRecognizer;
    struct State;

    const std::shared_ptr<State> state_;
};

} // namespace tovik::test

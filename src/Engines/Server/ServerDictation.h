// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Audio/RecognitionRequest.h"
#include "Engines/Http/HttpClient.h"
#include "Engines/Server/ServerSettings.h"
#include "Platform/SpeechService.h"
#include "Platform/SystemLog.h"

#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace tovik {

class Resampler;

/// The rate at which servers get their sound.
inline constexpr int kTranscriptionRate = 16000;

/// As many of the terms as a model takes in, the user's own first, which come last.
[[nodiscard]] std::string promptOf(const std::vector<std::string>& contextualStrings);

/// Why a server does not do what it was asked, by its answer; nothing when it does.
[[nodiscard]] std::optional<std::string> whyRefused(const ServerAddress& server,
                                                    const HttpResponse& response);
/// Whether it is for the key, or for want of one.
[[nodiscard]] bool isAboutTheKey(const HttpResponse& response);

/// One request for recognition and the one who waits for its text: sees to it that one call of the handler
/// ends it and none comes afterwards. From one thread at a time.
class Utterance {
public:
    Utterance(std::shared_ptr<RecognitionRequest> request, RecognitionHandler handler)
        : request_(std::move(request)),
          handler_(std::move(handler)) {}

    [[nodiscard]] RecognitionRequest& request() const { return *request_; }
    /// Whether nobody else holds the request any more: then no sound can come, and no end of it either.
    [[nodiscard]] bool requestAbandoned() const { return request_.use_count() == 1; }

    /// Each calls the handler, on this thread; does nothing once the utterance was answered.
    void reportPartial(const std::string& text);
    void answer(const std::string& text);
    void answer(const Error& error);

private:
    const std::shared_ptr<RecognitionRequest> request_;
    RecognitionHandler handler_;
};

/// One dictation on its way to the server and back, on a thread of its own: it listens until the end, with a
/// connection open, then sends the sound and answers the utterance.
class ServerDictation {
public:
    struct Job {
        ServerSettings settings;
        std::shared_ptr<Utterance> utterance;
        /// Such as "en"; nothing leaves it to the server.
        std::optional<std::string> language;
        std::string locale;
        /// Held until the end.
        std::shared_ptr<void> server;
    };
    /// All are called on the dictation's thread, and outlive it.
    struct Services {
        SystemLog& log;
        FailedAudio& failedAudio;
        /// Empty when there is none. Asked when the sound is there.
        std::function<std::string(const ServerSettings&)> key;
        /// How the server was found; nothing: well.
        std::function<void(std::optional<std::string> whyBad)> report;
        std::function<void()> keyWasRefused;
        /// Lets another engine recognize a dictation that the server failed.
        std::function<void(const Job&, std::vector<std::int16_t>)> recognizeElsewhere;
        /// Told when a dictation is over, which holds its sound as long as it lives.
        std::function<void()> over;
    };

    ServerDictation(Job job, const Services& services);
    /// Ends it: the utterance is answered with an error unless it was answered before.
    ~ServerDictation();
    ServerDictation(const ServerDictation&) = delete;
    ServerDictation& operator=(const ServerDictation&) = delete;

    /// Whether the object can go without a wait.
    [[nodiscard]] bool isOver() const { return isOver_; }
    /// Ends it soon.
    void cancel();

private:
    void run();
    std::optional<HttpRequest> listen(std::chrono::milliseconds atMost);
    void hear(std::span<const float> frames);
    [[nodiscard]] std::optional<HttpRequest> soundIsThere();
    [[nodiscard]] HttpRequest request(std::string file) const;
    void answered(const HttpOutcome& outcome);
    void failed(const std::string& why);
    void keepAudio();

    Job job_;
    const Services& services_;
    HttpUpload upload_;
    std::unique_ptr<Resampler> resampler_;
    std::vector<std::int16_t> samples_;
    /// The sound of dictations that had failed when this one began. A success forgets no others.
    std::vector<std::string> failedBefore_;
    bool isCutOff_ = false;
    bool soundIsComplete_ = false;
    /// Set where there is no use in asking the server.
    std::optional<Error> unasked_;
    std::atomic<bool> isOver_{false};
    std::thread thread_;
};

} // namespace tovik

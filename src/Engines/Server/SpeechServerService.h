// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Engines/Server/ServerDictation.h"
#include "Engines/Server/ServerProcess.h"
#include "Platform/MainQueue.h"
#include "Platform/SpeechService.h"
#include "Platform/Subscription.h"
#include "Platform/SystemLog.h"
#include "Platform/UserDefaults.h"

#include <chrono>
#include <functional>
#include <list>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

namespace tovik {

/// Recognizes with a server that has the OpenAI-compatible endpoint for transcriptions, on this machine or
/// elsewhere, by the settings "platform.speech.server...". The connection is opened when somebody begins to
/// speak, the whole sound is sent at the end. There are no partial results. Main thread.
class SpeechServerService : public SpeechService {
public:
    struct Services {
        SystemLog& log;
        const UserDefaults& defaults;
        MainQueue& queue;
        /// Nothing where there is none.
        SecretStore* secrets;
        /// Where the sound of failed dictations is kept.
        std::string failedAudioFolder;
        /// Whether the user lets speech go there.
        std::function<bool(const ServerAddress&)> isAllowed;
        /// The embedded engine's recognizer, for dictations that the server fails; may give nothing.
        std::function<std::shared_ptr<SpeechRecognizer>(const std::string& locale)> embedded;
    };

    /// The services outlive this one.
    explicit SpeechServerService(Services services);
    /// Answers every utterance that is under way with an error, and ends a server of ours.
    ~SpeechServerService() override;
    SpeechServerService(const SpeechServerService&) = delete;
    SpeechServerService& operator=(const SpeechServerService&) = delete;

    /// They must not outlive the service.
    [[nodiscard]] std::shared_ptr<SpeechRecognizer>
    makeRecognizer(const std::string& localeIdentifier) override;
    /// As makeRecognizer(), but available also while the server was found away: it is asked all the same.
    [[nodiscard]] std::shared_ptr<SpeechRecognizer>
    makeRecognizerThatAsksAgain(const std::string& localeIdentifier);
    [[nodiscard]] std::string currentLocaleIdentifier() const override;
    /// Looks whether the server is there, and starts it when it is ours to start.
    void prepare(const std::vector<std::string>& contextualStrings) override;

    /// Ends the server when it was ours to start and the settings name it no more, or it is not to be used.
    /// Harmless otherwise.
    void endServer();

    /// Why the server cannot be used, in a sentence for the user. Nothing while it can, or nobody knows yet.
    /// Looks again now and then, in the background.
    [[nodiscard]] std::optional<std::string> whyUnavailable();
    /// The same, where the server was asked and it is the server's fault.
    [[nodiscard]] std::optional<std::string> whyAway() const;

private:
    friend class ServerRecognizer;

    /// What is known of the server. Any thread.
    class Health {
    public:
        /// Why the server cannot be used; nothing while it can or nobody knows.
        [[nodiscard]] std::optional<std::string> whyBad() const;
        /// Returns whether it is news that it cannot.
        bool set(std::optional<std::string> whyBad);
        /// Whether it should be looked at (again); then the caller is the one to do it.
        [[nodiscard]] bool claimCheck();

    private:
        mutable std::mutex mutex_;
        std::optional<std::string> whyBad_;
        std::optional<std::chrono::steady_clock::time_point> checked_;
    };

    [[nodiscard]] std::optional<std::string> servedLocale(const std::string& localeIdentifier);
    /// Why nothing may be sent to the server, wherever it is.
    [[nodiscard]] std::optional<std::string> whyNotToAsk() const;
    void start(std::shared_ptr<Utterance> utterance, const std::string& locale);
    void refuse(std::shared_ptr<Utterance> utterance, const std::string& why);
    void check(const ServerSettings& settings);
    void checked(const ServerSettings& settings, const HttpOutcome& outcome);
    void lookUpKey();
    [[nodiscard]] std::string keyFor(const ServerSettings& settings) const;
    void recognizeElsewhere(const ServerDictation::Job& job, const std::vector<std::int16_t>& samples);
    [[nodiscard]] ServerDictation::Services dictationServices();

    const Services services_;
    Health health_;
    FailedAudio failedAudio_;
    mutable std::mutex keyMutex_;
    /// From the key ring.
    std::optional<std::string> keptKey_;
    bool hasAskedForKey_ = false;
    ServerProcess process_;
    Lifetime lifetime_;
    /// For the thread of a dictation; they hop to the main queue where they must.
    const ServerDictation::Services dictationServices_ = dictationServices();
    std::list<ServerDictation> dictations_;
    /// Answers that no server is asked for.
    std::list<std::thread> refusals_;
    /// Last, so that its thread has ended before anything that it calls goes.
    HttpClient http_;
    Subscription check_;
};

} // namespace tovik

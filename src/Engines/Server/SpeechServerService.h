// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Engines/Server/ServerWorker.h"
#include "Platform/Lifetime.h"
#include "Platform/MainQueue.h"
#include "Platform/SecretStore.h"
#include "Platform/SpeechService.h"
#include "Platform/SystemLog.h"
#include "Platform/UserDefaults.h"

#include <QThread>

#include <atomic>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace tovik {

/// Recognises with a server that has the OpenAI-compatible endpoint for transcriptions, on this machine or
/// elsewhere, by the settings "platform.speech.server...". The connection is opened when somebody begins to
/// speak, the whole sound is sent at the end. There are no partial results.
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
        /// The embedded engine's recogniser, for dictations that the server fails; may give nothing.
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
    [[nodiscard]] std::string currentLocaleIdentifier() const override;
    /// Looks whether the server is there, and starts it when it is ours to start.
    void prepare(const std::vector<std::string>& contextualStrings) override;

    /// Ends the server when it was ours to start and the settings name it no more, or it is not to be used.
    /// Harmless otherwise.
    void endServer();

    /// Why the server cannot be used, in a sentence for the user. Nothing while it can, or nobody knows yet.
    /// Looks again now and then, in the background.
    [[nodiscard]] std::optional<std::string> whyUnavailable();

private:
    friend class ServerRecognizer;

    void start(std::shared_ptr<Utterance> utterance, const std::string& locale);
    void check(const ServerSettings& settings);
    void lookUpKey();
    [[nodiscard]] std::string keyFor(const ServerSettings& settings) const;
    void recogniseHere(const ServerDictation& dictation, const std::vector<std::int16_t>& samples);
    template <typename Work>
    void onWorker(Work work);

    const Services services_;
    const std::shared_ptr<SharedLog> log_;
    const std::shared_ptr<ServerHealth> health_ = std::make_shared<ServerHealth>();
    std::optional<std::string> keptKey_;
    bool hasAskedForKey_ = false;
    /// Whether a server of ours may be running.
    bool hasStartedServer_ = false;
    int number_ = 0;
    QThread thread_;
    std::unique_ptr<QObject> threadContext_;
    std::unique_ptr<ServerWorker> worker_;
    std::unique_ptr<SoundCollector> collector_;
    Lifetime lifetime_;
};

} // namespace tovik

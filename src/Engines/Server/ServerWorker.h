// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Engines/Host/SharedLog.h"
#include "Engines/Host/Utterance.h"
#include "Engines/Server/FailedAudio.h"
#include "Engines/Server/ServerProcess.h"
#include "Engines/Server/SoundCollector.h"
#include "Engines/Server/TranscriptionRequest.h"
#include "Engines/Server/Upload.h"

#include <QObject>

#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace tovik {

/// How the server was found when somebody last looked. Any thread.
class ServerHealth {
public:
    /// Why it cannot be used; nothing while it can or nobody knows.
    [[nodiscard]] std::optional<std::string> whyBad() const;
    void set(std::optional<std::string> whyBad);
    /// Whether it should be looked at (again); then the caller is the one to do it.
    [[nodiscard]] bool claimCheck(std::chrono::steady_clock::duration atMostEvery);

private:
    mutable std::mutex mutex_;
    std::optional<std::string> whyBad_;
    std::optional<std::chrono::steady_clock::time_point> checked_;
};

/// One dictation for the server.
struct ServerDictation {
    ServerSettings settings;
    std::string key;
    std::shared_ptr<Utterance> utterance;
    std::optional<std::string> language;
    std::string locale;
};

/// Talks to the server. Lives on a thread that has a Qt event loop; every call is made there.
class ServerWorker {
public:
    struct Services {
        std::shared_ptr<SharedLog> log;
        std::shared_ptr<ServerHealth> health;
        std::string failedAudioFolder;
        /// Lets the embedded engine recognise a dictation instead.
        std::function<void(const ServerDictation&, std::vector<std::int16_t>)> recogniseHere;
        /// The server did not accept the key.
        std::function<void()> keyWasRefused;
    };

    explicit ServerWorker(Services services);
    /// Answers every dictation that is under way with an error.
    ~ServerWorker();
    ServerWorker(const ServerWorker&) = delete;
    ServerWorker& operator=(const ServerWorker&) = delete;

    /// Looks whether the server is there; starts it when it is ours to start.
    void check(const ServerSettings& settings, const std::string& key);

    /// No server is set any more: one that was ours to start is ended, after the dictations under way.
    void endServer() { need({}); }

    /// Somebody begins to speak: opens the connection.
    void begin(int number, ServerDictation dictation);
    /// The whole sound is there: it is sent.
    void send(int number, Result<SoundCollector::Sound> sound);

private:
    struct Job {
        ServerDictation dictation;
        std::unique_ptr<Upload> upload;
        std::vector<std::int16_t> samples;
    };

    void need(const std::vector<std::string>& command);
    void answered(int number, const Upload::Outcome& outcome);
    void recognised(Job& job, const HttpResponse& response);
    void failed(Job& job, const std::string& why);
    void keepAudio(const Job& job);
    void checked(const Upload::Outcome& outcome);
    [[nodiscard]] std::string whyRefused(const ServerSettings& settings, const HttpResponse& response) const;
    void drop(int number);

    const Services services_;
    QObject context_;
    ServerProcess process_;
    /// Nobody needs it any more but the dictations under way.
    bool endsProcess_ = false;
    FailedAudio failedAudio_;
    std::map<int, Job> jobs_;
    std::unique_ptr<Upload> check_;
    std::optional<ServerSettings> checkedSettings_;
};

} // namespace tovik

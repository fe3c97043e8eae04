// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Linux/PocketSphinx/ModelFiles.h"
#include "Linux/PocketSphinx/RecognitionThread.h"
#include "Linux/PocketSphinx/SharedLog.h"
#include "Platform/SpeechService.h"

#include <condition_variable>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

namespace tovik {

/// Recognises United States English with PocketSphinx, on a thread of its own.
///
/// The model is loaded in the background from the construction on. A dictation that begins before it is
/// ready waits for it and loses nothing. Utterances are decoded one after the other. A decoder that does not
/// come back is given up: its utterance is answered with an error and the next one gets a fresh decoder.
class PocketSphinxService : public SpeechService {
public:
    struct Limits {
        /// How long the decoder may work without a sign of life.
        Seconds silence{15};
        /// How often that is looked at.
        Seconds look{2};
        /// How long the destruction waits for the decoder.
        Seconds goodbye{2};
        RecognitionThread::SteadyClock clock = [] { return std::chrono::steady_clock::now(); };
    };

    explicit PocketSphinxService(SystemLog& log, ModelFiles files = ModelFiles::unitedStatesEnglish());
    /// The check and the loader stand for the model's files, for tests.
    PocketSphinxService(SystemLog& log, std::function<Result<void>()> check, DecoderLoader loader,
                        Limits limits);
    /// Answers every utterance that is under way with an error.
    ~PocketSphinxService() override;
    PocketSphinxService(const PocketSphinxService&) = delete;
    PocketSphinxService& operator=(const PocketSphinxService&) = delete;

    /// Recognisers serve "en-US" and what means the same: "en", "en_US.UTF-8". They must not outlive the
    /// service.
    [[nodiscard]] std::shared_ptr<SpeechRecognizer>
    makeRecognizer(const std::string& localeIdentifier) override;
    /// What LC_ALL, LC_MESSAGES or LANG says, in the form "en-US".
    [[nodiscard]] std::string currentLocaleIdentifier() const override;

    /// Why no speech can be recognised, and what to install, in a sentence for the user. Nothing while the
    /// model is usable or still being loaded. A model that was missing is looked for again.
    [[nodiscard]] std::optional<std::string> whyUnavailable();

    /// Blocks until the model is loaded: for tools, which have nothing else to do. False when it cannot be,
    /// or is not in time.
    [[nodiscard]] bool waitUntilLoaded(Seconds atMost);

private:
    friend class PocketSphinxRecognizer;

    void start(std::shared_ptr<Utterance> utterance);
    void watch();
    void replaceSilentThread();

    const std::shared_ptr<SharedLog> log_;
    const std::function<Result<void>()> check_;
    const DecoderLoader loader_;
    const Limits limits_;

    std::mutex mutex_;
    std::condition_variable ending_;
    bool ends_ = false;
    /// Why the files cannot be used; then there is no thread.
    std::optional<Error> missing_;
    std::shared_ptr<RecognitionThread> recognition_;
    std::thread watch_;
};

} // namespace tovik

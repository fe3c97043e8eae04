// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Engines/Host/RecognitionThread.h"
#include "Engines/Host/SharedLog.h"
#include "Platform/SpeechService.h"

#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace tovik {

/// Recognises with one model of this machine, on a thread of its own.
///
/// The model is loaded in the background from the construction on. A dictation that begins before it is
/// ready waits for it and loses nothing. Utterances are decoded one after the other. A decoder that does not
/// come back is given up: its utterance is answered with an error and the next one gets a fresh decoder. A
/// model that could not be loaded is loaded again once its files have changed and stay as they are.
class ModelEngine : public std::enable_shared_from_this<ModelEngine> {
public:
    /// What can be done with the files of a model. Any thread.
    struct Model {
        /// Tells in a moment whether they can be used at all.
        std::function<Result<void>()> check;
        DecoderLoader load;
        /// Another text after they have changed; at once.
        std::function<std::string()> stamp;
    };

    struct Limits {
        /// How long the decoder may work without a sign of life.
        Seconds silence{15};
        /// How long loading the model may take: a cold disk on a busy machine is slow, and a second try would
        /// be no faster.
        Seconds loading{180};
        /// How often that is looked at.
        Seconds look{2};
        /// How long the destruction waits for the decoder.
        Seconds goodbye{2};
        RecognitionThread::SteadyClock clock = [] { return std::chrono::steady_clock::now(); };
    };

    ModelEngine(SystemLog& log, Model model, Limits limits);
    /// As end().
    ~ModelEngine();
    ModelEngine(const ModelEngine&) = delete;
    ModelEngine& operator=(const ModelEngine&) = delete;

    /// It keeps the engine, which must be held by a shared pointer.
    [[nodiscard]] std::shared_ptr<SpeechRecognizer> makeRecognizer();

    /// Answers every utterance that is under way, and all that come later, with an error. Writes nothing to
    /// the log from then on.
    void end();

    /// Whether no utterance is under way.
    [[nodiscard]] bool isIdle();

    /// The words and phrases that the next utterances will favour: the decoder learns them while nobody
    /// speaks. Again is harmless.
    void prepare(const std::vector<std::string>& contextualStrings);

    /// Why no speech can be recognised, and what to install, in a sentence for the user. Nothing while the
    /// model is usable or still being loaded. A model that was missing is looked for again.
    [[nodiscard]] std::optional<std::string> whyUnavailable();

    /// Blocks until the model is loaded and knows the words it was prepared for: for tools, which have
    /// nothing else to do. False when it cannot be, or is not in time.
    [[nodiscard]] bool waitUntilReady(Seconds atMost);

private:
    friend class ModelRecognizer;

    void start(std::shared_ptr<Utterance> utterance);
    [[nodiscard]] std::shared_ptr<RecognitionThread> makeThread() const;
    void watch();
    void loadAgainWhenChanged(std::unique_lock<std::mutex>& lock);
    void replaceSilentThread();

    const std::shared_ptr<SharedLog> log_;
    const Model model_;
    const Limits limits_;

    std::mutex mutex_;
    std::condition_variable ending_;
    bool ends_ = false;
    /// Why the files cannot be used; then there is no thread.
    std::optional<Error> missing_;
    std::optional<std::vector<std::string>> contextualStrings_;
    std::shared_ptr<RecognitionThread> recognition_;
    /// Why the model could not be loaded, until it is.
    std::optional<Error> broken_;
    /// Of the files as they were before they were loaded, and when the watch last saw them.
    std::string loadedStamp_;
    std::string seenStamp_;
    std::thread watch_;
};

} // namespace tovik

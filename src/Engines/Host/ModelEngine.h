// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Engines/Host/ModelProcess.h"
#include "Platform/Posix.h"
#include "Platform/SpeechService.h"

#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace tovik {

class Dictation;

/// Recognizes with one model of this machine, in a process of its own: tovik-engine.
///
/// The model is loaded in the background from the construction on. A dictation that begins before it is ready
/// waits for it and loses nothing. Utterances are decoded one after the other. The sound of each is kept
/// until its text has come: when the process dies or hangs over it, a fresh one hears it once more, and only
/// after that the answer is an error. When a model that could not be loaded is tried again, ModelProcess
/// says.
///
/// One thread of its own looks after the process and calls the handlers, under no lock. The rest is for any
/// thread.
class ModelEngine : public std::enable_shared_from_this<ModelEngine> {
public:
    /// tovik-engine in the folder of the running program.
    [[nodiscard]] static std::string program();

    ModelEngine(SystemLog& log, LocalModel model, ModelProcess::Limits limits);
    /// As end().
    ~ModelEngine();
    ModelEngine(const ModelEngine&) = delete;
    ModelEngine& operator=(const ModelEngine&) = delete;

    /// It keeps the engine, which must be held by a shared pointer.
    [[nodiscard]] std::shared_ptr<SpeechRecognizer> makeRecognizer();

    /// Ends the process and answers every utterance that is under way, and all that come later, with an
    /// error. Writes nothing to the log from then on.
    void end();
    /// As end(), but returns at once; hasEnded() tells when it is done.
    void beginEnd();
    [[nodiscard]] bool hasEnded() const;

    /// Whether no utterance is under way.
    [[nodiscard]] bool isIdle() const;

    /// The words and phrases that the next utterances will favour: they are taught while nobody speaks. Again
    /// is harmless.
    void prepare(const std::vector<std::string>& contextualStrings);

    /// Why no speech can be recognized, and what to install, in a sentence for the user. Nothing while the
    /// model is usable or still being loaded. A model that was missing is looked for again.
    [[nodiscard]] std::optional<std::string> whyUnavailable();

    /// Blocks until the model is loaded and knows the words it was prepared for: for tools, which have
    /// nothing else to do. False when it cannot be, or is not in time.
    [[nodiscard]] bool waitUntilReady(Seconds atMost) const;

private:
    friend class ModelRecognizer;

    void add(std::unique_ptr<Dictation> dictation);
    void wake() const;
    /// Changes what others see: the thread itself, and others, which wake it.
    template <typename Change>
    void publish(Change change);
    template <typename Change>
    void change(Change change);

    // What the thread does.
    void run();
    [[nodiscard]] bool takeOrders();
    void keepProcess();
    void take(const ModelProcess::Answer& answer);
    void answered(const Result<std::string>& text);
    void answerAll(const Error& why);
    void lost(ModelProcess::Loss how);
    void settle(bool wordsDidIt);
    void teach();
    void feed();
    void pauseForNews();

    SystemLog& log_;
    const std::function<Result<void>()> check_;
    /// Becomes readable when there is something new for the thread.
    const UnixFd wake_;

    mutable std::mutex mutex_;
    mutable std::condition_variable changed_;
    std::vector<std::unique_ptr<Dictation>> added_;
    std::size_t underWay_ = 0;
    /// What is to be taught next; nothing once it was.
    std::optional<std::vector<std::string>> toLearn_;
    bool isLearning_ = false;
    /// Why the files cannot even be tried.
    std::optional<Error> missing_;
    /// As the process has them.
    std::optional<Error> failure_;
    bool isBroken_ = false;
    bool isLoaded_ = false;
    bool ends_ = false;
    bool hasEnded_ = false;
    bool isLeaving_ = false;

    // The thread's own.
    /// Whether there is a model, and no end of all.
    bool mayRun_ = false;
    std::deque<std::unique_ptr<Dictation>> dictations_;
    ModelProcess process_;
    /// What was last taught, for the next process.
    std::optional<std::vector<std::string>> vocabulary_;

    std::thread thread_;
};

} // namespace tovik

// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Engines/Host/ModelEngine.h"

#include "Engines/Host/RecognitionError.h"
#include "Engines/Host/RequestTask.h"

#include <utility>

namespace tovik {

class ModelRecognizer : public SpeechRecognizer {
public:
    explicit ModelRecognizer(std::shared_ptr<ModelEngine> engine) : engine_(std::move(engine)) {}

    [[nodiscard]] bool isAvailable() const override { return !engine_->whyUnavailable(); }

    [[nodiscard]] std::unique_ptr<RecognitionTask> startTask(std::shared_ptr<RecognitionRequest> request,
                                                             RecognitionHandler handler) override {
        auto task = std::make_unique<RequestTask>(request);
        engine_->start(std::make_shared<Utterance>(std::move(request), std::move(handler)));
        return task;
    }

private:
    const std::shared_ptr<ModelEngine> engine_;
};

ModelEngine::ModelEngine(SystemLog& log, Model model, Limits limits)
    : log_(std::make_shared<SharedLog>(log)),
      model_(std::move(model)),
      limits_(limits) {
    if (auto usable = model_.check(); usable) {
        loadedStamp_ = model_.stamp();
        recognition_ = makeThread();
    } else {
        missing_ = usable.error();
        log_->logLine("[TovikVoice] Speech recognition is not available: " + missing_->description);
    }
    watch_ = std::thread([this] { watch(); });
}

ModelEngine::~ModelEngine() {
    end();
}

void ModelEngine::end() {
    {
        const std::lock_guard lock(mutex_);
        if (std::exchange(ends_, true)) {
            return;
        }
    }
    ending_.notify_all();
    watch_.join();
    const auto why = recognitionError(RecognitionCode::ended, "Recognition was ended");
    std::shared_ptr<RecognitionThread> recognition;
    {
        const std::lock_guard lock(mutex_);
        recognition = std::move(recognition_);
        missing_ = why;
    }
    if (recognition) {
        const auto unanswered = recognition->leave(limits_.goodbye);
        if (unanswered.current) {
            unanswered.current->answer(why);
        }
        for (const auto& utterance : unanswered.waiting) {
            utterance->answer(why);
        }
    }
    log_->close();
}

std::shared_ptr<SpeechRecognizer> ModelEngine::makeRecognizer() {
    return std::make_shared<ModelRecognizer>(shared_from_this());
}

bool ModelEngine::isIdle() {
    const std::lock_guard lock(mutex_);
    return !recognition_ || recognition_->isIdle();
}

void ModelEngine::prepare(const std::vector<std::string>& contextualStrings) {
    const std::lock_guard lock(mutex_);
    contextualStrings_ = contextualStrings;
    if (recognition_) {
        recognition_->prepare(contextualStrings);
    }
}

std::optional<std::string> ModelEngine::whyUnavailable() {
    const std::lock_guard lock(mutex_);
    if (!ends_ && !recognition_ && model_.check()) {
        missing_.reset();
        loadedStamp_ = model_.stamp();
        recognition_ = makeThread();
    }
    if (!recognition_) {
        return missing_->description;
    }
    if (const auto failure = recognition_->failure()) {
        return failure->description;
    }
    // Nobody is to speak into a second try.
    return broken_ && !recognition_->isLoaded() ? std::optional(broken_->description) : std::nullopt;
}

bool ModelEngine::waitUntilReady(Seconds atMost) {
    std::shared_ptr<RecognitionThread> recognition;
    {
        const std::lock_guard lock(mutex_);
        recognition = recognition_;
    }
    return recognition && recognition->waitUntilReady(atMost);
}

std::shared_ptr<RecognitionThread> ModelEngine::makeThread() const {
    auto thread = std::make_shared<RecognitionThread>(model_.load, limits_.clock, log_);
    if (contextualStrings_) {
        thread->prepare(*contextualStrings_);
    }
    return thread;
}

void ModelEngine::start(std::shared_ptr<Utterance> utterance) {
    std::optional<Error> missing;
    {
        const std::lock_guard lock(mutex_);
        if (recognition_) {
            recognition_->add(utterance);
            return;
        }
        missing = missing_;
    }
    utterance->answer(*missing);
}

void ModelEngine::watch() {
    std::unique_lock lock(mutex_);
    bool isSuspect = false;
    while (!ending_.wait_for(lock, limits_.look, [this] { return ends_; })) {
        if (!recognition_) {
            continue;
        }
        if (recognition_->failure()) {
            loadAgainWhenChanged(lock);
            continue;
        }
        const bool isLoaded = recognition_->isLoaded();
        if (isLoaded) {
            broken_.reset();
        }
        const auto limit = isLoaded ? limits_.silence : limits_.loading;
        const bool wasSuspect = std::exchange(isSuspect, recognition_->silentFor() > limit);
        // Once is not enough: after the whole process has been stopped for a while, as with its machine, the
        // decoder goes on as if nothing had been.
        if (isSuspect && wasSuspect) {
            isSuspect = false;
            replaceSilentThread();
        }
    }
}

/// The files may have been looked at while they were being unpacked.
void ModelEngine::loadAgainWhenChanged(std::unique_lock<std::mutex>& lock) {
    lock.unlock();
    const auto stamp = model_.stamp();
    lock.lock();
    const bool isSettled = stamp == std::exchange(seenStamp_, stamp);
    if (isSettled && stamp != loadedStamp_) {
        broken_ = recognition_->failure();
        loadedStamp_ = stamp;
        recognition_ = makeThread();
    }
}

void ModelEngine::replaceSilentThread() {
    log_->logLine("[TovikVoice] Speech recognition does not answer: it is started anew");
    auto unanswered = recognition_->leave(Seconds(0));
    recognition_ = makeThread();
    if (unanswered.current) {
        unanswered.current->answer(
            recognitionError(RecognitionCode::notAnswering, "The recogniser does not answer"));
    }
    for (auto& utterance : unanswered.waiting) {
        recognition_->add(std::move(utterance));
    }
}

} // namespace tovik

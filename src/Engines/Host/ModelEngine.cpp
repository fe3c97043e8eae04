// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Engines/Host/ModelEngine.h"

#include "Engines/Host/Dictation.h"
#include "Engines/Host/RecognitionError.h"
#include "Engines/Host/RequestTask.h"

#include <sys/eventfd.h>

#include <algorithm>
#include <filesystem>
#include <utility>

namespace tovik {

namespace {

/// While somebody speaks: how often the thread looks for anything but sound.
constexpr std::chrono::milliseconds kGlance{50};
/// How often an utterance is given to a process.
constexpr int kMostTries = 2;

Error hasEndedError() {
    return recognitionError(RecognitionCode::ended, "Recognition was ended");
}

} // namespace

class ModelRecognizer : public SpeechRecognizer {
public:
    explicit ModelRecognizer(std::shared_ptr<ModelEngine> engine) : engine_(std::move(engine)) {}

    [[nodiscard]] bool isAvailable() const override { return !engine_->whyUnavailable(); }

    [[nodiscard]] std::unique_ptr<RecognitionTask> startTask(std::shared_ptr<RecognitionRequest> request,
                                                             RecognitionHandler handler) override {
        auto task = std::make_unique<RequestTask>(request);
        engine_->add(std::make_unique<Dictation>(std::move(request), std::move(handler)));
        return task;
    }

private:
    const std::shared_ptr<ModelEngine> engine_;
};

std::string ModelEngine::program() {
    std::error_code error;
    return (std::filesystem::read_symlink("/proc/self/exe", error).parent_path() / "tovik-engine").string();
}

ModelEngine::ModelEngine(SystemLog& log, LocalModel model, ModelProcess::Limits limits)
    : log_(log),
      check_(model.check),
      wake_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)),
      process_(log, std::move(model), std::move(limits)) {
    if (auto usable = check_(); !usable) {
        missing_ = usable.error();
        log_.logLine("[TovikVoice] Speech recognition is not available: " + missing_->description);
    }
    thread_ = std::thread([this] { run(); });
}

ModelEngine::~ModelEngine() {
    change([this] { isLeaving_ = true; });
    thread_.join();
}

// ------------------------------------------------------------------------------------ what others call

template <typename Change>
void ModelEngine::publish(Change change) {
    {
        const std::lock_guard lock(mutex_);
        change();
    }
    changed_.notify_all();
}

template <typename Change>
void ModelEngine::change(Change change) {
    publish(change);
    wake();
}

void ModelEngine::wake() const {
    static_cast<void>(::eventfd_write(wake_.get(), 1));
}

std::shared_ptr<SpeechRecognizer> ModelEngine::makeRecognizer() {
    return std::make_shared<ModelRecognizer>(shared_from_this());
}

void ModelEngine::add(std::unique_ptr<Dictation> dictation) {
    change([&] {
        ++underWay_;
        added_.push_back(std::move(dictation));
    });
}

void ModelEngine::end() {
    beginEnd();
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [this] { return hasEnded_; });
}

void ModelEngine::beginEnd() {
    change([this] { ends_ = true; });
}

bool ModelEngine::hasEnded() const {
    const std::lock_guard lock(mutex_);
    return hasEnded_;
}

bool ModelEngine::isIdle() const {
    const std::lock_guard lock(mutex_);
    return underWay_ == 0;
}

void ModelEngine::prepare(const std::vector<std::string>& contextualStrings) {
    change([&] { toLearn_ = contextualStrings; });
}

std::optional<std::string> ModelEngine::whyUnavailable() {
    const std::lock_guard lock(mutex_);
    if (missing_ && check_()) {
        missing_.reset();
        wake();
    }
    const auto why = ends_ ? hasEndedError() : missing_ ? missing_ : failure_;
    return why ? std::optional(why->description) : std::nullopt;
}

bool ModelEngine::waitUntilReady(Seconds atMost) const {
    std::unique_lock lock(mutex_);
    const auto isReady = [this] { return isLoaded_ && !toLearn_ && !isLearning_; };
    changed_.wait_for(lock, atMost, [&] { return isReady() || missing_ || isBroken_ || ends_; });
    return isReady();
}

// ---------------------------------------------------------------------------------- what the thread does

void ModelEngine::run() {
    while (takeOrders()) {
        keepProcess();
        teach();
        feed();
        pauseForNews();
    }
}

/// Whether the thread goes on.
bool ModelEngine::takeOrders() {
    std::unique_lock lock(mutex_);
    std::move(added_.begin(), added_.end(), std::back_inserter(dictations_));
    added_.clear();
    const bool goesOn = !isLeaving_;
    const bool ends = ends_ || isLeaving_;
    const auto unanswerable = ends ? hasEndedError() : missing_;
    lock.unlock();
    mayRun_ = !unanswerable;
    if (ends) {
        process_.end();
    }
    if (unanswerable) {
        answerAll(*unanswerable);
    }
    if (ends) {
        publish([this] { hasEnded_ = true; });
    }
    return goesOn;
}

void ModelEngine::keepProcess() {
    std::vector<ModelProcess::Answer> answers;
    const auto died = process_.exchange(answers);
    for (const auto& answer : answers) {
        take(answer);
    }
    if (died) {
        lost(*died);
    }
    if (mayRun_) {
        if (const auto hung = process_.keep(!dictations_.empty())) {
            lost(*hung);
        }
    }
    settle(false);
    if (process_.isBroken()) {
        answerAll(*process_.failure());
    }
}

void ModelEngine::take(const ModelProcess::Answer& answer) {
    switch (answer.request) {
    case Frame::learn:
        if (!answer.text) {
            log_.logLine("[TovikVoice] Speech recognition could not learn the vocabulary: " +
                         answer.text.error().description);
        }
        publish([this] { isLearning_ = false; });
        break;
    case Frame::hypothesis:
        if (answer.text && !dictations_.empty()) {
            dictations_.front()->takeHypothesis(answer.text.value());
        }
        break;
    case Frame::finish:
        answered(answer.text);
        break;
    default:
        break;
    }
}

void ModelEngine::answered(const Result<std::string>& text) {
    if (dictations_.empty()) {
        return;
    }
    const auto dictation = std::move(dictations_.front());
    dictations_.pop_front();
    // Before the answer, so that whoever gets it finds the engine idle.
    publish([this] { --underWay_; });
    if (text) {
        dictation->answer(text.value());
    } else {
        dictation->answer(text.error());
    }
    process_.noteAnswer();
}

void ModelEngine::answerAll(const Error& why) {
    while (!dictations_.empty()) {
        answered(why);
    }
}

void ModelEngine::lost(ModelProcess::Loss how) {
    // What it died over is not taught again.
    settle(true);
    if (dictations_.empty() || !dictations_.front()->isBegun() ||
        dictations_.front()->rewind() < kMostTries) {
        return;
    }
    answered(how == ModelProcess::Loss::hung
                 ? recognitionError(RecognitionCode::notAnswering, "The recognizer does not answer")
                 : recognitionError(RecognitionCode::failed, "The recognizer broke down"));
}

/// Shows others how the process is. A process that has gone knew words that the next one is to learn, unless
/// they were the end of it.
void ModelEngine::settle(bool wordsDidIt) {
    publish([&] {
        failure_ = process_.failure();
        isBroken_ = process_.isBroken();
        if (std::exchange(isLoaded_, process_.isLoaded()) && !isLoaded_) {
            const bool dropsWords = std::exchange(isLearning_, false) && wordsDidIt;
            toLearn_ = toLearn_ || dropsWords ? toLearn_ : vocabulary_;
        }
    });
}

/// Whoever speaks already has words of the utterance's own, which are learned with it.
void ModelEngine::teach() {
    if (!process_.isLoaded() || !dictations_.empty()) {
        return;
    }
    std::optional<std::vector<std::string>> words;
    {
        const std::lock_guard lock(mutex_);
        if (isLearning_ || !toLearn_) {
            return;
        }
        words = std::exchange(toLearn_, std::nullopt);
        isLearning_ = true;
    }
    process_.ask(Frame::learn, packStrings(*words));
    vocabulary_ = std::move(words);
}

void ModelEngine::feed() {
    for (auto& dictation : dictations_) {
        dictation->hear(std::chrono::milliseconds(0));
    }
    while (!dictations_.empty() && dictations_.front()->trouble()) {
        const auto why = *dictations_.front()->trouble();
        answered(why);
    }
    if (process_.isLoaded() && !dictations_.empty()) {
        dictations_.front()->feed(process_);
    }
}

void ModelEngine::pauseForNews() {
    const auto speaking = std::find_if(dictations_.begin(), dictations_.end(),
                                       [](const auto& dictation) { return !dictation->isComplete(); });
    if (speaking != dictations_.end()) {
        (*speaking)->hear(kGlance);
        return;
    }
    const auto process = process_.watched();
    std::array<pollfd, 3> watched{pollfd{wake_.get(), POLLIN, 0}, process[0], process[1]};
    const auto pause = mayRun_ ? process_.idleFor(!dictations_.empty()) : std::chrono::milliseconds(-1);
    ::poll(watched.data(), watched.size(), static_cast<int>(pause.count()));
    eventfd_t count = 0;
    static_cast<void>(::eventfd_read(wake_.get(), &count));
}

} // namespace tovik

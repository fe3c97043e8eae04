// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Engines/Host/ModelEngine.h"

#include "Engines/Host/Dictation.h"
#include "Engines/Host/RecognitionError.h"
#include "Engines/Host/RequestTask.h"

#include <poll.h>
#include <sys/eventfd.h>

#include <algorithm>
#include <condition_variable>
#include <mutex>
#include <thread>
#include <utility>

namespace tovik {

namespace {

namespace fs = std::filesystem;
using SteadyTime = std::chrono::steady_clock::time_point;

/// While somebody speaks: how often the thread looks for anything but sound.
constexpr std::chrono::milliseconds kGlance{50};
/// How often an utterance is given to a process.
constexpr int kMostTries = 2;
/// How often a model is loaded before it counts as broken.
constexpr int kMostLoadings = 2;
constexpr Seconds kLongestPause{60};

SteadyTime now() {
    return std::chrono::steady_clock::now();
}

SteadyTime after(Seconds time) {
    return now() + std::chrono::duration_cast<SteadyTime::duration>(time);
}

Error hasEndedError() {
    return recognitionError(RecognitionCode::ended, "Recognition was ended");
}

std::string stampOf(const fs::path& file) {
    std::error_code none;
    const auto size = fs::file_size(file, none);
    const auto written = fs::last_write_time(file, none).time_since_epoch().count();
    return file.string() + ' ' + std::to_string(size) + ' ' + std::to_string(written) + '\n';
}

} // namespace

std::string fileStamp(const std::vector<fs::path>& filesAndFolders) {
    std::vector<std::string> stamps;
    for (const auto& place : filesAndFolders) {
        stamps.push_back(stampOf(place));
        std::error_code end;
        for (fs::recursive_directory_iterator entry(place, end), last; !end && entry != last;
             entry.increment(end)) {
            stamps.push_back(stampOf(entry->path()));
        }
    }
    // A folder tells its files in any order.
    std::sort(stamps.begin(), stamps.end());
    std::string all;
    for (const auto& stamp : stamps) {
        all += stamp;
    }
    return all;
}

/// The thread that keeps a process, and what it shares with others.
class ModelEngine::Keeper {
public:
    Keeper(SystemLog& log, Model model, Limits limits)
        : log_(log),
          model_(std::move(model)),
          limits_(limits),
          wake_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
        if (auto usable = model_.check(); !usable) {
            missing_ = usable.error();
            log_.logLine("[TovikVoice] Speech recognition is not available: " + missing_->description);
        }
        thread_ = std::thread([this] { run(); });
    }
    Keeper(const Keeper&) = delete;
    Keeper& operator=(const Keeper&) = delete;
    ~Keeper() {
        change([this] { isLeaving_ = true; });
        thread_.join();
    }

    // What others call.

    void add(std::unique_ptr<Dictation> dictation) {
        change([&] {
            ++underWay_;
            added_.push_back(std::move(dictation));
        });
    }
    void prepare(const std::vector<std::string>& contextualStrings) {
        change([&] { toLearn_ = contextualStrings; });
    }
    void beginEnd() {
        change([this] { ends_ = true; });
    }
    void waitForEnd() {
        std::unique_lock lock(mutex_);
        changed_.wait(lock, [this] { return hasEnded_; });
    }
    [[nodiscard]] bool hasEnded() const {
        const std::lock_guard lock(mutex_);
        return hasEnded_;
    }
    [[nodiscard]] bool isIdle() const {
        const std::lock_guard lock(mutex_);
        return underWay_ == 0;
    }
    [[nodiscard]] bool waitUntilReady(Seconds atMost) const {
        std::unique_lock lock(mutex_);
        const auto isReady = [this] { return isLoaded_ && !toLearn_ && !isLearning_; };
        changed_.wait_for(lock, atMost, [&] { return isReady() || missing_ || isBroken_ || ends_; });
        return isReady();
    }
    [[nodiscard]] std::optional<std::string> whyUnavailable() {
        std::unique_lock lock(mutex_);
        if (missing_ && model_.check()) {
            missing_.reset();
            lock.unlock();
            change([] {});
            lock.lock();
        }
        const auto why = ends_ ? hasEndedError() : missing_ ? missing_ : failure_;
        return why ? std::optional(why->description) : std::nullopt;
    }

private:
    /// For the thread itself.
    template <typename Change>
    void publish(Change change) {
        {
            const std::lock_guard lock(mutex_);
            change();
        }
        changed_.notify_all();
    }
    /// For others.
    template <typename Change>
    void change(Change change) {
        publish(change);
        const std::uint64_t one = 1;
        [[maybe_unused]] const auto written = ::write(wake_.get(), &one, sizeof one);
    }

    // What the thread does.

    void run();
    bool takeOrders();
    void closeDown();
    void keepProcess();
    void startProcess();
    void lookAtFiles();
    void lookForSilence();
    void teach();
    void feed();
    void takeAnswers();
    void take(const EngineProcess::Answer& answer);
    void loaded(const Result<std::string>& outcome);
    void learned(const Result<std::string>& outcome);
    void answered(const Result<std::string>& text);
    void lost(bool byHanging);
    void lostWhileLoading(bool byHanging);
    void cannotBeLoaded(const Error& why);
    void answerAll(const Error& why);
    void drop();
    void pauseForNews();
    [[nodiscard]] Dictation* speaking() const;
    [[nodiscard]] std::chrono::milliseconds longestPause() const;

    SystemLog& log_;
    const Model model_;
    const Limits limits_;
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
    /// Why the model could not be loaded, until it is: nobody is to speak into another try.
    std::optional<Error> failure_;
    /// Whether there is no such try under way.
    bool isBroken_ = false;
    bool isLoaded_ = false;
    bool ends_ = false;
    bool hasEnded_ = false;
    bool isLeaving_ = false;

    // The thread's own.
    /// Whether there is a model, and no end of all.
    bool mayRun_ = false;
    std::deque<std::unique_ptr<Dictation>> dictations_;
    std::unique_ptr<EngineProcess> process_;
    /// What was last taught, for the next process.
    std::optional<std::vector<std::string>> vocabulary_;
    int loadings_ = 0;
    /// Whether the files as they were at the last start have been loaded once.
    bool areProven_ = false;
    std::string loadedStamp_;
    std::string seenStamp_;
    bool mayHaveChanged_ = false;
    SteadyTime nextLook_{};
    bool isSuspect_ = false;
    SteadyTime nextStart_{};
    Seconds pause_{0};

    std::thread thread_;
};

void ModelEngine::Keeper::run() {
    while (takeOrders()) {
        takeAnswers();
        keepProcess();
        teach();
        feed();
        pauseForNews();
    }
}

/// Whether the thread goes on.
bool ModelEngine::Keeper::takeOrders() {
    std::unique_lock lock(mutex_);
    for (auto& dictation : added_) {
        dictations_.push_back(std::move(dictation));
    }
    added_.clear();
    const bool ends = ends_ || isLeaving_;
    const bool goesOn = !isLeaving_;
    const auto unanswerable = missing_ || !isBroken_ ? missing_ : failure_;
    mayRun_ = !ends && !missing_;
    lock.unlock();
    if (ends) {
        closeDown();
    } else if (unanswerable) {
        answerAll(*unanswerable);
    }
    return goesOn;
}

void ModelEngine::Keeper::closeDown() {
    drop();
    answerAll(hasEndedError());
    publish([this] { hasEnded_ = true; });
}

void ModelEngine::Keeper::keepProcess() {
    if (!mayRun_) {
        return;
    }
    if (now() >= nextLook_) {
        nextLook_ = after(limits_.look);
        lookForSilence();
        lookAtFiles();
    }
    if (!process_ && !isBroken_ && (now() >= nextStart_ || !dictations_.empty())) {
        startProcess();
    }
}

void ModelEngine::Keeper::startProcess() {
    loadedStamp_ = fileStamp(model_.files);
    ++loadings_;
    auto started = EngineProcess::start(model_.command, limits_.clock);
    if (started) {
        process_ = std::move(started.value());
    } else {
        // Not the fault of the model's files: it is tried again in a while.
        areProven_ = true;
        cannotBeLoaded(started.error());
    }
}

void ModelEngine::Keeper::lookForSilence() {
    const auto limit = process_ && process_->isLoaded() ? limits_.silence : limits_.loading;
    const bool wasSuspect = std::exchange(isSuspect_, process_ && process_->silentFor() > limit);
    // Once is not enough: after all processes have been stopped for a while, as with their machine, it goes
    // on as if nothing had been.
    if (isSuspect_ && wasSuspect) {
        isSuspect_ = false;
        lost(true);
    }
}

/// The files may have been looked at while they were being unpacked.
void ModelEngine::Keeper::lookAtFiles() {
    if (!isBroken_ && !mayHaveChanged_) {
        return;
    }
    const auto stamp = fileStamp(model_.files);
    const bool isSettled = stamp == std::exchange(seenStamp_, stamp);
    mayHaveChanged_ = mayHaveChanged_ && stamp != loadedStamp_;
    // What has been loaded from these very files will be again, when there is room in the memory.
    const bool isWorthATry = stamp != loadedStamp_ || (isBroken_ && areProven_ && now() >= nextStart_);
    if (!isSettled || !isWorthATry || !dictations_.empty()) {
        return;
    }
    drop();
    loadings_ = 0;
    nextStart_ = now();
    mayHaveChanged_ = false;
    areProven_ = areProven_ && stamp == loadedStamp_;
    publish([this] { isBroken_ = false; });
}

void ModelEngine::Keeper::drop() {
    process_.reset();
    isSuspect_ = false;
    publish([this] {
        isLoaded_ = false;
        // What it died over is not taught again.
        if (!std::exchange(isLearning_, false) && !toLearn_) {
            toLearn_ = vocabulary_;
        }
    });
}

/// Whoever speaks already has words of the utterance's own, which are learned with it.
void ModelEngine::Keeper::teach() {
    if (!process_ || !process_->isLoaded() || !dictations_.empty()) {
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
    process_->ask(Frame::learn, packStrings(*words));
    vocabulary_ = std::move(words);
}

void ModelEngine::Keeper::feed() {
    for (auto& dictation : dictations_) {
        dictation->hear(std::chrono::milliseconds(0));
    }
    while (!dictations_.empty() && dictations_.front()->trouble()) {
        const auto why = *dictations_.front()->trouble();
        answered(why);
    }
    if (process_ && process_->isLoaded() && !dictations_.empty()) {
        dictations_.front()->feed(*process_);
    }
}

void ModelEngine::Keeper::takeAnswers() {
    if (!process_) {
        return;
    }
    std::vector<EngineProcess::Answer> answers;
    const bool lives = process_->exchange(answers);
    for (const auto& answer : answers) {
        take(answer);
    }
    // One that could not load its model has said so and gone.
    if (!lives && process_) {
        lost(false);
    }
}

void ModelEngine::Keeper::take(const EngineProcess::Answer& answer) {
    switch (answer.request) {
    case Frame::hello:
        loaded(answer.text);
        break;
    case Frame::learn:
        learned(answer.text);
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

void ModelEngine::Keeper::loaded(const Result<std::string>& outcome) {
    if (!outcome) {
        cannotBeLoaded(outcome.error());
        return;
    }
    loadings_ = 0;
    areProven_ = true;
    publish([this] {
        isLoaded_ = true;
        failure_.reset();
    });
}

void ModelEngine::Keeper::learned(const Result<std::string>& outcome) {
    if (!outcome) {
        log_.logLine("[TovikVoice] Speech recognition could not learn the vocabulary: " +
                     outcome.error().description);
    }
    publish([this] { isLearning_ = false; });
}

void ModelEngine::Keeper::answered(const Result<std::string>& text) {
    if (dictations_.empty()) {
        return;
    }
    const auto dictation = std::move(dictations_.front());
    dictations_.pop_front();
    pause_ = Seconds(0);
    // Before the answer, so that whoever gets it finds the engine idle.
    publish([this] { --underWay_; });
    if (text) {
        dictation->answer(text.value());
    } else {
        dictation->answer(text.error());
    }
    mayHaveChanged_ = mayHaveChanged_ || (process_ && fileStamp(model_.files) != loadedStamp_);
}

/// The process has gone by itself, or is to.
void ModelEngine::Keeper::lost(bool byHanging) {
    if (!process_->isLoaded()) {
        lostWhileLoading(byHanging);
        return;
    }
    log_.logLine(byHanging ? "[TovikVoice] Speech recognition does not answer: it is started anew"
                           : "[TovikVoice] Speech recognition broke down: it is started anew");
    drop();
    nextStart_ = after(pause_);
    pause_ = std::clamp(pause_ * 2, limits_.pause, kLongestPause);
    if (dictations_.empty() || !dictations_.front()->isBegun() ||
        dictations_.front()->rewind() < kMostTries) {
        return;
    }
    answered(byHanging ? recognitionError(RecognitionCode::notAnswering, "The recogniser does not answer")
                       : recognitionError(RecognitionCode::failed, "The recogniser broke down"));
}

void ModelEngine::Keeper::lostWhileLoading(bool byHanging) {
    drop();
    if (loadings_ >= kMostLoadings) {
        cannotBeLoaded(model_.unusable(byHanging ? "the library does not come back from it"
                                                 : "the library breaks down over it"));
    }
}

void ModelEngine::Keeper::cannotBeLoaded(const Error& why) {
    drop();
    seenStamp_.clear();
    nextStart_ = after(kLongestPause);
    log_.logLine("[TovikVoice] Speech recognition is not available: " + why.description);
    publish([&] {
        failure_ = why;
        isBroken_ = true;
    });
    answerAll(why);
}

void ModelEngine::Keeper::answerAll(const Error& why) {
    while (!dictations_.empty()) {
        answered(why);
    }
}

/// Whose sound has yet to come.
Dictation* ModelEngine::Keeper::speaking() const {
    const auto found = std::find_if(dictations_.begin(), dictations_.end(),
                                    [](const auto& dictation) { return !dictation->isComplete(); });
    return found == dictations_.end() ? nullptr : found->get();
}

void ModelEngine::Keeper::pauseForNews() {
    if (auto* const dictation = speaking()) {
        dictation->hear(kGlance);
        return;
    }
    std::array<pollfd, 3> watched{pollfd{wake_.get(), POLLIN, 0}, pollfd{-1, POLLIN, 0},
                                  pollfd{-1, POLLOUT, 0}};
    if (process_) {
        watched[1].fd = process_->output();
        watched[2].fd = process_->isBehind() ? process_->input() : -1;
    }
    ::poll(watched.data(), watched.size(), static_cast<int>(longestPause().count()));
    std::uint64_t count = 0;
    [[maybe_unused]] const auto got = ::read(wake_.get(), &count, sizeof count);
}

/// Negative while nothing is due by itself.
std::chrono::milliseconds ModelEngine::Keeper::longestPause() const {
    using std::chrono::ceil, std::chrono::milliseconds;
    if (!mayRun_) {
        return milliseconds(-1);
    }
    if (isBroken_ || mayHaveChanged_ || (process_ && process_->owesAnswers())) {
        return std::max(ceil<milliseconds>(nextLook_ - now()), milliseconds(0));
    }
    if (process_) {
        return milliseconds(-1);
    }
    return dictations_.empty() ? std::max(ceil<milliseconds>(nextStart_ - now()), milliseconds(0))
                               : milliseconds(0);
}

class ModelRecognizer : public SpeechRecognizer {
public:
    explicit ModelRecognizer(std::shared_ptr<ModelEngine> engine) : engine_(std::move(engine)) {}

    [[nodiscard]] bool isAvailable() const override { return !engine_->whyUnavailable(); }

    [[nodiscard]] std::unique_ptr<RecognitionTask> startTask(std::shared_ptr<RecognitionRequest> request,
                                                             RecognitionHandler handler) override {
        auto task = std::make_unique<RequestTask>(request);
        engine_->keeper_->add(std::make_unique<Dictation>(std::move(request), std::move(handler)));
        return task;
    }

private:
    const std::shared_ptr<ModelEngine> engine_;
};

std::string ModelEngine::program() {
    std::error_code error;
    return (fs::read_symlink("/proc/self/exe", error).parent_path() / "tovik-engine").string();
}

ModelEngine::ModelEngine(SystemLog& log, Model model, Limits limits)
    : keeper_(std::make_unique<Keeper>(log, std::move(model), limits)) {}

ModelEngine::~ModelEngine() = default;

std::shared_ptr<SpeechRecognizer> ModelEngine::makeRecognizer() {
    return std::make_shared<ModelRecognizer>(shared_from_this());
}

void ModelEngine::end() {
    keeper_->beginEnd();
    keeper_->waitForEnd();
}

void ModelEngine::beginEnd() {
    keeper_->beginEnd();
}

bool ModelEngine::hasEnded() const {
    return keeper_->hasEnded();
}

bool ModelEngine::isIdle() const {
    return keeper_->isIdle();
}

void ModelEngine::prepare(const std::vector<std::string>& contextualStrings) {
    keeper_->prepare(contextualStrings);
}

std::optional<std::string> ModelEngine::whyUnavailable() {
    return keeper_->whyUnavailable();
}

bool ModelEngine::waitUntilReady(Seconds atMost) const {
    return keeper_->waitUntilReady(atMost);
}

} // namespace tovik

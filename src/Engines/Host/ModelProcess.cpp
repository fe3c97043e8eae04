// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Engines/Host/ModelProcess.h"

#include "Engines/ChildProcess.h"

#include <algorithm>
#include <deque>
#include <utility>

namespace tovik {

namespace {

namespace fs = std::filesystem;
using SteadyTime = std::chrono::steady_clock::time_point;

/// How often a model is loaded before it counts as broken.
constexpr int kMostLoadings = 2;

SteadyTime now() {
    return std::chrono::steady_clock::now();
}

SteadyTime after(Seconds time) {
    return now() + std::chrono::duration_cast<SteadyTime::duration>(time);
}

std::chrono::milliseconds timeUntil(SteadyTime time) {
    return std::max(std::chrono::ceil<std::chrono::milliseconds>(time - now()), std::chrono::milliseconds(0));
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

/// One of its lives, from this side.
class ModelProcess::Run {
public:
    Run(std::unique_ptr<ChildProcess> process, const Limits& limits)
        : process_(std::move(process)),
          limits_(limits),
          lastSign_(limits.clock()) {}

    void ask(Frame request, std::string_view content) {
        if (owed_.empty()) {
            lastSign_ = limits_.clock();
        }
        owed_.push_back(request);
        appendFrame(unsent_, request, content);
        // Whether it takes anything at all shows in exchange().
        static_cast<void>(send());
    }

    /// Once false, it has ended or talks nonsense.
    [[nodiscard]] bool exchange(std::vector<Answer>& answers) {
        // What it said before its end counts.
        const bool takes = send();
        const bool lives = process_->read(incoming_.bytes());
        while (const auto frame = incoming_.next()) {
            if (!take(frame->first, frame->second, answers)) {
                return false;
            }
        }
        return takes && lives && !incoming_.isTooLong();
    }

    [[nodiscard]] bool isLoaded() const { return isLoaded_; }
    [[nodiscard]] bool isBehind() const { return !unsent_.empty(); }
    [[nodiscard]] bool owesAnswers() const { return !owed_.empty(); }
    [[nodiscard]] bool isSilent() const {
        const auto limit = isLoaded_ ? limits_.silence : limits_.loading;
        return owesAnswers() && limits_.clock() - lastSign_ > limit;
    }
    [[nodiscard]] std::array<pollfd, 2> watched() const {
        return {pollfd{process_->output().get(), POLLIN, 0},
                pollfd{isBehind() ? process_->input().get() : -1, POLLOUT, 0}};
    }

private:
    [[nodiscard]] bool send() {
        const auto taken = unsent_.empty() ? std::optional<std::size_t>(0) : process_->write(unsent_);
        unsent_.erase(0, taken.value_or(0));
        return taken.has_value();
    }

    [[nodiscard]] bool take(Frame kind, const std::string& content, std::vector<Answer>& answers) {
        lastSign_ = limits_.clock();
        if (!greeted_) {
            greeted_ = kind == Frame::hello && content == kProtocolVersion;
            return greeted_;
        }
        const bool isAnswer = kind == Frame::done || kind == Frame::failed;
        if (!isAnswer || owed_.empty()) {
            return false;
        }
        const auto request = owed_.front();
        owed_.pop_front();
        isLoaded_ = isLoaded_ || kind == Frame::done;
        answers.push_back({request, kind == Frame::done ? Result<std::string>(content)
                                                        : Result<std::string>(unpackError(content))});
        return true;
    }

    const std::unique_ptr<ChildProcess> process_;
    const Limits& limits_;
    std::string unsent_;
    FrameReader incoming_;
    /// What it has not answered yet.
    std::deque<Frame> owed_{Frame::hello};
    bool greeted_ = false;
    bool isLoaded_ = false;
    /// When it last answered, or was asked while it owed nothing.
    SteadyTime lastSign_;
};

ModelProcess::ModelProcess(SystemLog& log, LocalModel model, Limits limits)
    : log_(log),
      model_(std::move(model)),
      limits_(std::move(limits)) {}

ModelProcess::~ModelProcess() = default;

bool ModelProcess::isLoaded() const {
    return run_ && run_->isLoaded();
}

void ModelProcess::ask(Frame request, std::string_view content) {
    run_->ask(request, content);
}

bool ModelProcess::isBehind() const {
    return run_->isBehind();
}

std::array<pollfd, 2> ModelProcess::watched() const {
    return run_ ? run_->watched() : std::array<pollfd, 2>{pollfd{-1, 0, 0}, pollfd{-1, 0, 0}};
}

std::chrono::milliseconds ModelProcess::idleFor(bool somebodySpeaks) const {
    if (isBroken_ || mayHaveChanged_ || (run_ && run_->owesAnswers())) {
        return timeUntil(nextLook_);
    }
    if (run_) {
        return std::chrono::milliseconds(-1);
    }
    return somebodySpeaks ? std::chrono::milliseconds(0) : timeUntil(nextStart_);
}

std::optional<ModelProcess::Loss> ModelProcess::keep(bool somebodySpeaks) {
    std::optional<Loss> loss;
    if (now() >= nextLook_) {
        nextLook_ = after(limits_.look);
        loss = lookForSilence();
        lookAtFiles(somebodySpeaks);
    }
    if (!run_ && !isBroken_ && (now() >= nextStart_ || somebodySpeaks)) {
        start();
    }
    return loss;
}

void ModelProcess::start() {
    startedStamp_ = fileStamp(model_.files);
    ++loadings_;
    auto child = ChildProcess::start({.command = model_.command, .hasInput = true, .hasOutput = true});
    if (child) {
        run_ = std::make_unique<Run>(std::move(child.value()), limits_);
    } else {
        // Not the fault of the model's files.
        cannotBeLoaded(child.error(), true);
    }
}

std::optional<ModelProcess::Loss> ModelProcess::lookForSilence() {
    const bool wasSuspect = std::exchange(isSuspect_, run_ && run_->isSilent());
    // Once is not enough: after all processes have been stopped for a while, as with their machine, it goes
    // on as if nothing had been.
    return isSuspect_ && wasSuspect ? lost(Loss::hung) : std::nullopt;
}

void ModelProcess::lookAtFiles(bool somebodySpeaks) {
    if (!isBroken_ && !mayHaveChanged_) {
        return;
    }
    const auto stamp = fileStamp(model_.files);
    const bool isSettled = stamp == std::exchange(seenStamp_, stamp);
    mayHaveChanged_ = mayHaveChanged_ && stamp != startedStamp_;
    const bool isDueAgain = isBroken_ && isWorthAnotherTry_ && now() >= nextStart_;
    if (!isSettled || somebodySpeaks || (stamp == startedStamp_ && !isDueAgain)) {
        return;
    }
    end();
    loadings_ = 0;
    nextStart_ = now();
    mayHaveChanged_ = false;
    isBroken_ = false;
}

void ModelProcess::end() {
    run_.reset();
    isSuspect_ = false;
}

std::optional<ModelProcess::Loss> ModelProcess::exchange(std::vector<Answer>& answers) {
    if (!run_) {
        return std::nullopt;
    }
    const bool lives = run_->exchange(answers);
    if (!answers.empty() && answers.front().request == Frame::hello) {
        const auto outcome = answers.front().text;
        answers.erase(answers.begin());
        loaded(outcome);
    }
    // One that could not load its model has said so and gone.
    return lives || !run_ ? std::nullopt : lost(Loss::died);
}

void ModelProcess::loaded(const Result<std::string>& outcome) {
    if (!outcome) {
        // What has been loaded from these very files will be again, when there is room in the memory.
        cannotBeLoaded(outcome.error(), provenStamp_ == startedStamp_);
        return;
    }
    loadings_ = 0;
    provenStamp_ = startedStamp_;
    failure_.reset();
}

/// The process has gone by itself, or is to.
std::optional<ModelProcess::Loss> ModelProcess::lost(Loss how) {
    const bool wasLoaded = isLoaded();
    const bool hung = how == Loss::hung;
    end();
    if (wasLoaded) {
        log_.logLine(hung ? "[TovikVoice] Speech recognition does not answer: it is started again"
                          : "[TovikVoice] Speech recognition broke down: it is started again");
        nextStart_ = after(pause_);
        pause_ = std::clamp(pause_ * 2, limits_.pause, limits_.longestPause);
        return how;
    }
    if (loadings_ >= kMostLoadings) {
        cannotBeLoaded(model_.unusable(hung ? "the library does not come back from it"
                                            : "the library breaks down over it"),
                       provenStamp_ == startedStamp_);
    }
    return std::nullopt;
}

void ModelProcess::cannotBeLoaded(const Error& why, bool isWorthAnotherTry) {
    end();
    seenStamp_.clear();
    nextStart_ = after(limits_.longestPause);
    log_.logLine("[TovikVoice] Speech recognition is not available: " + why.description);
    failure_ = why;
    isBroken_ = true;
    isWorthAnotherTry_ = isWorthAnotherTry;
}

void ModelProcess::noteAnswer() {
    pause_ = Seconds(0);
    mayHaveChanged_ = mayHaveChanged_ || (run_ && fileStamp(model_.files) != startedStamp_);
}

} // namespace tovik

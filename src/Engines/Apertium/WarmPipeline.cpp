// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Engines/Apertium/WarmPipeline.h"

#include "Engines/Apertium/StreamText.h"

#include <poll.h>
#include <signal.h>

#include <array>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <optional>
#include <thread>
#include <utility>

namespace tovik {

namespace {

constexpr Seconds kIdleLimit{300.0};
constexpr Seconds kTimeLimit{10.0};
constexpr double kBytesForOneMoreSecond = 10000.0;
/// Far beyond any translation of what is sent.
constexpr std::size_t kLongestAnswer = 64 << 20;

Error stopped() {
    return {"Apertium", 3, "The Apertium translator stopped before it answered."};
}

Error tookTooLong() {
    return {"Apertium", 4, "The Apertium translator took too long."};
}

Error misunderstood() {
    return {"Apertium", 5, "The Apertium translator gave no proper answer."};
}

} // namespace

Result<std::unique_ptr<StageProcesses>> StageProcesses::start(const std::vector<Stage>& stages) {
    std::unique_ptr<StageProcesses> started(new StageProcesses);
    auto& programs = started->programs_;
    for (const auto& stage : stages) {
        // In a character encoding that the stages can read.
        ChildProcess::Program program{.command = stage, .hasOutput = true, .environment = {"LC_ALL=C.UTF-8"}};
        if (programs.empty()) {
            program.hasInput = true;
        } else {
            program.input = std::move(programs.back()->output());
        }
        auto child = ChildProcess::start(std::move(program));
        if (!child) {
            return child.error();
        }
        programs.push_back(std::move(child.value()));
    }
    return started;
}

StageProcesses::~StageProcesses() {
    // All at once: each waits for its end.
    kill();
}

void StageProcesses::kill() const {
    for (const auto& program : programs_) {
        program->kill(SIGKILL);
    }
}

Result<std::string> StageProcesses::exchange(std::string_view request) {
    auto& first = *programs_.front();
    auto& last = *programs_.back();
    std::string answer;
    while (!answer.ends_with('\0')) {
        std::array<pollfd, 2> watched{pollfd{last.output().get(), POLLIN, 0},
                                      pollfd{request.empty() ? -1 : first.input().get(), POLLOUT, 0}};
        if (::poll(watched.data(), watched.size(), -1) < 0) {
            continue;
        }
        if (watched[1].revents != 0) {
            const auto sent = first.write(request);
            if (!sent) {
                return stopped();
            }
            request.remove_prefix(*sent);
        }
        if (watched[0].revents != 0 && (!last.read(answer) || answer.size() > kLongestAnswer)) {
            return stopped();
        }
    }
    answer.pop_back();
    return answer;
}

/// The thread that talks with the programs.
class WarmPipeline::Worker {
public:
    using Deliver = std::function<void(std::uint64_t, const Result<std::string>&)>;

    Worker(std::vector<Stage> stages, Deliver deliver)
        : stages_(std::move(stages)),
          deliver_(std::move(deliver)),
          thread_([this] { run(); }) {}
    Worker(const Worker&) = delete;
    Worker& operator=(const Worker&) = delete;

    ~Worker() {
        {
            const std::lock_guard lock(mutex_);
            isEnding_ = true;
            if (programs_) {
                programs_->kill();
            }
        }
        changed_.notify_all();
        thread_.join();
    }

    void add(std::uint64_t id, const std::string& text) {
        const std::lock_guard lock(mutex_);
        jobs_.push_back({id, text});
        changed_.notify_all();
    }

    /// Ends the programs once nothing is left to do.
    void rest() {
        const std::lock_guard lock(mutex_);
        isToRest_ = true;
        changed_.notify_all();
    }

    /// The text, whether under way or waiting, fails.
    void giveUp(std::uint64_t id) {
        const std::lock_guard lock(mutex_);
        if (current_ == id) {
            current_.reset();
            if (programs_) {
                programs_->kill();
            }
        } else if (std::erase_if(jobs_, [id](const Job& job) { return job.id == id; }) > 0) {
            deliver_(id, tookTooLong());
        }
    }

private:
    struct Job {
        std::uint64_t id;
        std::string text;
    };

    void run() {
        std::unique_lock lock(mutex_);
        while (!isEnding_) {
            if (!jobs_.empty()) {
                const auto job = std::move(jobs_.front());
                jobs_.pop_front();
                current_ = job.id;
                isToRest_ = false;
                lock.unlock();
                const auto outcome = translate(job);
                lock.lock();
                const bool wasGivenUp = !std::exchange(current_, std::nullopt);
                deliver_(job.id, wasGivenUp ? Result<std::string>(tookTooLong()) : outcome);
            } else if (std::exchange(isToRest_, false)) {
                endPrograms(lock);
            } else {
                changed_.wait(lock);
            }
        }
        endPrograms(lock);
    }

    /// Programs that died since the last text are started again for this one; over one that kills them, once
    /// is enough.
    Result<std::string> translate(const Job& job) {
        const bool wereRunning = programs_ != nullptr;
        auto outcome = attempt(job.text);
        if (!outcome && wereRunning && isWanted(job.id)) {
            outcome = attempt(job.text);
        }
        return outcome;
    }

    Result<std::string> attempt(const std::string& text) {
        auto outcome = translateEachPiece(text);
        if (!outcome) {
            std::unique_lock lock(mutex_);
            endPrograms(lock);
        }
        return outcome;
    }

    Result<std::string> translateEachPiece(const std::string& text) {
        std::string translation;
        for (const auto& piece : piecesOf(text)) {
            if (!piece.isToTranslate) {
                translation += piece.text;
                continue;
            }
            if (const auto started = startPrograms(); !started) {
                return started.error();
            }
            const auto answer = programs_->exchange(toStream(piece.text));
            if (!answer) {
                return answer.error();
            }
            const auto words = fromStream(answer.value());
            if (!words) {
                return misunderstood();
            }
            translation += *words;
        }
        return translation;
    }

    Result<void> startPrograms() {
        if (programs_) {
            return {};
        }
        auto started = StageProcesses::start(stages_);
        if (!started) {
            return started.error();
        }
        const std::lock_guard lock(mutex_);
        programs_ = std::move(started.value());
        if (isEnding_ || !current_) {
            programs_->kill();
        }
        return {};
    }

    /// Only this thread changes the pointer, under the lock, so that others may look at it.
    void endPrograms(std::unique_lock<std::mutex>& lock) {
        auto ended = std::move(programs_);
        lock.unlock();
        ended.reset();
        lock.lock();
    }

    [[nodiscard]] bool isWanted(std::uint64_t id) {
        const std::lock_guard lock(mutex_);
        return !isEnding_ && current_ == id;
    }

    const std::vector<Stage> stages_;
    const Deliver deliver_;
    std::mutex mutex_;
    std::condition_variable changed_;
    std::deque<Job> jobs_;
    std::optional<std::uint64_t> current_;
    bool isToRest_ = false;
    bool isEnding_ = false;
    std::unique_ptr<StageProcesses> programs_;
    std::thread thread_;
};

WarmPipeline::WarmPipeline(std::vector<Stage> stages, MainQueue& queue) : queue_(queue) {
    auto finishHere = lifetime_.guard(
        [this](std::uint64_t id, const Result<std::string>& outcome) { finish(id, outcome); });
    worker_ = std::make_unique<Worker>(
        std::move(stages), [&queue, finishHere](std::uint64_t id, const Result<std::string>& outcome) {
            queue.async([finishHere, id, outcome]() mutable { finishHere(id, outcome); });
        });
}

WarmPipeline::~WarmPipeline() = default;

void WarmPipeline::translate(const std::string& text, Completion completion) {
    const auto id = nextId_++;
    const auto limit = kTimeLimit + Seconds(static_cast<double>(text.size()) / kBytesForOneMoreSecond);
    tasks_[id] = {std::move(completion), queue_.after(limit, [this, id] { worker_->giveUp(id); })};
    idleLimit_.end();
    worker_->add(id, text);
}

void WarmPipeline::finish(std::uint64_t id, const Result<std::string>& outcome) {
    auto task = tasks_.extract(id);
    if (task.empty()) {
        return;
    }
    if (tasks_.empty()) {
        idleLimit_ = queue_.after(kIdleLimit, [this] { worker_->rest(); });
    }
    task.mapped().timeLimit.end();
    task.mapped().completion(outcome);
}

} // namespace tovik

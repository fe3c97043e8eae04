// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Engines/ChildProcess.h"
#include "Platform/MainQueue.h"
#include "Platform/Result.h"
#include "Platform/Subscription.h"

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace tovik {

/// A program of a pipeline and its arguments.
using Stage = std::vector<std::string>;

/// The running programs of one pipeline, joined by pipes. They end with this object, and when this process
/// ends. For one thread; kill() is for any.
class StageProcesses {
public:
    [[nodiscard]] static Result<std::unique_ptr<StageProcesses>> start(const std::vector<Stage>& stages);
    ~StageProcesses();
    StageProcesses(const StageProcesses&) = delete;
    StageProcesses& operator=(const StageProcesses&) = delete;

    /// Sends a request, which ends with a zero byte, and waits for as much of an answer, given without that
    /// byte. Fails when a program ends or is killed, after which every further exchange fails.
    [[nodiscard]] Result<std::string> exchange(std::string_view request);

    /// Lets an exchange that another thread is waiting for fail at once.
    void kill() const;

private:
    StageProcesses() = default;

    std::vector<std::unique_ptr<ChildProcess>> programs_;
};

/// One pair's pipeline: started with its first text, kept running for the next ones, started again when it
/// has died, and ended when nobody needed it for five minutes. Main thread; the texts go through on a thread
/// of its own, one after the other.
class WarmPipeline {
public:
    using Completion = std::function<void(const Result<std::string>&)>;

    WarmPipeline(std::vector<Stage> stages, MainQueue& queue);
    /// What is under way is given up, without a completion.
    ~WarmPipeline();
    WarmPipeline(const WarmPipeline&) = delete;
    WarmPipeline& operator=(const WarmPipeline&) = delete;

    /// Completes once, later. Fails when the programs cannot be started, die over the text, or take longer
    /// than ten seconds and one more for each 10 kB.
    void translate(const std::string& text, Completion completion);

private:
    class Worker;
    struct Task {
        Completion completion;
        Subscription timeLimit;
    };

    void finish(std::uint64_t id, const Result<std::string>& outcome);

    MainQueue& queue_;
    std::uint64_t nextId_ = 1;
    std::map<std::uint64_t, Task> tasks_;
    Subscription idleLimit_;
    std::unique_ptr<Worker> worker_;
    Lifetime lifetime_;
};

} // namespace tovik

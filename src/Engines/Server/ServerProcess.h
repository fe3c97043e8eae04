// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Engines/ChildProcess.h"
#include "Platform/MainQueue.h"
#include "Platform/Posix.h"
#include "Platform/SystemLog.h"

#include <sys/types.h>

#include <chrono>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace tovik {

/// The speech server as a program that is ours to run. It is started when it is needed first and started
/// anew when it ends by itself, after longer and longer pauses. What it has started ends with it. All end
/// with this object, and with this process however that ends. A thread of its own watches over it, from the
/// first command on. Any thread; no call waits, save for the end.
class ServerProcess {
public:
    struct Pauses {
        Seconds first{1};
        Seconds longest{60};
        /// One that has run this long counts as good: the pauses begin anew.
        Seconds good{60};
        /// How long it may take to end when asked to.
        Seconds goodbye{2};
    };

    explicit ServerProcess(SystemLog& log) : ServerProcess(log, Pauses()) {}
    ServerProcess(SystemLog& log, Pauses pauses);
    ~ServerProcess();
    ServerProcess(const ServerProcess&) = delete;
    ServerProcess& operator=(const ServerProcess&) = delete;

    /// Has the program run. Another command replaces it; an empty one ends it, once nobody keeps it any more.
    void need(const std::vector<std::string>& command);
    /// Keeps the program from ending as long as the result is held. The result must not outlive this object.
    [[nodiscard]] std::shared_ptr<void> keep();

    /// 0 when it does not run.
    [[nodiscard]] pid_t processId() const;

private:
    using Clock = std::chrono::steady_clock;

    void run();
    void wake() const;
    void wait(std::unique_lock<std::mutex>& lock, std::optional<Clock::time_point> until) const;
    void start();
    void watch(std::unique_lock<std::mutex>& lock);
    void endChild(std::unique_lock<std::mutex>& lock);
    void startAgainLater(const std::string& why);
    [[nodiscard]] const std::vector<std::string>& wanted() const;

    SystemLog& log_;
    const Pauses pauses_;
    /// Becomes readable when there is something new for the thread.
    const UnixFd news_;
    mutable std::mutex mutex_;
    std::vector<std::string> command_;
    int keepers_ = 0;
    bool isEnding_ = false;
    std::vector<std::string> running_;
    std::unique_ptr<ChildProcess> child_;
    Seconds pause_;
    Clock::time_point startAt_;
    Clock::time_point started_;
    std::thread thread_;
};

} // namespace tovik

// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/MainQueue.h"
#include "Platform/Posix.h"
#include "Platform/Result.h"

#include <sys/types.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tovik {

/// A program that this one has started, with whatever that starts in turn: all of them are one process group.
/// It begins with the usual signals, no file of ours but its standard ones, and standard error closed to
/// nothing.
///
/// Everything ends with this object, without a grace; end() gives one. For one thread, except for kill().
class ChildProcess {
public:
    struct Program {
        /// The program and its arguments. A name without a slash is looked for in PATH.
        std::vector<std::string> command = {};
        /// Whether we write its standard input and read its standard output; what we do not is empty.
        bool hasInput = false;
        bool hasOutput = false;
        /// Read as its standard input instead of one that we write, such as the output of the stage before.
        UnixFd input = {};
        /// "NAME=value": instead of, or beside, our own.
        std::vector<std::string> environment = {};
        /// Has it and what it has started end when this process dies, however that happens. Programs that see
        /// the end of their input, or ask the system for a signal, need none of this.
        bool outlivesNothing = false;
    };

    /// The error is that of the system: there is no such program, or no room for another process.
    [[nodiscard]] static Result<std::unique_ptr<ChildProcess>> start(Program program);
    ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    [[nodiscard]] pid_t processId() const { return process_; }

    /// Our ends, which do not block; none where the program has none. Dropping the input is the end of it for
    /// the program. They are the caller's to move away.
    [[nodiscard]] UnixFd& input() { return input_; }
    [[nodiscard]] UnixFd& output() { return output_; }

    /// How much of the bytes the program took at once, perhaps 0; nothing when it reads no more. Raises no
    /// SIGPIPE.
    [[nodiscard]] std::optional<std::size_t> write(std::string_view bytes) const;
    /// Appends what the program has written. False at the end of that.
    [[nodiscard]] bool read(std::string& bytes) const;

    /// Readable once the program has ended: for poll().
    [[nodiscard]] int endSignal() const { return endSignal_.get(); }
    /// How it ended, as wait() says it; nothing while it runs. What it has started ends then at the latest.
    std::optional<int> ended();
    /// As ended(), and waits for that.
    std::optional<int> waitForEnd(Seconds atMost);

    /// Sends a signal to the program and all that it has started. Any thread, as long as ended() gave
    /// nothing.
    void kill(int signal) const;
    /// Asks them to end with SIGTERM, kills them after the grace, and returns how the program ended.
    int end(Seconds grace);

private:
    ChildProcess() = default;

    [[nodiscard]] Result<void> spawn(Program& program);
    void startWatcher();

    pid_t process_ = 0;
    /// Of the program and all that it has started.
    pid_t group_ = 0;
    UnixFd endSignal_;
    UnixFd input_;
    UnixFd output_;
    std::optional<int> status_;
    /// Leads the group, and ends it when this process has died, which it sees at the end of its input.
    std::unique_ptr<ChildProcess> watcher_;
};

} // namespace tovik

// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Engines/Apertium/ModeFile.h"
#include "Platform/UnixFd.h"
#include "Platform/Result.h"

#include <sys/types.h>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace tovik {

/// The running programs of one pipeline, joined by pipes. They end with this object, and when this process
/// ends. For one thread, on which SIGPIPE is blocked; kill() is for any.
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

    [[nodiscard]] bool send(std::string_view& request) const;
    [[nodiscard]] bool receive(std::string& answer) const;

    std::vector<pid_t> processes_;
    UnixFd input_;
    UnixFd output_;
};

} // namespace tovik

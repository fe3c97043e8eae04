// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Engines/ChildProcess.h"
#include "Engines/Host/Protocol.h"

#include <chrono>
#include <deque>
#include <functional>

namespace tovik {

/// One run of tovik-engine, from the other side: takes requests for it and gives its answers. Never blocks.
/// One thread, which outlives it: the process dies with that.
class EngineProcess {
public:
    using SteadyClock = std::function<std::chrono::steady_clock::time_point()>;

    struct Answer {
        /// What it is the answer to; the first is to `hello` and means that the model is loaded.
        Frame request;
        Result<std::string> text;
    };

    [[nodiscard]] static Result<std::unique_ptr<EngineProcess>> start(const std::vector<std::string>& command,
                                                                      SteadyClock clock);

    void ask(Frame request, std::string_view content);
    /// Whether there is more to send than it has taken.
    [[nodiscard]] bool isBehind() const { return !unsent_.empty(); }
    /// Whether the model is loaded.
    [[nodiscard]] bool isLoaded() const { return isLoaded_; }

    /// Sends what it takes and gives what it has answered since. Once false, it has ended or talks nonsense.
    [[nodiscard]] bool exchange(std::vector<Answer>& answers);

    [[nodiscard]] bool owesAnswers() const { return !owed_.empty(); }
    /// How long it has owed an answer without giving any; zero when it owes none.
    [[nodiscard]] Seconds silentFor() const;

    /// For poll(): readable when there are answers or the end, writable when it takes more.
    [[nodiscard]] int output() { return process_->output().get(); }
    [[nodiscard]] int input() { return process_->input().get(); }

private:
    EngineProcess(std::unique_ptr<ChildProcess> process, SteadyClock clock);

    [[nodiscard]] bool send();
    [[nodiscard]] bool take(Frame kind, const std::string& content, std::vector<Answer>& answers);

    const std::unique_ptr<ChildProcess> process_;
    const SteadyClock clock_;
    std::string unsent_;
    FrameReader incoming_;
    /// What it has not answered yet.
    std::deque<Frame> owed_{Frame::hello};
    bool greeted_ = false;
    bool isLoaded_ = false;
    /// When it last answered, or was asked while it owed nothing.
    std::chrono::steady_clock::time_point lastSign_;
};

} // namespace tovik

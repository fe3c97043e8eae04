// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Engines/Host/EngineProcess.h"

namespace tovik {

Result<std::unique_ptr<EngineProcess>> EngineProcess::start(const std::vector<std::string>& command,
                                                            SteadyClock clock) {
    auto process = ChildProcess::start({.command = command, .hasInput = true, .hasOutput = true});
    if (!process) {
        return process.error();
    }
    return std::unique_ptr<EngineProcess>(new EngineProcess(std::move(process.value()), std::move(clock)));
}

EngineProcess::EngineProcess(std::unique_ptr<ChildProcess> process, SteadyClock clock)
    : process_(std::move(process)),
      clock_(std::move(clock)),
      lastSign_(clock_()) {}

void EngineProcess::ask(Frame request, std::string_view content) {
    if (owed_.empty()) {
        lastSign_ = clock_();
    }
    owed_.push_back(request);
    appendFrame(unsent_, request, content);
    // Whether it takes anything at all shows in exchange().
    static_cast<void>(send());
}

bool EngineProcess::exchange(std::vector<Answer>& answers) {
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

bool EngineProcess::send() {
    const auto taken = unsent_.empty() ? std::optional<std::size_t>(0) : process_->write(unsent_);
    unsent_.erase(0, taken.value_or(0));
    return taken.has_value();
}

bool EngineProcess::take(Frame kind, const std::string& content, std::vector<Answer>& answers) {
    lastSign_ = clock_();
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

Seconds EngineProcess::silentFor() const {
    return owed_.empty() ? Seconds(0) : Seconds(clock_() - lastSign_);
}

} // namespace tovik

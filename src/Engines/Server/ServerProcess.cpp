// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Engines/Server/ServerProcess.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <utility>

namespace tovik {

namespace {

std::chrono::milliseconds milliseconds(Seconds time) {
    return std::chrono::duration_cast<std::chrono::milliseconds>(time);
}

} // namespace

ServerProcess::ServerProcess(SystemLog& log, Pauses pauses)
    : log_(log),
      pauses_(pauses),
      news_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)),
      pause_(pauses.first) {}

ServerProcess::~ServerProcess() {
    {
        const std::lock_guard lock(mutex_);
        isEnding_ = true;
    }
    wake();
    if (thread_.joinable()) {
        thread_.join();
    }
}

void ServerProcess::need(const std::vector<std::string>& command) {
    const std::lock_guard lock(mutex_);
    if (command != command_) {
        command_ = command;
        pause_ = pauses_.first;
        startAt_ = {};
    }
    if (!command_.empty() && !thread_.joinable()) {
        thread_ = std::thread([this] { run(); });
    }
    wake();
}

std::shared_ptr<void> ServerProcess::keep() {
    const std::lock_guard lock(mutex_);
    ++keepers_;
    return {this, [this](void*) {
                {
                    const std::lock_guard again(mutex_);
                    --keepers_;
                }
                wake();
            }};
}

pid_t ServerProcess::processId() const {
    const std::lock_guard lock(mutex_);
    return child_ ? child_->processId() : 0;
}

void ServerProcess::wake() const {
    static_cast<void>(::eventfd_write(news_.get(), 1));
}

/// What is to run now: nobody would start it again for a dictation that it still works on.
const std::vector<std::string>& ServerProcess::wanted() const {
    return command_.empty() && keepers_ > 0 ? running_ : command_;
}

void ServerProcess::run() {
    std::unique_lock lock(mutex_);
    while (!isEnding_) {
        if (child_) {
            watch(lock);
        } else if (wanted().empty()) {
            running_.clear();
            wait(lock, std::nullopt);
        } else if (Clock::now() < startAt_) {
            wait(lock, startAt_);
        } else {
            start();
        }
    }
    endChild(lock);
}

/// Until there is news, the program ends, or it is time.
void ServerProcess::wait(std::unique_lock<std::mutex>& lock, std::optional<Clock::time_point> until) const {
    std::array<pollfd, 2> watched{pollfd{news_.get(), POLLIN, 0},
                                  pollfd{child_ ? child_->endSignal() : -1, POLLIN, 0}};
    lock.unlock();
    const auto left =
        until ? std::chrono::ceil<std::chrono::milliseconds>(*until - Clock::now()).count() : -1;
    ::poll(watched.data(), watched.size(), until ? static_cast<int>(std::max<std::int64_t>(left, 0)) : -1);
    eventfd_t news = 0;
    static_cast<void>(::eventfd_read(news_.get(), &news));
    lock.lock();
}

void ServerProcess::start() {
    running_ = wanted();
    started_ = Clock::now();
    auto child = ChildProcess::start({.command = running_, .outlivesNothing = true});
    if (!child) {
        startAgainLater("cannot be started: " + child.error().description);
        return;
    }
    child_ = std::move(child.value());
    log_.logLine("[TovikVoice] The speech server " + running_.front() + " was started, process " +
                 std::to_string(child_->processId()));
}

void ServerProcess::watch(std::unique_lock<std::mutex>& lock) {
    if (const auto status = child_->ended()) {
        child_.reset();
        if (Clock::now() - started_ >= pauses_.good) {
            pause_ = pauses_.first;
        }
        startAgainLater(WIFEXITED(*status) ? "ended with " + std::to_string(WEXITSTATUS(*status))
                                           : "was killed by a signal");
    } else if (running_ != wanted()) {
        endChild(lock);
    } else {
        wait(lock, std::nullopt);
    }
}

void ServerProcess::endChild(std::unique_lock<std::mutex>& lock) {
    if (auto child = std::exchange(child_, nullptr)) {
        lock.unlock();
        child->end(pauses_.goodbye);
        lock.lock();
    }
}

void ServerProcess::startAgainLater(const std::string& why) {
    log_.logLine("[TovikVoice] The speech server " + running_.front() + " " + why +
                 "; it is started again after " + std::to_string(milliseconds(pause_).count()) + " ms");
    startAt_ = Clock::now() + milliseconds(pause_);
    pause_ = std::min(pause_ * 2, pauses_.longest);
}

} // namespace tovik

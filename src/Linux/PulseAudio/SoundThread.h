// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Linux/PulseAudio/PulseHandles.h"
#include "Platform/Clock.h"
#include "Platform/Subscription.h"

#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace tovik {

/// The one thread on which the sound server is talked to. No other thread ever calls the client library, so
/// nobody waits for it, whatever the server does.
class SoundThread {
public:
    SoundThread();
    /// Runs what was posted, then ends the thread.
    ~SoundThread();
    SoundThread(const SoundThread&) = delete;
    SoundThread& operator=(const SoundThread&) = delete;

    /// From any thread. In the order of the calls, never before this call returns.
    void post(std::function<void()> work);

    /// Sound thread only.
    [[nodiscard]] pa_mainloop_api& api();
    /// Sound thread only, its token too. Runs the work once.
    [[nodiscard]] Subscription after(Seconds delay, std::function<void()> work);
    /// Sound thread only, its token too, which is not dropped within the work. Runs it again and again,
    /// without allocating anything.
    [[nodiscard]] Subscription every(Seconds interval, std::function<void()> work);

private:
    void run();
    void runPosted();

    int wakeUp_ = -1;
    pulse::MainloopHandle loop_;
    std::mutex mutex_;
    std::vector<std::function<void()>> posted_;
    std::thread thread_;
};

} // namespace tovik

// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Engines/Host/Utterance.h"
#include "Platform/Result.h"

#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

namespace tovik {

/// Listens to one utterance after the other, on a thread of its own, and hands out the whole sound of each
/// once it has ended.
class SoundCollector {
public:
    /// Longer utterances are cut off there: 58 MB of sound.
    static constexpr double mostSeconds = 30 * 60;

    struct Sound {
        /// At 16 kHz.
        std::vector<std::int16_t> samples;
        bool isCutOff = false;
    };
    /// Called on the collector's thread.
    using Collected = std::function<void(Result<Sound>)>;

    SoundCollector();
    /// What is not collected by now never will be.
    ~SoundCollector();
    SoundCollector(const SoundCollector&) = delete;
    SoundCollector& operator=(const SoundCollector&) = delete;

    /// Any thread. The sound that comes before its turn waits in its request.
    void collect(std::shared_ptr<Utterance> utterance, Collected collected);

private:
    struct Job {
        std::shared_ptr<Utterance> utterance;
        Collected collected;
    };

    void run();
    [[nodiscard]] bool isLeaving();
    /// False when the collector is to end.
    [[nodiscard]] bool collect(Job& job);

    std::mutex mutex_;
    std::condition_variable wake_;
    std::deque<Job> jobs_;
    bool leaving_ = false;
    std::thread thread_;
};

} // namespace tovik

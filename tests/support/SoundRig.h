// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Linux/PulseAudio/PulseAudioConnection.h"
#include "Linux/PulseAudio/PulseAudioDevices.h"
#include "Linux/PulseAudio/PulseAudioEngine.h"
#include "support/ManualTime.h"
#include "support/MemoryUserDefaults.h"
#include "support/RecordingLog.h"
#include "support/SoundServer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace tovik::test {

/// Keeps the client library of every test program that includes this away from the user's files.
class IsolatedSoundClient : public testing::Environment {
public:
    void SetUp() override { isolateSoundClient(); }
};
inline testing::Environment* const isolatedSoundClient =
    testing::AddGlobalTestEnvironment(new IsolatedSoundClient);

/// Waits in real time until it holds; false after ten seconds.
inline bool eventually(const std::function<bool()>& holds) {
    const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (!holds()) {
        if (std::chrono::steady_clock::now() > limit) {
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    return true;
}

/// Distinct samples, none of them silence. Of the eight dialects no two share a sample.
inline std::vector<float> words(std::size_t frames, std::size_t dialect = 0) {
    std::vector<float> samples(frames);
    for (std::size_t frame = 0; frame < frames; ++frame) {
        samples[frame] = static_cast<float>(100 + dialect * 4000 + frame * 37 % 3900) / 32768.0F;
    }
    return samples;
}

/// A tap that remembers what it heard.
class Listener {
public:
    [[nodiscard]] AudioTap tap() {
        return [this](const AudioBuffer& buffer) {
            const std::lock_guard lock(mutex_);
            samples_.insert(samples_.end(), buffer.frames.begin(), buffer.frames.end());
            sizes_.push_back(buffer.frames.size());
            rate_ = buffer.sampleRate;
            heard_.notify_all();
        };
    }

    /// False when so many frames have not come within ten seconds.
    bool waitFor(std::size_t frames) {
        std::unique_lock lock(mutex_);
        return heard_.wait_for(lock, std::chrono::seconds(10), [&] { return samples_.size() >= frames; });
    }
    bool waitForMore(std::size_t frames) { return waitFor(samples().size() + frames); }

    [[nodiscard]] std::vector<float> samples() const {
        const std::lock_guard lock(mutex_);
        return samples_;
    }
    [[nodiscard]] std::vector<std::size_t> sizes() const {
        const std::lock_guard lock(mutex_);
        return sizes_;
    }
    [[nodiscard]] double rate() const {
        const std::lock_guard lock(mutex_);
        return rate_;
    }
    /// Whether these samples, none of them silence, were heard in their order. A server on a busy machine
    /// finds its virtual microphone a moment late and puts silence between them, or skips a cycle of some
    /// hundred frames, so silence does not count and two thirds of the pieces do.
    [[nodiscard]] bool heard(const std::vector<float>& words) const {
        constexpr std::ptrdiff_t piece = 60;
        const auto sound = withoutSilence();
        auto from = sound.begin();
        std::ptrdiff_t found = 0;
        std::ptrdiff_t pieces = 0;
        for (auto part = words.begin(); words.end() - part >= piece; part += piece) {
            const auto place =
                std::search(from, sound.end(), part, part + piece,
                            [](float sample, float word) { return std::abs(sample - word) < 1e-4F; });
            ++pieces;
            if (place != sound.end()) {
                from = place + piece;
                ++found;
            }
        }
        return found * 3 >= pieces * 2;
    }
    [[nodiscard]] std::vector<float> withoutSilence() const {
        auto sound = samples();
        std::erase_if(sound, [](float sample) { return std::abs(sample) < 1e-5F; });
        return sound;
    }
    void forget() {
        const std::lock_guard lock(mutex_);
        samples_.clear();
        sizes_.clear();
    }

private:
    mutable std::mutex mutex_;
    std::condition_variable heard_;
    std::vector<float> samples_;
    std::vector<std::size_t> sizes_;
    double rate_ = 0;
};

/// The adapter, joined to a server of the test's own.
struct SoundRig {
    explicit SoundRig(const SoundServer& server) : SoundRig(server.address()) {}
    explicit SoundRig(std::string address)
        : connection(log, std::move(address)),
          devices(connection, main, defaults),
          engine(connection, devices.directory()) {}

    [[nodiscard]] bool isReady() const {
        return connection.status().state == SoundServerStatus::State::ready &&
               devices.directory()->listing().known;
    }
    /// The server has answered, and names this as its default source.
    testing::AssertionResult waitForDefault(const std::string& name) {
        const bool came = eventually([&] {
            main.runPending();
            return devices.defaultDeviceId() == name;
        });
        if (came) {
            return testing::AssertionSuccess();
        }
        const auto listing = devices.directory()->listing();
        auto failure = testing::AssertionFailure();
        failure << "the server " << (listing.known ? "is known" : "is unknown") << ", its default is "
                << listing.defaultSource << ", its sources are";
        for (const auto& source : listing.sources) {
            failure << ' ' << source.name;
        }
        return failure;
    }
    [[nodiscard]] std::vector<std::string> names() const {
        std::vector<std::string> names;
        for (const auto& device : devices.devices()) {
            names.push_back(device.localizedName);
        }
        return names;
    }
    [[nodiscard]] std::size_t logged(const std::string& beginning) const {
        const auto lines = log.printed();
        return static_cast<std::size_t>(std::count_if(lines.begin(), lines.end(), [&](const auto& line) {
            return line.starts_with("[TovikVoice] " + beginning);
        }));
    }

    RecordingLog log;
    ManualTime main;
    MemoryUserDefaults defaults;
    PulseAudioConnection connection;
    PulseAudioDevices devices;
    PulseAudioEngine engine;
};

/// For the names of tests that hold on either kind of server.
inline const char* nameOf(SoundServer::Kind kind) {
    return kind == SoundServer::Kind::pulseAudio ? "PulseAudio" : "PipeWire";
}

} // namespace tovik::test

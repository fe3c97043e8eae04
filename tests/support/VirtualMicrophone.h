// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <mutex>
#include <span>
#include <string>
#include <thread>
#include <vector>

namespace tovik::test {

/// Sound in real time for a sound server that reads samples (signed 16 bit) from a named pipe. Hears silence
/// until it is told something; a second channel always hears a loud hum. As with a real microphone, what is
/// not listened to is gone.
class VirtualMicrophone {
public:
    /// The pipe must exist.
    VirtualMicrophone(const std::string& pipe, unsigned sampleRate, unsigned channelCount = 1);
    ~VirtualMicrophone();
    VirtualMicrophone(const VirtualMicrophone&) = delete;
    VirtualMicrophone& operator=(const VirtualMicrophone&) = delete;

    /// Begins to speak these samples (-1...1) within two milliseconds, after what is still being spoken.
    void speak(std::span<const float> samples);
    /// From now on every frame carries its own number, see numberOf(), instead of silence.
    void count();
    /// Waits for the end of what it was told to speak.
    void waitUntilSilent() const;

    /// Frames since the beginning, as real time has it.
    [[nodiscard]] std::uint64_t frames() const { return frames_.load(); }
    [[nodiscard]] unsigned sampleRate() const { return sampleRate_; }

    /// The counting repeats after so many frames.
    static constexpr std::uint64_t countedFrames = 60000;
    /// The number of the frame that such a sample belongs to, modulo countedFrames.
    [[nodiscard]] static std::uint64_t numberOf(float sample);

private:
    void run();
    [[nodiscard]] int unread() const;
    void speakNext(std::vector<std::int16_t>& chunk);

    const unsigned sampleRate_;
    const unsigned channelCount_;
    int pipe_;
    std::atomic<std::uint64_t> frames_ = 0;
    std::atomic<std::size_t> toSpeak_ = 0;
    std::atomic<bool> counting_ = false;
    std::atomic<bool> ending_ = false;
    std::mutex mutex_;
    std::deque<float> words_;
    std::thread thread_;
};

/// The samples of a RIFF WAVE file with one channel of signed 16 bit; empty when it cannot be read as that.
[[nodiscard]] std::vector<float> readWave(const std::string& path, unsigned& sampleRate);

} // namespace tovik::test

// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "support/VirtualMicrophone.h"

#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstring>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace tovik::test {

namespace {

using Time = std::chrono::steady_clock;

constexpr std::chrono::milliseconds kPace{2};
// Turns; a server that listens reads more often than this.
constexpr int kMostTurnsUnread = 75;
constexpr int kFirstNumber = -30000;
constexpr std::int16_t kHum = 16000;

} // namespace

VirtualMicrophone::VirtualMicrophone(const std::string& pipe, unsigned sampleRate, unsigned channelCount)
    : sampleRate_(sampleRate),
      channelCount_(channelCount),
      pipe_(open(pipe.c_str(), O_RDWR | O_NONBLOCK | O_CLOEXEC)) {
    if (pipe_ < 0) {
        throw std::runtime_error("cannot open " + pipe);
    }
    thread_ = std::thread([this] { run(); });
}

VirtualMicrophone::~VirtualMicrophone() {
    ending_ = true;
    thread_.join();
    close(pipe_);
}

void VirtualMicrophone::speak(std::span<const float> samples) {
    const std::lock_guard lock(mutex_);
    toSpeak_ += samples.size();
    words_.insert(words_.end(), samples.begin(), samples.end());
}

void VirtualMicrophone::count() {
    counting_ = true;
}

void VirtualMicrophone::waitUntilSilent() const {
    for (auto left = toSpeak_.load(); left != 0; left = toSpeak_.load()) {
        std::this_thread::sleep_for(kPace);
    }
}

std::uint64_t VirtualMicrophone::numberOf(float sample) {
    return static_cast<std::uint64_t>(std::lround(sample * 32768.0F) - kFirstNumber);
}

void VirtualMicrophone::run() {
    const auto start = Time::now();
    int turnsUnread = kMostTurnsUnread;
    int leftInPipe = 0;
    std::vector<std::int16_t> chunk;
    std::vector<std::int16_t> interleaved;
    std::vector<char> unheard(65536);
    while (!ending_) {
        const auto turn = Time::now();
        const auto due =
            static_cast<std::uint64_t>(std::chrono::duration<double>(turn - start).count() * sampleRate_);
        chunk.resize(due - frames_);
        speakNext(chunk);
        const int inPipe = unread();
        ++turnsUnread;
        if (inPipe < leftInPipe) {
            turnsUnread = 0;
        } else if (turnsUnread > kMostTurnsUnread && read(pipe_, unheard.data(), unheard.size()) < inPipe) {
            // Somebody was quicker.
            turnsUnread = 0;
        }
        interleaved.assign(chunk.size() * channelCount_, kHum);
        for (std::size_t frame = 0; frame < chunk.size(); ++frame) {
            interleaved[frame * channelCount_] = chunk[frame];
        }
        [[maybe_unused]] const auto written = write(pipe_, interleaved.data(), interleaved.size() * 2);
        leftInPipe = unread();
        frames_ = due;
        std::this_thread::sleep_until(turn + kPace);
    }
}

int VirtualMicrophone::unread() const {
    int bytes = 0;
    return ioctl(pipe_, FIONREAD, &bytes) == 0 ? bytes : 0;
}

void VirtualMicrophone::speakNext(std::vector<std::int16_t>& chunk) {
    auto number = frames_.load();
    for (auto& sample : chunk) {
        sample = counting_
                     ? static_cast<std::int16_t>(static_cast<int>(number % countedFrames) + kFirstNumber)
                     : std::int16_t{0};
        ++number;
    }
    const std::lock_guard lock(mutex_);
    const auto words = std::min(chunk.size(), words_.size());
    for (std::size_t index = 0; index < words; ++index) {
        chunk[index] =
            static_cast<std::int16_t>(std::lround(std::clamp(words_.front(), -1.0F, 1.0F) * 32767.0F));
        words_.pop_front();
    }
    toSpeak_ -= words;
}

std::vector<float> readWave(const std::string& path, unsigned& sampleRate) {
    std::ifstream file(path, std::ios::binary);
    const std::vector<char> bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    const auto number = [&bytes](std::size_t place, std::size_t size) {
        std::uint32_t value = 0;
        std::memcpy(&value, bytes.data() + place, size);
        return value;
    };
    std::vector<float> samples;
    if (bytes.size() < 12 || std::memcmp(bytes.data(), "RIFF", 4) != 0) {
        return samples;
    }
    for (std::size_t place = 12; place + 8 <= bytes.size();) {
        const std::size_t size = std::min<std::size_t>(number(place + 4, 4), bytes.size() - place - 8);
        if (std::memcmp(bytes.data() + place, "fmt ", 4) == 0 && size >= 16) {
            if (number(place + 8, 2) != 1 || number(place + 10, 2) != 1 || number(place + 22, 2) != 16) {
                return samples;
            }
            sampleRate = number(place + 12, 4);
        } else if (std::memcmp(bytes.data() + place, "data", 4) == 0) {
            for (std::size_t sample = 0; sample + 2 <= size; sample += 2) {
                samples.push_back(
                    static_cast<float>(static_cast<std::int16_t>(number(place + 8 + sample, 2))) / 32768.0F);
            }
        }
        place += 8 + size + size % 2;
    }
    return samples;
}

} // namespace tovik::test

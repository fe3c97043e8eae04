// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Engines/Host/VoiceEvidence.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace tovik {

namespace {

/// Takes the weight off the low end, where the rumble of a room is.
constexpr double kPreEmphasis = 0.95;
/// How alike the sound must be to itself one period later; 1 is the same.
constexpr double kAlike = 0.5;
/// How unlike it must be somewhere in between, or else it is not a period but slow.
constexpr double kUnlike = 0.25;
/// Which part of the highest peak another one must have to count as high.
constexpr double kAboutAsHigh = 0.9;
/// Mean square of a frame below which there is nothing: the noise of a 16-bit converter.
constexpr double kNothing = 4.0;
/// A few pure tones can be predicted from the samples before them this well, and no voice can.
constexpr double kTonePredictionGain = 1000;
constexpr std::size_t kToneOrder = 8;
/// From one frame to the next the pitch of a voice moves by an eighth at most.
constexpr std::size_t kPeriodsPerChange = 8;
/// By how much noise moves the pitch that is found in a hum, in samples.
constexpr std::size_t kJitter = 1;
/// How many decibels make a difference between two moments.
constexpr double kLiving = 0.5;

std::size_t difference(std::size_t a, std::size_t b) {
    return a > b ? a - b : b - a;
}

} // namespace

void VoiceEvidence::begin() {
    *this = VoiceEvidence();
}

void VoiceEvidence::process(std::span<const std::int16_t> samples) {
    for (const auto sample : samples) {
        const double emphasised = sample - kPreEmphasis * lastSample_;
        lastSample_ = sample;
        if (!hasHalf_) {
            half_ = emphasised;
            hasHalf_ = true;
            continue;
        }
        hasHalf_ = false;
        frame_.push_back(static_cast<float>((half_ + emphasised) / 2));
        if (frame_.size() == kFrame + kLongestPeriod) {
            processFrame();
            frame_.erase(frame_.begin(), frame_.begin() + kHop);
        }
    }
}

void VoiceEvidence::processFrame() {
    const auto now = present();
    const auto last = past_[(frames_ + kMoment - 1) % kMoment];
    const auto before = past_[frames_ % kMoment];
    past_[frames_ % kMoment] = now;
    ++frames_;
    countLoudness(now, before);

    if (now.period == 0) {
        row_ = 0;
    } else if (last.period != 0 && difference(now.period, last.period) * kPeriodsPerChange <= now.period) {
        ++row_;
    } else {
        row_ = 1;
    }
    if (row_ >= kRow) {
        ++pitchedFrames_;
        if (difference(now.period, before.period) > kJitter ||
            std::abs(now.decibels - before.decibels) > kLiving) {
            ++livingFrames_;
        }
    }
}

VoiceEvidence::Moment VoiceEvidence::present() {
    double energy = 1;
    for (std::size_t i = 0; i < kFrame; ++i) {
        energy += static_cast<double>(frame_[i]) * static_cast<double>(frame_[i]);
    }
    const auto period = pitchPeriod();
    tonalFrames_ += period != 0 ? 1 : 0;
    return {period != 0 && isPureTone() ? 0 : period, period != 0, 10 * std::log10(energy)};
}

void VoiceEvidence::countLoudness(const Moment& now, const Moment& before) {
    const auto loudness = std::min(static_cast<std::size_t>(now.decibels), kDecibels - 1);
    ++framesOfLoudness_[loudness];
    if (now.isTonal && before.isTonal && std::abs(now.decibels - before.decibels) <= kLiving) {
        ++steadyFrames_;
        ++steadyFramesOfLoudness_[loudness];
    }
}

bool VoiceEvidence::isSomethingAboveHum() const {
    if (steadyFrames_ == 0) {
        return false;
    }
    // The median: a vowel or two may be as steady as a hum for a moment.
    std::size_t hum = 0;
    for (int quieter = steadyFramesOfLoudness_[0]; 2 * quieter < steadyFrames_;) {
        quieter += steadyFramesOfLoudness_[++hum];
    }
    int above = 0;
    for (auto loudness = hum + kDecibelsAboveHum; loudness < kDecibels; ++loudness) {
        above += framesOfLoudness_[loudness];
    }
    return above >= kFramesAboveHum;
}

/// Between -1 and 1.
double VoiceEvidence::correlation(std::size_t lag) const {
    double product = 0;
    double here = 0;
    double there = 0;
    for (std::size_t i = 0; i < kFrame; ++i) {
        const double a = frame_[i];
        const double b = frame_[i + lag];
        product += a * b;
        here += a * a;
        there += b * b;
    }
    if (here < kNothing * kFrame || there < kNothing * kFrame) {
        return 0;
    }
    return product / std::sqrt(here * there);
}

/// 0 when the sound has no pitch.
std::size_t VoiceEvidence::pitchPeriod() const {
    std::array<double, kLongestPeriod + 1> alike{};
    for (auto lag = kShortestPeriod / 2; lag <= kLongestPeriod; ++lag) {
        alike[lag] = correlation(lag);
    }
    const double best = *std::max_element(alike.begin() + kShortestPeriod, alike.end());
    if (best < kAlike) {
        return 0;
    }
    // Two periods are as alike as one: the shortest of the peaks that are about as high is the pitch.
    auto period = kShortestPeriod;
    while (alike[period] < best * kAboutAsHigh) {
        ++period;
    }
    while (period < kLongestPeriod && alike[period + 1] > alike[period]) {
        ++period;
    }
    const double lowest = *std::min_element(alike.begin() + kShortestPeriod / 2, alike.begin() + period);
    return lowest > kUnlike ? 0 : period;
}

bool VoiceEvidence::isPureTone() const {
    std::array<double, kToneOrder + 1> products{};
    for (std::size_t lag = 0; lag <= kToneOrder; ++lag) {
        for (std::size_t i = lag; i < kFrame; ++i) {
            const auto window = [](std::size_t at) {
                return 0.5 - 0.5 * std::cos(2 * M_PI * static_cast<double>(at) / kFrame);
            };
            products[lag] += static_cast<double>(frame_[i]) * window(i) *
                             static_cast<double>(frame_[i - lag]) * window(i - lag);
        }
    }
    // Levinson's recursion: what is left of the energy after predicting each sample from those before it.
    std::array<double, kToneOrder + 1> predictor{1};
    double left = products[0];
    for (std::size_t order = 1; order <= kToneOrder && left > 0; ++order) {
        double reflection = 0;
        for (std::size_t i = 0; i < order; ++i) {
            reflection -= predictor[i] * products[order - i];
        }
        reflection /= left;
        const auto before = predictor;
        for (std::size_t i = 1; i <= order; ++i) {
            predictor[i] = before[i] + reflection * before[order - i];
        }
        left *= 1 - reflection * reflection;
    }
    return left * kTonePredictionGain < products[0];
}

} // namespace tovik

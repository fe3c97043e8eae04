// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace tovik {

/// Tells whether a human voice is in an utterance at all, so that no words are made of a fan, a keyboard or
/// a beep. Looks for what only voices have: for a while, the sound repeats itself at the pitch of a voice, is
/// richer than a few pure tones, and changes from one moment to the next as no machine's hum does.
class VoiceEvidence {
public:
    void begin();
    /// Samples at 16 kHz.
    void process(std::span<const std::int16_t> samples);
    /// What was heard since begin(): a voice.
    [[nodiscard]] bool heardVoice() const {
        return livingFrames_ >= kLivingFrames &&
               (livingFrames_ * kSteadyPerLiving >= pitchedFrames_ || isSomethingAboveHum());
    }

    /// What was heard since begin(): no voice, and for a while a hum, a whistle or beeps, and nothing that is
    /// louder. False for a whisper, which has no pitch.
    [[nodiscard]] bool heardOnlyTones() const {
        return !heardVoice() && tonalFrames_ >= kTonalFrames && !isSomethingAboveHum();
    }

private:
    /// Everything below is at 8 kHz, where the pitch is just as plain and four times cheaper to find.
    static constexpr std::size_t kFrame = 256;
    static constexpr std::size_t kHop = 80;
    /// Pitch periods from 400 down to 62 Hz.
    static constexpr std::size_t kShortestPeriod = 20;
    static constexpr std::size_t kLongestPeriod = 129;
    /// A frame counts from the third of a row with the same pitch on: noise repeats itself once by chance.
    static constexpr int kRow = 3;
    /// 60 ms: the vowel of the shortest words.
    static constexpr int kLivingFrames = 6;
    /// A hum that begins and ends has a few frames that change, among very many that do not; and so has a
    /// short word beside a hum, but those are louder than the hum.
    static constexpr int kSteadyPerLiving = 8;
    /// A fifth of a second; noise has the pitch of a tone for a moment now and then.
    static constexpr int kTonalFrames = 20;
    /// The shortest words are above a hum for longer than a click or two, each of which is in five frames.
    static constexpr int kFramesAboveHum = 12;
    /// By how much noise and beats lift a hum.
    static constexpr std::size_t kDecibelsAboveHum = 3;
    /// As many as 16 bits can give.
    static constexpr std::size_t kDecibels = 128;
    /// Frames between the two moments that are compared: 40 ms.
    static constexpr std::size_t kMoment = 4;

    struct Moment {
        /// 0 when the sound has no pitch, or is a few pure tones.
        std::size_t period = 0;
        bool isTonal = false;
        double decibels = 0;
    };

    void processFrame();
    void countLoudness(const Moment& now, const Moment& before);
    [[nodiscard]] bool isSomethingAboveHum() const;
    [[nodiscard]] Moment present();
    [[nodiscard]] std::size_t pitchPeriod() const;
    [[nodiscard]] bool isPureTone() const;
    [[nodiscard]] double correlation(std::size_t lag) const;

    double lastSample_ = 0;
    double half_ = 0;
    bool hasHalf_ = false;
    std::vector<float> frame_;
    std::array<Moment, kMoment> past_{};
    std::size_t frames_ = 0;
    int row_ = 0;
    int pitchedFrames_ = 0;
    int livingFrames_ = 0;
    int tonalFrames_ = 0;
    int steadyFrames_ = 0;
    /// How many frames were so loud, and of these the ones with a steady tone.
    std::array<int, kDecibels> framesOfLoudness_{};
    std::array<int, kDecibels> steadyFramesOfLoudness_{};
};

} // namespace tovik

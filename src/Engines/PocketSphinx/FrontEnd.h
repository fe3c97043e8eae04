// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

// The library's own front end and configuration.
struct fe_s;
struct cmd_ln_s;

namespace tovik {

/// What the recognizer hears of 10 ms of sound, before normalisation.
using Cepstrum = std::array<float, 13>;

/// Turns samples at 16 kHz into cepstra, with stationary noise taken off and pauses left out.
class FrontEnd {
public:
    /// Nothing when the configuration is not one of a 13-coefficient model.
    [[nodiscard]] static std::unique_ptr<FrontEnd> make(cmd_ln_s* configuration);
    ~FrontEnd();
    FrontEnd(const FrontEnd&) = delete;
    FrontEnd& operator=(const FrontEnd&) = delete;

    /// Forgets the sound and the noise of the utterance before.
    void begin();
    /// Appends the frames that the samples complete.
    void process(std::span<const std::int16_t> samples, std::vector<Cepstrum>& frames);
    /// Appends the last frame.
    void finish(std::vector<Cepstrum>& frames);
    /// Whether the last frame was speech.
    [[nodiscard]] bool inSpeech() const;

private:
    explicit FrontEnd(fe_s* frontEnd);

    fe_s* const frontEnd_;
};

/// Takes the mark of the microphone, the room and the speaker off an utterance: subtracts the mean cepstrum.
///
/// The mean of an utterance is only known at its end, but its text is wanted right then. So the first frames
/// are held back until there are enough of them for an estimate, blended with that of the utterance before.
/// As more come in, the estimate is made better in a few steps, and at each all frames are given out again
/// with the new one: a mean that moves within an utterance costs more words than one that is slightly off.
/// After the last step it stays.
class CepstralMean {
public:
    /// Frames of speech that are held back.
    static constexpr std::size_t framesForEstimate = 100;
    /// Frames of speech after which the estimate is made better. Most utterances are shorter than what a
    /// good mean takes, and their last words are worth a better one.
    static constexpr std::size_t framesForBetter = 200;
    /// Frames of speech after which the mean stays.
    static constexpr std::size_t framesForMean = 300;
    /// How many frames the mean of the utterance before counts for at most; it counts the less the more was
    /// heard of this one, and nothing once there are enough for an estimate.
    static constexpr double weightOfPast = 50;
    /// Utterances with fewer frames say too little to be remembered.
    static constexpr std::size_t framesToRemember = 100;

    struct Output {
        /// Whether the frames are those of the utterance from its first one on, again.
        bool startsOver = false;
        std::vector<Cepstrum> frames;
    };

    void begin();
    /// Replaces the output by what is ready.
    void process(std::span<const Cepstrum> frames, Output& output);
    /// Replaces the output by the rest.
    void finish(Output& output);

private:
    using Sum = std::array<double, Cepstrum{}.size()>;

    void take(const Cepstrum& frame, Output& output);
    void estimate();
    void giveAll(Output& output);
    void give(const Cepstrum& frame, Output& output) const;

    /// The frames so far, as long as they may be given out again.
    std::vector<Cepstrum> kept_;
    bool given_ = false;
    Sum sum_{};
    std::size_t count_ = 0;
    Sum mean_{};
    Sum past_{};
    bool hasPast_ = false;
};

} // namespace tovik

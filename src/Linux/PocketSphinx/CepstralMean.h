// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Linux/PocketSphinx/FrontEnd.h"

#include <cstddef>
#include <span>
#include <vector>

namespace tovik {

/// Takes the mark of the microphone, the room and the speaker off an utterance: subtracts the mean cepstrum.
///
/// The mean of an utterance is only known at its end, but its text is wanted right then. So the first frames
/// are held back until there are enough of them for an estimate; it is blended with that of the utterances
/// before, and then stays, because a mean that moves within an utterance costs more than one slightly off.
class CepstralMean {
public:
    /// Frames of speech that are held back.
    static constexpr std::size_t framesHeldBack = 150;
    /// How many frames the mean of the utterances before counts for.
    static constexpr double weightOfPast = 50;
    /// Utterances with fewer frames say too little to be remembered.
    static constexpr std::size_t framesToRemember = 100;

    void begin();
    /// Appends to `normalised` what is ready.
    void process(std::span<const Cepstrum> frames, std::vector<Cepstrum>& normalised);
    /// Appends the rest.
    void finish(std::vector<Cepstrum>& normalised);

private:
    using Sum = std::array<double, Cepstrum{}.size()>;

    void release(std::vector<Cepstrum>& normalised);
    void subtract(const Cepstrum& frame, std::vector<Cepstrum>& normalised) const;

    std::vector<Cepstrum> held_;
    bool settled_ = false;
    Sum sum_{};
    std::size_t count_ = 0;
    Sum mean_{};
    Sum past_{};
    bool hasPast_ = false;
};

} // namespace tovik

// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

// The library's own front end and configuration.
struct fe_s;
struct cmd_ln_s;

namespace tovik {

/// What the recogniser hears of 10 ms of sound, before normalisation.
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

} // namespace tovik

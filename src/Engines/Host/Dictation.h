// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Audio/RecognitionRequest.h"
#include "Engines/Host/ModelProcess.h"
#include "Engines/Host/Resampler.h"
#include "Platform/SpeechService.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tovik {

/// One utterance on its way to a process and back as text. Keeps its sound, so that it can be sent to another
/// process as well. One thread.
class Dictation {
public:
    Dictation(std::shared_ptr<RecognitionRequest> request, RecognitionHandler handler);

    /// Takes in the sound that is there, and waits so long for some.
    void hear(std::chrono::milliseconds atMost);
    /// Whether no more sound will come.
    [[nodiscard]] bool isComplete() const { return isComplete_; }
    /// Why its sound cannot be used, from the start.
    [[nodiscard]] const std::optional<Error>& trouble() const { return trouble_; }

    /// Asks the process for what it has not been asked for yet, as long as that keeps up.
    void feed(ModelProcess& process);
    /// Whether a process has heard of it.
    [[nodiscard]] bool isBegun() const { return isBegun_; }
    /// Begins anew, for another process. How many have failed with it, this one included.
    int rewind();

    /// An answer to anything but the end of the utterance.
    void takeHypothesis(const std::string& text);
    /// Each calls the handler; nothing may come after.
    void answer(const std::string& text);
    void answer(const Error& error);

private:
    const std::shared_ptr<RecognitionRequest> request_;
    const RecognitionHandler handler_;
    std::unique_ptr<Resampler> resampler_;
    std::optional<Error> trouble_;
    bool isComplete_ = false;
    /// All of it, at the engines' rate.
    std::vector<std::int16_t> samples_;
    std::size_t sent_ = 0;
    std::size_t sentAtLook_ = 0;
    bool isBegun_ = false;
    bool isFinished_ = false;
    int failures_ = 0;
    std::string partial_;
};

} // namespace tovik

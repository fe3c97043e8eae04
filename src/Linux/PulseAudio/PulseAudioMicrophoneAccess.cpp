// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Linux/PulseAudio/PulseAudioMicrophoneAccess.h"

#include <utility>

namespace tovik {

PulseAudioMicrophoneAccess::PulseAudioMicrophoneAccess(const PulseAudioConnection& connection,
                                                       std::shared_ptr<const SoundDirectory> directory)
    : connection_(connection),
      directory_(std::move(directory)) {}

PulseAudioMicrophoneAccess::Status PulseAudioMicrophoneAccess::status() const {
    const auto server = connection_.status();
    if (server.turnsAway(std::chrono::steady_clock::now())) {
        return denied;
    }
    const auto listing = directory_->listing();
    if (server.state != SoundServerStatus::State::ready || !listing.known) {
        return unknown;
    }
    return listing.microphones(false).empty() ? restricted : authorised;
}

std::string PulseAudioMicrophoneAccess::explanation() const {
    switch (status()) {
    case restricted:
        return "No microphone was found. Plug one in, or switch one on in the sound settings.";
    case denied:
        return "The sound server does not let this program record. Allow it in the privacy or sound "
               "settings.";
    case unknown:
        return "The sound server does not answer. Start PulseAudio or PipeWire, or log in again.";
    case authorised:
        break;
    }
    return {};
}

} // namespace tovik

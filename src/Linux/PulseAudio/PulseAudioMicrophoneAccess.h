// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Linux/PulseAudio/PulseAudioConnection.h"
#include "Linux/PulseAudio/SoundDirectory.h"

#include <memory>
#include <string>

namespace tovik {

/// Whether the user's sound server lets this program hear a microphone, as far as is known now. Any thread;
/// answers at once. Asks nothing of the user: outside a sandbox no desktop does.
class PulseAudioMicrophoneAccess {
public:
    /// The numbers of Authorization::microphoneStatus().
    enum Status { restricted = 1, denied = 2, authorised = 3, unknown = 4 };

    PulseAudioMicrophoneAccess(const PulseAudioConnection& connection,
                               std::shared_ptr<const SoundDirectory> directory);

    /// Restricted: there is no microphone. Denied: the server turned the program or its last recording away.
    /// Unknown: no server has answered.
    [[nodiscard]] Status status() const;

    /// What is wrong and how to mend it, in a sentence for the user; empty when nothing is.
    [[nodiscard]] std::string explanation() const;

private:
    const PulseAudioConnection& connection_;
    std::shared_ptr<const SoundDirectory> directory_;
};

} // namespace tovik

// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/MainQueue.h"
#include "Platform/Result.h"
#include "Platform/Subscription.h"

#include <optional>
#include <string>
#include <vector>

namespace tovik {

/// A microphone that the user can choose. Two records are the same device when their ids are equal,
/// whatever the names say: a device may be renamed while it is chosen.
struct AudioDevice {
    std::string id;
    /// As the sound system shows it to people.
    std::string name;
    bool isAvailable = true;

    bool operator==(const AudioDevice& other) const { return id == other.id; }
};

/// Is told what microphones there are and which one is chosen. Called on the main queue, never from within
/// the operation that changed something.
class AudioDeviceSelectionDelegate {
public:
    virtual ~AudioDeviceSelectionDelegate() = default;

    /// The whole list, in the sound system's order; also when nothing has changed.
    virtual void availableDevicesChanged(const std::vector<AudioDevice>& devices) = 0;
    /// Nothing when no device is known.
    virtual void currentDeviceChanged(const std::optional<AudioDevice>& device) = 0;
};

/// Records one dictation at a time. Main thread.
class Recorder {
public:
    virtual ~Recorder() = default;

    /// Does nothing while a dictation runs. Fails when the microphone cannot be opened.
    virtual Result<void> start() = 0;
    /// Ends the dictation; its text comes later. Harmless without one.
    virtual void stop() = 0;
    /// As stop(), and the user goes on speaking: what the microphone hears from here on belongs to the next
    /// start(), as after openAhead().
    virtual void stopAndListenOn() = 0;

    /// The user may have begun to speak, so long ago: what the microphone has heard since, as far as it was
    /// open, and what it hears from here on belongs to the next start().
    virtual void openAhead(Seconds ago) = 0;
    /// The user has not begun to speak after all. Harmless while a dictation runs.
    virtual void closeAhead() = 0;

    /// Whether a dictation runs, or one that has ended is still without the text or error that it ends in.
    [[nodiscard]] virtual bool isRecognizing() const = 0;
    /// Told on the main queue each time that isRecognizing() has become false; what the recognizer's thread
    /// queued with the last text has run by then.
    Observers<> recognized;
    /// For when the main queue runs no more: blocks until the recognizer has answered every dictation. False
    /// when that takes longer than the patience.
    [[nodiscard]] virtual bool waitUntilRecognized(Seconds patience) = 0;
};

} // namespace tovik

// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/MainQueue.h"
#include "Platform/Result.h"
#include "Platform/Subscription.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace tovik {

struct AudioFormat {
    /// Frames a second.
    double sampleRate = 0;
    unsigned channelCount = 0;

    bool operator==(const AudioFormat&) const = default;
};

/// One buffer of the microphone; valid during the tap's call only.
struct AudioBuffer {
    /// Samples of channel 0 in -1...1.
    std::span<const float> frames;
    double sampleRate = 0;
};

/// Receives every buffer on the engine's own thread. Must not block, and must not call the engine.
using AudioTap = std::function<void(const AudioBuffer&)>;

/// Records from the system's default input. All operations are for the main thread and return at once,
/// whatever the sound server does; after stop() or removeTap() has returned the tap is not called again.
class AudioEngine {
public:
    virtual ~AudioEngine() = default;

    /// Buffers carry this format. Before the sound server has answered, a plausible one.
    [[nodiscard]] virtual AudioFormat inputFormat() const = 0;
    [[nodiscard]] virtual bool isRunning() const = 0;

    /// One tap at a time. Buffers hold bufferSize frames, save the last one of a recording.
    virtual void installTap(std::size_t bufferSize, AudioTap tap) = 0;
    virtual void removeTap() = 0;

    /// Does ahead of start() whatever takes time.
    virtual void prepare() = 0;

    /// Fails when the microphone cannot be opened, as far as that is known at once. A microphone that goes
    /// away later ends the flow of buffers and isRunning().
    virtual Result<void> start() = 0;
    virtual void stop() = 0;

    /// Opens the microphone and keeps what it hears, without a tap: the user may have begun to speak. The
    /// next start() hands the kept sound to the tap first, without a gap. Harmless while running.
    virtual void openAhead() = 0;
    /// As stop(), but goes on listening, as after openAhead(), without a gap.
    virtual void listenOn() = 0;
    /// Forgets what was kept without a tap, save for the newest.
    virtual void keepOnly(Seconds newest) = 0;
    /// Drops what was kept and closes the microphone. Harmless otherwise.
    virtual void closeAhead() = 0;

    /// Hands the tap what has been captured up to now and does not fill a whole buffer yet, so that nothing
    /// spoken before the call is missing. On the calling thread, before returning.
    virtual void flush() = 0;
};

/// A microphone as the sound system lists it.
struct CaptureDevice {
    std::string uniqueId;
    std::string localizedName;

    bool operator==(const CaptureDevice&) const = default;
};

/// The microphones of this machine. Main thread; answers come from what the sound system last told, at once.
class CaptureDevices {
public:
    virtual ~CaptureDevices() = default;

    /// In the sound system's order.
    [[nodiscard]] virtual std::vector<CaptureDevice> devices() const = 0;
    [[nodiscard]] virtual std::optional<std::string> defaultDeviceId() const = 0;

    [[nodiscard]] virtual Subscription onConnected(std::function<void(const CaptureDevice&)> handler) = 0;
    [[nodiscard]] virtual Subscription onDisconnected(std::function<void(const CaptureDevice&)> handler) = 0;
};

/// Every device of the sound system, inputs and outputs alike. Main thread; answers at once.
class AudioHardware {
public:
    virtual ~AudioHardware() = default;

    /// Empty while there is no sound system. An error carries the sound system's numeric status.
    [[nodiscard]] virtual Result<std::vector<std::uint32_t>> deviceIds() const = 0;
    /// Nothing when the device is gone or has no name.
    [[nodiscard]] virtual std::optional<std::string> deviceName(std::uint32_t id) const = 0;
};

} // namespace tovik

// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Linux/PulseAudio/PulseAudioConnection.h"
#include "Linux/PulseAudio/SoundDirectory.h"
#include "Platform/AudioEngine.h"

#include <memory>

namespace tovik {

/// The microphone, through the user's sound server: records channel 0 of the server's default source at the
/// source's own rate, and follows when the default changes. The microphone is open only from start() or
/// openAhead() to stop() or closeAhead(), so that the desktop shows it in use only while the user speaks:
/// even a stream that is held back counts as one that listens. A recording whose last microphone goes away
/// ends.
///
/// A sample is within the tap's reach about ten milliseconds after it was heard. Destroy the engine before
/// the connection.
class PulseAudioEngine : public AudioEngine {
public:
    /// The directory must have been added to the connection.
    PulseAudioEngine(PulseAudioConnection& connection, std::shared_ptr<SoundDirectory> directory);
    ~PulseAudioEngine() override;

    [[nodiscard]] AudioFormat inputFormat() const override;
    [[nodiscard]] bool isRunning() const override;

    void installTap(std::size_t bufferSize, AudioTap tap) override;
    void removeTap() override;

    void prepare() override;
    Result<void> start() override;
    void stop() override;

    void openAhead() override;
    void listenOn() override;
    void keepOnly(Seconds newest) override;
    void closeAhead() override;

    void flush() override;

private:
    class Microphone;

    [[nodiscard]] Result<void> readiness() const;
    void open(bool ahead);
    void close();

    PulseAudioConnection& connection_;
    std::shared_ptr<SoundDirectory> directory_;
    /// Shared with the sound thread, which may be busy with it when the engine is destroyed.
    std::shared_ptr<Microphone> microphone_;
};

} // namespace tovik

// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Audio/MacAudioManager.h"
#include "Engines/SpeechEngines.h"
#include "FileAudioEngine.h"
#include "FileDesk.h"
#include "Linux/Storage/XdgFolders.h"
#include "OwnSettings.h"
#include "Speech/Text/FinalTextChain.h"
#include "Speech/Text/TranscriptionDictionary.h"
#include "WatchedSpeechService.h"

#include <optional>
#include <string>

namespace tovik {

/// What became of one recording.
struct Transcript {
    /// As it would be pasted.
    std::string text;
    /// The recognizer's own words.
    std::string recognized;
    /// Why there are none.
    std::optional<std::string> error;
    double audioSeconds = 0;
    /// From the end of the sound to the final text.
    double finalMilliseconds = 0;
    /// Processor time for a second of sound.
    double realTimeFactor = 0;
};

/// Dictates recordings: the program's own audio manager, recognizer and text rules, without a desktop and
/// with the settings as they are on the first day.
class Transcriber {
public:
    /// The settings by key, as in the user's own.
    Transcriber(FileAudioEngine::Pace pace, OwnSettings::Values settings, SystemLog& log);

    /// Gets the engine ready that the settings choose; why it cannot be used when that fails.
    [[nodiscard]] std::optional<std::string> prepare();

    /// Blocks for as long as it takes.
    [[nodiscard]] Transcript transcribe(SoundFile sound);

    /// How long prepare() took.
    [[nodiscard]] Seconds loadTime() const { return loadTime_; }

private:
    OwnSettings settings_;
    FinalTextChain chain_;
    TranscriptionDictionary dictionary_;
    NoCaptureDevices devices_;
    NoAudioHardware hardware_;
    WaitingMainQueue queue_;
    WallClock clock_;
    const XdgFolders folders_;
    SpeechEngines recognition_;
    WatchedSpeechService watched_;
    FileAudioEngine engine_;
    std::string cleaned_;
    Seconds loadTime_{};
    MacAudioManager manager_;
};

} // namespace tovik

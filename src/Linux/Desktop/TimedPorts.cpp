// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Linux/Desktop/TimedPorts.h"

namespace tovik {

Result<void> TimedKeyMonitor::start(Handlers handlers) {
    Handlers timed = handlers;
    timed.talkKeyTouched = [this, next = handlers.talkKeyTouched] {
        marks_.mark("key-down");
        next();
    };
    timed.flagsChanged = [this, next = handlers.flagsChanged](const FlagsChangedEvent& event) {
        if (event.keyCode == kFunctionKeyCode && (event.modifierFlags & kFunctionFlag) == 0) {
            marks_.mark("key-up");
        }
        next(event);
    };
    return monitor_.start(std::move(timed));
}

void TimedAudioEngine::stop() {
    if (engine_.isRunning()) {
        if (const auto heard = engine_.firstFrameCapturedAt()) {
            marks_.mark("first-sample", *heard);
        }
    }
    engine_.stop();
}

void TimedLog::printLine(std::string_view line) {
    if (line.starts_with("[TovikVoice] Raw Transcription: ")) {
        marks_.mark("final-text");
    } else if (line == "[TovikVoice] Posted paste events") {
        marks_.mark("pasted");
    }
    log_.printLine(line);
}

void TimedLog::logLine(std::string_view line) {
    if (line == "[TovikVoice] applicationDidFinishLaunching finished successfully") {
        marks_.mark("ready");
    }
    log_.logLine(line);
}

} // namespace tovik

// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Session/Farewell.h"

#include "Audio/Recorder.h"
#include "Session/TranscriptDelivery.h"
#include "Session/TranscriptInbox.h"

#include <utility>

namespace tovik {

namespace {

constexpr Seconds kLookInterval{0.05};
/// For the application that was pasted into: it asks for the text only now, and nobody answers after the end.
constexpr Seconds kTimeToFetchThePaste{0.3};

} // namespace

Farewell::Farewell(Collaborators collaborators) : with_(std::move(collaborators)) {}

void Farewell::quit(Seconds patience) {
    if (std::exchange(hasBegun_, true) || !isUnderWay()) {
        terminate();
        return;
    }
    with_.log.printLine("[TovikVoice] Quitting as soon as the last dictation has been delivered");
    with_.recorder.stop();
    looking_ = with_.queue.every(kLookInterval, [this] { look(); });
    ending_ = with_.queue.after(patience, [this] { giveUp(); });
}

bool Farewell::isUnderWay() const {
    return with_.recorder.isRecognising() || with_.delivery.isUnderWay();
}

void Farewell::look() {
    if (isUnderWay()) {
        return;
    }
    looking_.end();
    // A text that has just been recognised is on its way to the main thread, and is there before this.
    with_.queue.async(lifetime_.guard([this] {
        if (isUnderWay()) {
            looking_ = with_.queue.every(kLookInterval, [this] { look(); });
        } else {
            ending_ = with_.queue.after(kTimeToFetchThePaste, [this] { terminate(); });
        }
    }));
}

void Farewell::keepLastWords() {
    if (with_.recorder.isRecognising()) {
        with_.recorder.stop();
    }
    for (auto left = patienceOfSession; with_.recorder.isRecognising() && left > Seconds(0);
         left -= kLookInterval) {
        with_.clock.pause(kLookInterval);
    }
    if (with_.recorder.isRecognising()) {
        with_.log.printLine("[TovikVoice] The last dictation was not recognised in time");
    }
    while (const auto text = with_.inbox.take()) {
        if (text->empty()) {
            continue;
        }
        with_.delivery.keepWithoutPasting(*text);
        with_.log.printLine("[TovikVoice] The desktop is gone: the last dictation is kept in the history");
    }
}

void Farewell::giveUp() {
    with_.log.printLine(
        with_.recorder.isRecognising()
            ? "[TovikVoice] The last dictation was not recognised in time"
            : "[TovikVoice] The last dictation was not pasted in time: its text is in the history");
    terminate();
}

void Farewell::terminate() {
    looking_.end();
    ending_.end();
    with_.terminate();
}

} // namespace tovik

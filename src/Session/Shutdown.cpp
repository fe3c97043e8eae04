// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Session/Shutdown.h"

#include "Audio/Recorder.h"
#include "Platform/Platform.h"
#include "Session/TranscriptDelivery.h"

#include <utility>

namespace tovik {

namespace {

/// For the application that was pasted into: it asks for the text only now, and nobody answers after the end.
constexpr Seconds kTimeToFetchThePaste{0.3};

} // namespace

Shutdown::Shutdown(const Platform& platform, Recorder& recorder, TranscriptDelivery& delivery)
    : platform_(platform),
      recorder_(recorder),
      delivery_(delivery) {}

void Shutdown::quit(Seconds patience) {
    if (std::exchange(hasBegun_, true) || !isUnderWay()) {
        terminate();
        return;
    }
    platform_.log.printLine("[TovikVoice] Quitting as soon as the last dictation has been delivered");
    recognized_ = recorder_.recognized.add([this] { terminateOnceDelivered(); });
    delivered_ = delivery_.delivered.add([this] { terminateOnceDelivered(); });
    ending_ = platform_.mainQueue.after(patience, [this] { giveUp(); });
    recorder_.stop();
}

bool Shutdown::isUnderWay() const {
    return recorder_.isRecognizing() || delivery_.isUnderWay();
}

void Shutdown::terminateOnceDelivered() {
    if (!isUnderWay()) {
        ending_ = platform_.mainQueue.after(kTimeToFetchThePaste, [this] { terminate(); });
    }
}

void Shutdown::keepLastWords() {
    if (recorder_.isRecognizing()) {
        recorder_.stop();
        if (!recorder_.waitUntilRecognized(patienceOfSession)) {
            platform_.log.printLine("[TovikVoice] The last dictation was not recognized in time");
        }
    }
    for (auto kept = delivery_.keepWithoutPasting(); kept > 0; --kept) {
        platform_.log.printLine(
            "[TovikVoice] The desktop is gone: the last dictation is kept in the history");
    }
}

void Shutdown::giveUp() {
    platform_.log.printLine(
        recorder_.isRecognizing()
            ? "[TovikVoice] The last dictation was not recognized in time"
            : "[TovikVoice] The last dictation was not pasted in time: its text is in the history");
    terminate();
}

void Shutdown::terminate() {
    recognized_.end();
    delivered_.end();
    ending_.end();
    // One that waits for the paste of another, or was received this very moment, would be lost.
    delivery_.keepWithoutPasting();
    platform_.terminate();
}

} // namespace tovik

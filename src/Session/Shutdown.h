// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/MainQueue.h"
#include "Platform/Subscription.h"

namespace tovik {

class Recorder;
class TranscriptDelivery;
struct Platform;

/// Ends the program without losing what was spoken last: a recording that runs is ended, and a text that is
/// still on its way is delivered first, if it comes soon. Main thread.
class Shutdown {
public:
    /// How long the text of a dictation is waited for when the session ends, which kills programs that take
    /// longer, and when the user quits.
    static constexpr Seconds patienceOfSession{3.0};
    static constexpr Seconds patienceOfUser{10.0};

    Shutdown(const Platform& platform, Recorder& recorder, TranscriptDelivery& delivery);

    /// Terminates now when nothing is under way, or when it was asked for before; otherwise as soon as the
    /// text has been delivered, and at the end of the patience whatever comes.
    void quit(Seconds patience);

    /// The desktop is gone and the process about to end, without the event loop: puts what is still being
    /// recognized into the history, in so far as its text comes in time. Blocks that long.
    void keepLastWords();

private:
    [[nodiscard]] bool isUnderWay() const;
    void terminateOnceDelivered();
    void giveUp();
    void terminate();

    const Platform& platform_;
    Recorder& recorder_;
    TranscriptDelivery& delivery_;
    bool hasBegun_ = false;
    Subscription recognized_;
    Subscription delivered_;
    Subscription ending_;
};

} // namespace tovik

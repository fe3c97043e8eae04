// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Audio/Recorder.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace tovik::test {

/// Records nothing, and remembers what it was asked to do.
class FakeRecorder : public Recorder {
public:
    Result<void> start() override {
        note("start");
        if (failure) {
            return *failure;
        }
        return {};
    }
    void stop() override { note("stop"); }
    void stopAndListenOn() override { note("stopAndListenOn"); }
    [[nodiscard]] bool isRecognizing() const override { return recognizes; }
    [[nodiscard]] bool waitUntilRecognized(Seconds patience) override {
        waits.push_back(patience);
        return !recognizes;
    }
    void openAhead(Seconds) override { note("openAhead"); }
    void closeAhead() override { note("closeAhead"); }

    /// What the next starts come to.
    std::optional<Error> failure;
    bool recognizes = false;
    /// Every dictation has its text, or its error.
    void finishRecognizing() {
        recognizes = false;
        recognized.tell();
    }
    /// How long waitUntilRecognized() would have waited at most, call by call.
    std::vector<Seconds> waits;
    /// start, stop, stopAndListenOn, openAhead and closeAhead calls by name, in order.
    std::vector<std::string> calls;
    /// Called with each of them as it comes.
    std::function<void(const std::string&)> onCall;

private:
    void note(const std::string& call) {
        calls.push_back(call);
        if (onCall) {
            onCall(call);
        }
    }
};

} // namespace tovik::test

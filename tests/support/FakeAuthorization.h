// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/Authorization.h"

#include <utility>
#include <vector>

namespace tovik::test {

/// A desktop that allows what a test says. Everything is granted and installed until told otherwise.
class FakeAuthorization : public Authorization {
public:
    [[nodiscard]] MicrophoneStatus microphoneStatus() const override { return microphoneStatus_; }
    void requestMicrophoneAccess(std::function<void(bool)> answer) override;
    [[nodiscard]] SpeechStatus speechStatus() const override { return speechStatus_; }
    void requestSpeechAuthorization(std::function<void(SpeechStatus)> answer) override;
    [[nodiscard]] bool isProcessTrusted() const override { return trusted_; }
    bool isProcessTrustedWithPrompt() override;
    [[nodiscard]] std::string bundlePath() const override { return bundlePath_; }
    [[nodiscard]] std::string homeDirectory() const override { return homeDirectory_; }

    /// The platform's numbers.
    void setMicrophoneStatus(int status) { microphoneStatus_ = MicrophoneStatus{status}; }
    void setSpeechStatus(int status) { speechStatus_ = SpeechStatus{status}; }
    void setTrusted(bool trusted) { trusted_ = trusted; }
    void setBundlePath(std::string path) { bundlePath_ = std::move(path); }
    void setHomeDirectory(std::string path) { homeDirectory_ = std::move(path); }

    /// The user answers the oldest open request, which also sets the status: 3, or 2 for denied.
    void answerMicrophoneRequest(bool granted);
    /// The user answers the oldest open request, which also sets the status.
    void answerSpeechRequest(int status);

    [[nodiscard]] std::size_t openMicrophoneRequests() const { return microphoneRequests_.size(); }
    [[nodiscard]] std::size_t openSpeechRequests() const { return speechRequests_.size(); }
    /// How often the desktop was to tell the user how to grant trust.
    [[nodiscard]] int trustPrompts() const { return trustPrompts_; }

private:
    MicrophoneStatus microphoneStatus_ = MicrophoneStatus::authorized;
    SpeechStatus speechStatus_ = SpeechStatus::authorized;
    bool trusted_ = true;
    int trustPrompts_ = 0;
    std::string bundlePath_ = "/Applications/Tovik Record.app";
    std::string homeDirectory_ = "/Users/ada";
    std::vector<std::function<void(bool)>> microphoneRequests_;
    std::vector<std::function<void(SpeechStatus)>> speechRequests_;
};

} // namespace tovik::test

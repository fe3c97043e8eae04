// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "support/FakeAuthorization.h"

namespace tovik::test {

namespace {

template <typename Answer>
Answer takeOldest(std::vector<Answer>& requests) {
    auto answer = std::move(requests.at(0));
    requests.erase(requests.begin());
    return answer;
}

} // namespace

void FakeAuthorization::requestMicrophoneAccess(std::function<void(bool)> answer) {
    microphoneRequests_.push_back(std::move(answer));
}

void FakeAuthorization::requestSpeechAuthorization(std::function<void(SpeechStatus)> answer) {
    speechRequests_.push_back(std::move(answer));
}

bool FakeAuthorization::isProcessTrustedWithPrompt() {
    ++trustPrompts_;
    return trusted_;
}

void FakeAuthorization::answerMicrophoneRequest(bool granted) {
    const auto answer = takeOldest(microphoneRequests_);
    microphoneStatus_ = granted ? MicrophoneStatus::authorized : MicrophoneStatus::denied;
    answer(granted);
}

void FakeAuthorization::answerSpeechRequest(int status) {
    const auto answer = takeOldest(speechRequests_);
    setSpeechStatus(status);
    answer(speechStatus_);
}

} // namespace tovik::test

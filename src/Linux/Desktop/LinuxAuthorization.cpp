// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Linux/Desktop/LinuxAuthorization.h"

#include <utility>

namespace tovik {

namespace {

constexpr int kAllowButton = 0;
constexpr int kDoNotAllowButton = 1;
constexpr int kCheckAgainButton = 0;

} // namespace

LinuxAuthorization::LinuxAuthorization(MainQueue& queue, Alert& alert, Answers answers)
    : queue_(queue),
      alert_(alert),
      answers_(std::move(answers)),
      microphone_{"Tovik Record cannot hear you", answers_.microphoneExplanation, {}},
      speech_{"Tovik Record cannot understand speech yet", answers_.speechExplanation, {}},
      keyboard_{"Tovik Record cannot use the keyboard here", answers_.keyboardExplanation, {}} {}

SpeechStatus LinuxAuthorization::speechStatus() const {
    if (needsSpeechConsent()) {
        return SpeechStatus::notDetermined;
    }
    if (answers_.isSpeechRefused && answers_.isSpeechRefused()) {
        return SpeechStatus::denied;
    }
    return answers_.speechExplanation().empty() ? SpeechStatus::authorized : SpeechStatus::notDetermined;
}

bool LinuxAuthorization::needsSpeechConsent() const {
    return answers_.needsSpeechConsent && answers_.needsSpeechConsent();
}

void LinuxAuthorization::askSpeechConsent() {
    const int button = alert_.runModal("May Tovik Record send your speech to a server?",
                                       answers_.speechConsentText(), {"Allow", "Don't Allow"});
    if (button == kAllowButton || button == kDoNotAllowButton) {
        answers_.answerSpeechConsent(button == kAllowButton);
    }
}

bool LinuxAuthorization::isProcessTrusted() const {
    return answers_.isKeyboardUsable();
}

void LinuxAuthorization::requestMicrophoneAccess(std::function<void(bool granted)> answer) {
    if (!answers_.askForMicrophone) {
        explainMicrophone(std::move(answer));
        return;
    }
    answers_.askForMicrophone(lifetime_.guard([this, answer = std::move(answer)](bool isRefused) {
        if (isRefused) {
            answer(false);
        } else {
            explainMicrophone(answer);
        }
    }));
}

void LinuxAuthorization::explainMicrophone(std::function<void(bool granted)> answer) {
    ask(microphone_,
        [this, answer = std::move(answer)] { answer(microphoneStatus() == MicrophoneStatus::authorized); });
}

void LinuxAuthorization::requestSpeechAuthorization(std::function<void(SpeechStatus status)> answer) {
    ask(speech_, [this, answer = std::move(answer)] { answer(speechStatus()); });
}

bool LinuxAuthorization::isProcessTrustedWithPrompt() {
    const bool trusted = isProcessTrusted();
    if (!trusted) {
        ask(keyboard_, [] {});
    }
    return trusted;
}

void LinuxAuthorization::ask(Question& question, std::function<void()> whenAnswered) {
    question.waiting.push_back(std::move(whenAnswered));
    // Whoever asks while the question is on its way, or on screen, hears the same answer.
    if (question.waiting.size() == 1) {
        queue_.async(lifetime_.guard([this, &question] { show(question); }));
    }
}

void LinuxAuthorization::show(Question& question) {
    if (&question == &speech_ && needsSpeechConsent()) {
        askSpeechConsent();
        // What he does not allow needs no explanation.
        if (speechStatus() != SpeechStatus::notDetermined || needsSpeechConsent()) {
            for (const auto& whenAnswered : std::exchange(question.waiting, {})) {
                whenAnswered();
            }
            return;
        }
    }
    for (auto wrong = question.explanation(); !wrong.empty(); wrong = question.explanation()) {
        if (alert_.runModal(question.message, wrong, {"Check Again", "Close"}) != kCheckAgainButton) {
            break;
        }
    }
    for (const auto& whenAnswered : std::exchange(question.waiting, {})) {
        whenAnswered();
    }
}

} // namespace tovik

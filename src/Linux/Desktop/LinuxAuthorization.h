// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/Authorization.h"
#include "Platform/MainQueue.h"
#include "Platform/Subscription.h"
#include "Platform/UserInterface.h"

#include <functional>
#include <string>
#include <vector>

namespace tovik {

/// What a Linux desktop lets this program do, put together from what each mechanism says of itself.
///
/// Outside of sandboxes no desktop asks the user on a program's behalf. What is missing is a package, a
/// device or another kind of session, so a request says in a question of its own what is wrong and how to
/// mend it, and looks again when the user says that it is done. Requests return at once; their questions come
/// on the main queue.
class LinuxAuthorization : public Authorization {
public:
    /// Who knows, on the main thread and at once. Explanations are sentences for the user: what is wrong and
    /// how to mend it; empty when nothing is.
    struct Answers {
        std::function<MicrophoneStatus()> microphoneStatus;
        std::function<std::string()> microphoneExplanation;
        /// Asks whoever decides about the microphone, and calls back on the main thread; isRefused: the user
        /// has just said no. None where nobody could be asked.
        std::function<void(std::function<void(bool isRefused)>)> askForMicrophone = nullptr;
        /// Empty as long as there is an engine with a model.
        std::function<std::string()> speechExplanation;
        /// Whether the user still has to say whether speech may leave this machine, what he is asked, what he
        /// said, and whether there is no recognition because he said no. None where speech never leaves it.
        std::function<bool()> needsSpeechConsent = nullptr;
        std::function<std::string()> speechConsentText = nullptr;
        std::function<void(bool isAllowed)> answerSpeechConsent = nullptr;
        std::function<bool()> isSpeechRefused = nullptr;
        /// Whether this session shows the talk key and lets keys be pressed.
        std::function<bool()> isKeyboardUsable;
        std::function<std::string()> keyboardExplanation;

        /// Of the running program's file.
        std::string executablePath;
        std::string homeDirectory;
    };

    /// Queue and alert outlive the authorization.
    LinuxAuthorization(MainQueue& queue, Alert& alert, Answers answers);

    [[nodiscard]] MicrophoneStatus microphoneStatus() const override { return answers_.microphoneStatus(); }
    /// Answers with how it stands once those have been asked who decide, and after the question when that is
    /// not well. A user who has just said no needs no explanation.
    void requestMicrophoneAccess(std::function<void(bool granted)> answer) override;

    /// Not determined until there is an engine with a model, and as long as the user has not said whether a
    /// server may hear; denied when he said no and there is no other engine.
    [[nodiscard]] SpeechStatus speechStatus() const override;
    /// The question offers to look again, for as long as the user wishes.
    void requestSpeechAuthorization(std::function<void(SpeechStatus status)> answer) override;

    /// Asks whether speech may leave this machine, at once; closing the question answers nothing.
    void askSpeechConsent();

    [[nodiscard]] bool isProcessTrusted() const override;
    bool isProcessTrustedWithPrompt() override;

    /// The program's own file, which is all there is of a bundle.
    [[nodiscard]] std::string bundlePath() const override { return answers_.executablePath; }
    [[nodiscard]] std::string homeDirectory() const override { return answers_.homeDirectory; }

private:
    /// One kind of thing that can be missing, and who waits to hear how it ended.
    struct Question {
        std::string message;
        std::function<std::string()> explanation;
        std::vector<std::function<void()>> waiting;
    };

    [[nodiscard]] bool needsSpeechConsent() const;
    void explainMicrophone(std::function<void(bool granted)> answer);
    void ask(Question& question, std::function<void()> whenAnswered);
    void show(Question& question);

    MainQueue& queue_;
    Alert& alert_;
    const Answers answers_;
    Question microphone_;
    Question speech_;
    Question keyboard_;
    Lifetime lifetime_;
};

} // namespace tovik

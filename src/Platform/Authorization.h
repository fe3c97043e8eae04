// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <string>

namespace tovik {

/// Whether the program may use the microphone. The numbers are the platform's own; any other means unknown.
enum class MicrophoneStatus { notDetermined = 0, restricted = 1, denied = 2, authorized = 3 };

/// Whether it may recognise speech, likewise; the platform counts the two kinds of refusal the other way
/// round.
enum class SpeechStatus { notDetermined = 0, denied = 1, restricted = 2, authorized = 3 };

/// What the desktop lets this program do. Main thread.
class Authorization {
public:
    virtual ~Authorization() = default;

    [[nodiscard]] virtual MicrophoneStatus microphoneStatus() const = 0;
    /// The answer may come on any thread.
    virtual void requestMicrophoneAccess(std::function<void(bool granted)> answer) = 0;

    [[nodiscard]] virtual SpeechStatus speechStatus() const = 0;
    /// Answers with the status that holds then. The answer may come on any thread.
    virtual void requestSpeechAuthorization(std::function<void(SpeechStatus status)> answer) = 0;

    /// Whether the program may see the talk key and press keys for the user.
    [[nodiscard]] virtual bool isProcessTrusted() const = 0;
    /// The same answer, and the desktop tells the user how to grant it.
    virtual bool isProcessTrustedWithPrompt() = 0;

    /// Where the running program is installed.
    [[nodiscard]] virtual std::string bundlePath() const = 0;
    /// Without a slash at its end.
    [[nodiscard]] virtual std::string homeDirectory() const = 0;
};

} // namespace tovik

// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <string>

namespace tovik {

/// What the desktop lets this program do. Main thread. Status values are the platform's own numbers.
class Authorization {
public:
    virtual ~Authorization() = default;

    /// 0 not determined, 1 restricted, 2 denied, 3 authorised; anything else is unknown.
    [[nodiscard]] virtual int microphoneStatus() const = 0;
    /// The answer may come on any thread.
    virtual void requestMicrophoneAccess(std::function<void(bool granted)> answer) = 0;

    /// 0 not determined, 1 denied, 2 restricted, 3 authorised; anything else is unknown.
    [[nodiscard]] virtual int speechStatus() const = 0;
    /// Answers with the status that holds then. The answer may come on any thread.
    virtual void requestSpeechAuthorization(std::function<void(int status)> answer) = 0;

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

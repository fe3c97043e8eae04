// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/Result.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tovik {

class RecognitionRequest;

/// A hypothesis of what was said.
struct RecognitionResult {
    /// The best transcription in its formatted form.
    std::string formattedString;
    bool isFinal = false;

    bool operator==(const RecognitionResult&) const = default;
};

/// Receives hypotheses and errors on the recognizer's own thread. Exactly one call ends a task: the final
/// result, or an error without a result.
using RecognitionHandler =
    std::function<void(const std::optional<RecognitionResult>& result, const std::optional<Error>& error)>;

/// One utterance being recognized. Dropping it neither cancels it nor silences its handler.
class RecognitionTask {
public:
    virtual ~RecognitionTask() = default;

    /// No more audio is wanted; the final result still comes through the handler.
    virtual void finish() = 0;
};

/// Recognizes one language. Main thread; nothing here blocks.
class SpeechRecognizer {
public:
    virtual ~SpeechRecognizer() = default;

    [[nodiscard]] virtual bool isAvailable() const = 0;

    /// Reads the request's audio from its first frame on, also what was appended before this call or before
    /// the recognizer was ready.
    [[nodiscard]] virtual std::unique_ptr<RecognitionTask>
    startTask(std::shared_ptr<RecognitionRequest> request, RecognitionHandler handler) = 0;
};

/// Where recognizers come from. Main thread; nothing here blocks.
class SpeechService {
public:
    virtual ~SpeechService() = default;

    /// Nothing when no recognizer can be made for the locale (such as "en-US").
    [[nodiscard]] virtual std::shared_ptr<SpeechRecognizer>
    makeRecognizer(const std::string& localeIdentifier) = 0;

    /// The identifier of the user's own locale.
    [[nodiscard]] virtual std::string currentLocaleIdentifier() const = 0;

    /// The words and phrases that the coming requests will favour, so that a recognizer may learn them ahead
    /// of the first. What a request itself says holds; again is harmless.
    virtual void prepare(const std::vector<std::string>& contextualStrings) = 0;
};

} // namespace tovik

// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/Result.h"

#include <string>
#include <utility>

namespace tovik {

/// The numbers of the errors whose domain is "SpeechRecognition".
enum class RecognitionCode {
    noSpeech = 1,
    noModel = 2,
    failed = 3,
    notAnswering = 4,
    ended = 5,
};

[[nodiscard]] inline Error recognitionError(RecognitionCode code, std::string description) {
    return {"SpeechRecognition", static_cast<int>(code), std::move(description)};
}

} // namespace tovik

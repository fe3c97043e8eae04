// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Engines/Server/HttpResponse.h"
#include "Engines/Server/ServerSettings.h"
#include "Platform/Result.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace tovik {

/// What the server is to recognise.
struct Transcription {
    /// At 16 kHz.
    std::vector<std::int16_t> samples;
    /// Such as "en"; nothing leaves it to the server.
    std::optional<std::string> language;
    std::vector<std::string> contextualStrings;
};

inline constexpr int kTranscriptionRate = 16000;

/// A whole HTTP request that uploads the sound. key: empty for none.
[[nodiscard]] Result<std::string> transcriptionRequest(const ServerSettings& settings, const std::string& key,
                                                       const Transcription& transcription);

/// A whole HTTP request that asks for nothing in particular: whether the server is there and lets us in.
[[nodiscard]] std::string healthRequest(const ServerSettings& settings, const std::string& key);

/// The text in a server's answer; empty when nothing was said; nothing when it is no answer to such a
/// request.
[[nodiscard]] std::optional<std::string> transcribedText(const HttpResponse& response);

/// As many of the terms as a model takes in, the user's own first, which come last.
[[nodiscard]] std::string promptOf(const std::vector<std::string>& contextualStrings);

} // namespace tovik

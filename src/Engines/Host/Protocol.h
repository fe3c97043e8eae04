// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/Result.h"

#include <cstdint>
#include <cstring>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tovik {

/// What this program and tovik-engine say to each other, over the standard input and output of the latter.
///
/// Both sides write frames: the length of the content (four bytes, of this machine's order), one letter that
/// says what it is, the content. The engine speaks first: `hello` with its version, then, once its model is
/// loaded, `done`, or `failed` and its end. From then on each request is answered by one `done` or `failed`,
/// in their order; so an engine that owes an answer and does not give one is hanging. An utterance is
/// `begin`, any number of `sound` and `hypothesis`, and `finish`; `learn` comes between utterances. What goes
/// wrong in an utterance is the answer to its `finish`. The end of its input is the end of the engine.
inline constexpr std::string_view kProtocolVersion = "1";

/// Nobody says more at once; a longer frame means that the other side has lost its mind.
inline constexpr std::size_t kLongestFrame = std::size_t{4} << 20;

/// Of samples.
inline constexpr double kEngineRate = 16000;

enum class Frame : char {
    /// Words and phrases that the next utterances will favour; strings.
    learn = 'L',
    /// An utterance with words and phrases of its own; strings.
    begin = 'B',
    /// The next samples: 16 bits each, kEngineRate, one channel.
    sound = 'S',
    /// Asks what was heard so far; the answer is text.
    hypothesis = 'H',
    /// The end of the utterance; the answer is its text.
    finish = 'F',

    hello = 'V',
    done = 'D',
    /// A code in one digit, then a sentence.
    failed = 'E',
};

inline void appendFrame(std::string& bytes, Frame kind, std::string_view content) {
    const auto length = static_cast<std::uint32_t>(content.size());
    bytes.append(reinterpret_cast<const char*>(&length), sizeof length);
    bytes += static_cast<char>(kind);
    bytes += content;
}

/// Cuts what comes in from the other side into frames.
class FrameReader {
public:
    /// Where to put the bytes that came.
    [[nodiscard]] std::string& bytes() { return bytes_; }

    /// The next whole frame; nothing as long as there is none.
    [[nodiscard]] std::optional<std::pair<Frame, std::string>> next() {
        if (bytes_.size() < kHead || isTooLong() || bytes_.size() < kHead + length()) {
            return std::nullopt;
        }
        std::pair frame(static_cast<Frame>(bytes_[kHead - 1]), bytes_.substr(kHead, length()));
        bytes_.erase(0, kHead + frame.second.size());
        return frame;
    }

    /// Whether what comes next cannot be a frame.
    [[nodiscard]] bool isTooLong() const { return bytes_.size() >= kHead && length() > kLongestFrame; }

private:
    static constexpr std::size_t kHead = sizeof(std::uint32_t) + 1;

    [[nodiscard]] std::size_t length() const {
        std::uint32_t length = 0;
        std::memcpy(&length, bytes_.data(), sizeof length);
        return length;
    }

    std::string bytes_;
};

/// Those that fit into a frame, each with a zero byte behind it.
[[nodiscard]] inline std::string packStrings(const std::vector<std::string>& strings) {
    std::string packed;
    for (const auto& string : strings) {
        if (packed.size() + string.size() < kLongestFrame) {
            packed += string;
            packed += '\0';
        }
    }
    return packed;
}

[[nodiscard]] inline std::vector<std::string> unpackStrings(std::string_view packed) {
    std::vector<std::string> strings;
    for (auto end = packed.find('\0'); end != std::string_view::npos; end = packed.find('\0')) {
        strings.emplace_back(packed.substr(0, end));
        packed.remove_prefix(end + 1);
    }
    return strings;
}

[[nodiscard]] inline std::string_view packSamples(std::span<const std::int16_t> samples) {
    return {reinterpret_cast<const char*>(samples.data()), samples.size_bytes()};
}

[[nodiscard]] inline std::vector<std::int16_t> unpackSamples(std::string_view packed) {
    std::vector<std::int16_t> samples(packed.size() / sizeof(std::int16_t));
    std::memcpy(samples.data(), packed.data(), samples.size() * sizeof(std::int16_t));
    return samples;
}

[[nodiscard]] inline std::string packError(const Error& error) {
    return std::to_string(error.code).substr(0, 1) + error.description;
}

[[nodiscard]] inline Error unpackError(std::string_view packed) {
    return packed.empty() ? Error{"SpeechRecognition", 0, ""}
                          : Error{"SpeechRecognition", packed.front() - '0', std::string(packed.substr(1))};
}

} // namespace tovik

// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/SpeechService.h"

#include <functional>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

namespace tovik::test {

/// A speech service that serves "en-US" and no language of Atlantis, and somebody who speaks.
class SpeechWorld {
public:
    virtual ~SpeechWorld() = default;

    [[nodiscard]] virtual SpeechService& service() = 0;
    /// A sentence that the service recognizes: its sound and its text.
    [[nodiscard]] virtual const std::vector<float>& sentence() const = 0;
    [[nodiscard]] virtual std::string text() const = 0;
    /// Whether the service tells what it hears before the end.
    [[nodiscard]] virtual bool givesPartialResults() const { return true; }
    /// Frames a second of the sound.
    [[nodiscard]] virtual double sampleRate() const = 0;
};

struct SpeechWorldKind {
    std::string name;
    std::function<std::unique_ptr<SpeechWorld>()> make;

    friend void PrintTo(const SpeechWorldKind& kind, std::ostream* out) { *out << kind.name; }
};

} // namespace tovik::test

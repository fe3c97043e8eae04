// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/AudioEngine.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace tovik::test {

/// An engine, and the room in which its microphone stands.
class AudioEngineWorld {
public:
    virtual ~AudioEngineWorld() = default;

    [[nodiscard]] virtual AudioEngine& engine() = 0;

    /// Somebody speaks; returns when the microphone has heard it, if it was listening. A microphone may hear
    /// silence before and after.
    virtual void hear(const std::vector<float>& words) = 0;
    /// Returns when an engine that opens its microphone has done so.
    virtual void waitUntilOpen() = 0;
    /// Ends the microphone under the engine's feet, and gives it back.
    virtual void loseMicrophone() = 0;
    virtual void returnMicrophone() = 0;
    /// Lets what is on its way arrive.
    virtual void settle() = 0;
};

struct AudioEngineWorldKind {
    std::string name;
    std::function<std::unique_ptr<AudioEngineWorld>()> make;
};

} // namespace tovik::test

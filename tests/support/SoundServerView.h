// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Linux/PulseAudio/PulseAudioConnection.h"

#include <functional>
#include <memory>
#include <string>

namespace tovik::test {

/// One lasting connection to a sound server, to look at it without disturbing it: under PipeWire a client
/// that connects at the moment of a change can make the other clients miss it.
class SoundServerView {
public:
    /// Throws when the server does not answer within ten seconds.
    explicit SoundServerView(const std::string& address);
    ~SoundServerView();
    SoundServerView(const SoundServerView&) = delete;
    SoundServerView& operator=(const SoundServerView&) = delete;

    /// Both throw when the server is gone.
    std::string defaultSource();
    bool lists(const std::string& source);

private:
    void await(pulse::OperationHandle operation);
    void iterate();

    pulse::MainloopHandle loop_;
    pulse::ContextHandle context_;
};

} // namespace tovik::test

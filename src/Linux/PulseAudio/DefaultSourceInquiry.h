// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Linux/PulseAudio/PulseHandles.h"

#include <functional>
#include <string>

namespace tovik {

/// Asks a sound server for its default source over a connection of its own, which sees what a long-standing
/// one may have missed. Sound thread only. Never answers once it is destroyed, and not at all when the server
/// does not.
class DefaultSourceInquiry {
public:
    /// Comes once, from within a call of the inquiry, which must not be destroyed there.
    using Answer = std::function<void(std::string)>;

    DefaultSourceInquiry(pa_mainloop_api& api, const char* server, Answer answer);
    DefaultSourceInquiry(const DefaultSourceInquiry&) = delete;
    DefaultSourceInquiry& operator=(const DefaultSourceInquiry&) = delete;

private:
    void ask();

    const Answer answer_;
    pulse::ContextHandle context_;
    pulse::OperationHandle operation_;
};

} // namespace tovik

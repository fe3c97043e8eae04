// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Engines/Server/ServerSettings.h"
#include "Platform/UserDefaults.h"

#include <optional>
#include <string>

namespace tovik {

/// Whether the user lets speech leave this machine, asked once for each server. A server on this machine
/// needs no consent. Main thread.
class SpeechConsent {
public:
    /// The settings outlive the consent.
    explicit SpeechConsent(UserDefaults& defaults) : defaults_(defaults) {}

    /// Nothing until the user has answered.
    [[nodiscard]] std::optional<bool> answer(const ServerAddress& server) const;
    [[nodiscard]] bool isAllowed(const ServerAddress& server) const { return answer(server).value_or(false); }
    void setAnswer(const ServerAddress& server, bool isAllowed);

    /// What the user is asked.
    [[nodiscard]] static std::string question(const ServerAddress& server);

private:
    UserDefaults& defaults_;
};

} // namespace tovik

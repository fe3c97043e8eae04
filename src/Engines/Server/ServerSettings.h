// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Engines/Http/WebAddress.h"
#include "Engines/Server/SoundFiles.h"
#include "Platform/MainQueue.h"
#include "Platform/Result.h"
#include "Platform/UserDefaults.h"

#include <optional>
#include <string>
#include <vector>

namespace tovik {

/// Where a speech server is.
struct ServerAddress : WebAddress {
    /// Paths: of the transcriptions, and where the server tells its models.
    std::string transcriptions;
    std::string models;

    bool operator==(const ServerAddress&) const = default;

    /// From an address such as "http://127.0.0.1:8080", "https://speech.example/v1", or that of the endpoint
    /// itself.
    [[nodiscard]] static Result<ServerAddress> parse(const std::string& address);
};

/// What the user has set for the speech server, read anew for each dictation.
struct ServerSettings {
    ServerAddress address;
    std::string model;
    SoundFormat format = SoundFormat::wav;
    /// From the settings; the desktop's key ring is asked elsewhere.
    std::optional<std::string> key;
    Seconds connectTimeout{5};
    Seconds firstByteTimeout{30};
    Seconds wholeTimeout{60};
    bool keepFailedAudio = true;
    bool embeddedWhenServerFails = false;
    /// Whether the user has chosen a language to dictate in, rather than leave it to the server.
    bool localeIsChosen = false;
    std::vector<std::string> locales;
    /// The program that is the server, with its arguments; empty when somebody else runs it.
    std::vector<std::string> command;

    /// Nothing without an address; an error when one is given that is none.
    [[nodiscard]] static std::optional<Result<ServerSettings>> read(const UserDefaults& defaults);
};

/// What a bearer key is kept under in the desktop's key ring.
inline constexpr auto kServerKeyName = "platform.speech.serverKey";

} // namespace tovik

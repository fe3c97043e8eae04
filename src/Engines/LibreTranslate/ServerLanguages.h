// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/TranslationService.h"

#include <map>
#include <nlohmann/json.hpp>
#include <optional>
#include <set>
#include <string>

namespace tovik {

/// What a server translates: its own language codes, and those that each can be translated into.
class ServerLanguages {
public:
    /// Nothing when the answer to GET /languages makes no sense.
    [[nodiscard]] static std::optional<ServerLanguages> read(const nlohmann::json& answer);

    /// The pair in the server's codes; nothing when it does not translate it.
    [[nodiscard]] std::optional<TranslationPair> codesFor(const TranslationPair& pair) const;

private:
    /// A server may leave out the targets: then every language is one.
    std::map<std::string, std::optional<std::set<std::string>>> targets_;
};

} // namespace tovik

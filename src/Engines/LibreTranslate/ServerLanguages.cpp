// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Engines/LibreTranslate/ServerLanguages.h"

#include <vector>

namespace tovik {

namespace {

/// Servers of different ages call the same language differently.
std::vector<std::string> codesOf(const std::string& language) {
    if (language == "zh-Hans") {
        return {"zh-Hans", "zh"};
    }
    if (language == "zh-Hant") {
        return {"zh-Hant", "zt"};
    }
    if (language == "pt-BR") {
        return {"pt-BR", "pb", "pt"};
    }
    return {language};
}

} // namespace

std::optional<ServerLanguages> ServerLanguages::read(const nlohmann::json& answer) {
    if (!answer.is_array()) {
        return std::nullopt;
    }
    ServerLanguages languages;
    for (const auto& entry : answer) {
        if (!entry.is_object() || !entry.contains("code") || !entry["code"].is_string()) {
            return std::nullopt;
        }
        auto& targets = languages.targets_[entry["code"].get<std::string>()];
        if (!entry.contains("targets") || !entry["targets"].is_array()) {
            continue;
        }
        targets.emplace();
        for (const auto& target : entry["targets"]) {
            if (target.is_string()) {
                targets->insert(target.get<std::string>());
            }
        }
    }
    return languages;
}

std::optional<TranslationPair> ServerLanguages::codesFor(const TranslationPair& pair) const {
    for (const auto& source : codesOf(pair.source)) {
        const auto found = targets_.find(source);
        if (found == targets_.end()) {
            continue;
        }
        for (const auto& target : codesOf(pair.target)) {
            if (found->second ? found->second->contains(target) : targets_.contains(target)) {
                return TranslationPair{source, target};
            }
        }
    }
    return std::nullopt;
}

} // namespace tovik

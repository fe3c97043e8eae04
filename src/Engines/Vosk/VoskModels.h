// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/Result.h"

#include <optional>
#include <string>
#include <vector>

namespace tovik {

/// The models on this machine: folders named as their makers name them, such as "vosk-model-small-fr-0.22",
/// or after a language or a locale, such as "fr" or "fr-FR". Looked for anew at each call.
class VoskModels {
public:
    /// Earlier folders go first.
    explicit VoskModels(std::vector<std::string> folders) : folders_(std::move(folders)) {}

    /// dataFolder: of the user's own programs, $XDG_DATA_HOME.
    [[nodiscard]] static std::vector<std::string> usualFolders(const std::string& dataFolder);

    /// The folder of the best model for a locale: one of the same region before one of the language, and a
    /// big one before a small one.
    [[nodiscard]] std::optional<std::string> find(const std::string& locale) const;

    /// Where a model for the locale is to be had and where it goes, in a sentence.
    [[nodiscard]] std::string whereToGet(const std::string& locale) const;

    /// Whether a folder has what every model has; a moment's look. The error says what is missing.
    [[nodiscard]] static Result<void> check(const std::string& folder);

private:
    const std::vector<std::string> folders_;
};

} // namespace tovik

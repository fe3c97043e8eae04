// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/Result.h"

#include <filesystem>

namespace tovik {

/// Where the files of a speech model lie.
struct ModelFiles {
    std::filesystem::path acousticModel;
    std::filesystem::path languageModel;
    std::filesystem::path dictionary;

    /// The United States English model of Debian's package pocketsphinx-en-us.
    [[nodiscard]] static ModelFiles unitedStatesEnglish();
    /// A model in a folder laid out as that of the package: en-us/, en-us.lm.bin, cmudict-en-us.dict.
    [[nodiscard]] static ModelFiles in(const std::filesystem::path& folder);

    /// Whether the files are there and begin as they should. The error says which one does not, and what to
    /// install. Reads a few bytes of each file.
    [[nodiscard]] Result<void> check() const;

    /// As check(), and looks into what the library would believe unseen. Takes some milliseconds.
    [[nodiscard]] Result<void> checkContent() const;
};

} // namespace tovik

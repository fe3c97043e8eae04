// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "support/TemporaryFolder.h"

#include <filesystem>
#include <string>
#include <vector>

namespace tovik::test {

/// A folder of models for the library of VoskLookAlike.cpp.
class VoskFolder {
public:
    /// Where that library is.
    [[nodiscard]] static std::string library() { return TOVIK_TEST_VOSK; }

    /// What the model hears; further readings are less likely.
    void addModel(const std::string& name, const std::vector<std::string>& readings) const {
        std::filesystem::create_directories(models() + "/" + name + "/am");
        writeFile(models() + "/" + name + "/am/final.mdl", "model");
        std::string says;
        for (const auto& reading : readings) {
            says += reading + "\n";
        }
        writeFile(models() + "/" + name + "/says", says);
    }

    [[nodiscard]] std::string models() const { return folder_ / "models"; }

private:
    const TemporaryFolder folder_;
};

} // namespace tovik::test

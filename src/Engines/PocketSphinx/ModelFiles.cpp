// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Engines/PocketSphinx/ModelFiles.h"

#include "Engines/PocketSphinx/LanguageModelFile.h"
#include "Engines/PocketSphinx/ModelDefinition.h"
#include "Engines/Host/RecognitionError.h"

#include <array>
#include <cstdint>
#include <fstream>
#include <string>
#include <string_view>
#include <system_error>

namespace tovik {

namespace {

namespace fs = std::filesystem;

Error broken(const fs::path& file, std::string_view what) {
    return recognitionError(RecognitionCode::noModel,
                            "The English speech model is not usable: " + file.string() + " " +
                                std::string(what) + ". Install the Debian package pocketsphinx-en-us" +
                                (what == "is missing" ? "." : " anew."));
}

/// Empty when the file can be read and begins as it should.
Result<void> checkFile(const fs::path& file, std::string_view beginning) {
    std::error_code error;
    if (!fs::is_regular_file(file, error)) {
        return broken(file, "is missing");
    }
    std::ifstream stream(file, std::ios::binary);
    if (!stream) {
        return broken(file, "cannot be read");
    }
    std::string head(beginning.size() + 1, '\0');
    if (!stream.read(head.data(), static_cast<std::streamsize>(head.size()))) {
        return broken(file, "is cut short");
    }
    if (!head.starts_with(beginning)) {
        return broken(file, "is damaged");
    }
    return {};
}

} // namespace

ModelFiles ModelFiles::unitedStatesEnglish() {
    return in("/usr/share/pocketsphinx/model/en-us");
}

ModelFiles ModelFiles::in(const fs::path& folder) {
    return {folder / "en-us", folder / "en-us.lm.bin", folder / "cmudict-en-us.dict"};
}

Result<void> ModelFiles::check() const {
    struct Expected {
        fs::path file;
        std::string_view beginning;
    };
    const std::array<Expected, 8> expected{{{acousticModel / "mdef", "BMDF"},
                                            {acousticModel / "feat.params", "-"},
                                            {acousticModel / "means", "s3"},
                                            {acousticModel / "variances", "s3"},
                                            {acousticModel / "transition_matrices", "s3"},
                                            {acousticModel / "sendump", ""},
                                            {languageModel, "Trie Language Model"},
                                            {dictionary, ""}}};
    for (const auto& [file, beginning] : expected) {
        if (auto result = checkFile(file, beginning); !result) {
            return result;
        }
    }
    return {};
}

Result<void> ModelFiles::checkContent() const {
    if (auto result = check(); !result) {
        return result;
    }
    const auto definition = acousticModel / "mdef";
    if (!isWholeModelDefinition(definition)) {
        return broken(definition, "is damaged");
    }
    return isWholeLanguageModel(languageModel) ? Result<void>() : broken(languageModel, "is damaged");
}

} // namespace tovik

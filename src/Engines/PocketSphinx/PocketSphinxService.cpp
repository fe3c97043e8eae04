// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Engines/PocketSphinx/PocketSphinxService.h"

#include "Engines/Host/LocaleIdentifier.h"
#include "Engines/Host/RecognitionError.h"

#include <array>
#include <string_view>

namespace tovik {

namespace {

namespace fs = std::filesystem;

constexpr std::string_view kLocale = "en-US";

Error unusable(const std::string& why, std::string_view remedy) {
    return recognitionError(RecognitionCode::noModel, "The English speech model is not usable: " + why +
                                                          ". Install the Debian package pocketsphinx-en-us" +
                                                          std::string(remedy));
}

/// Whether the files are there. What is in them shows when they are loaded.
Result<void> check(const fs::path& model) {
    constexpr std::array files{"en-us/mdef",      "en-us/feat.params",         "en-us/means",
                               "en-us/variances", "en-us/transition_matrices", "en-us/sendump",
                               "en-us.lm.bin",    "cmudict-en-us.dict"};
    for (const auto* file : files) {
        std::error_code error;
        if (!fs::is_regular_file(model / file, error)) {
            return unusable((model / file).string() + " is missing", ".");
        }
        if (fs::file_size(model / file, error) == 0) {
            return unusable((model / file).string() + " is cut short", " again.");
        }
    }
    return {};
}

LocalModel engineModel(const fs::path& folder) {
    return {.check = [folder] { return check(folder); },
            .command = {ModelEngine::program(), "pocketsphinx", folder.string()},
            .files = {folder / "en-us", folder / "en-us.lm.bin", folder / "cmudict-en-us.dict"},
            .unusable = [](const std::string& how) { return unusable(how, " again."); }};
}

} // namespace

PocketSphinxService::PocketSphinxService(SystemLog& log, const fs::path& model)
    : engine_(std::make_shared<ModelEngine>(log, engineModel(model), ModelProcess::Limits{})) {}

std::shared_ptr<SpeechRecognizer> PocketSphinxService::makeRecognizer(const std::string& localeIdentifier) {
    if (localeIdentifier.empty() || canonicalLocaleIdentifier(localeIdentifier) != kLocale) {
        return nullptr;
    }
    return engine_->makeRecognizer();
}

std::string PocketSphinxService::currentLocaleIdentifier() const {
    return canonicalLocaleIdentifier(localeOfEnvironment());
}

void PocketSphinxService::prepare(const std::vector<std::string>& contextualStrings) {
    engine_->prepare(contextualStrings);
}

} // namespace tovik

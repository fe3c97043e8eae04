// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Engines/PocketSphinx/PocketSphinxService.h"

#include "Engines/PocketSphinx/PocketSphinxDecoder.h"
#include "Engines/Host/FileStamp.h"
#include "Engines/Host/LocaleIdentifier.h"

#include <string_view>

namespace tovik {

namespace {

constexpr std::string_view kLocale = "en-US";

} // namespace

PocketSphinxService::PocketSphinxService(SystemLog& log, const ModelFiles& files)
    : engine_(std::make_shared<ModelEngine>(
          log,
          ModelEngine::Model{
              .check = [files] { return files.check(); },
              .load = [files] { return PocketSphinxDecoder::load(files); },
              .stamp =
                  [files] {
                      return fileStamp({files.acousticModel, files.languageModel, files.dictionary});
                  }},
          ModelEngine::Limits{})) {}

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

// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Linux/Vosk/VoskService.h"

#include "Linux/Recognition/FileStamp.h"
#include "Linux/Recognition/LocaleIdentifier.h"
#include "Linux/Vosk/VoskDecoder.h"

#include <algorithm>
#include <utility>

namespace tovik {

namespace {

constexpr Seconds kLoading{300};

Result<std::unique_ptr<UtteranceDecoder>> loadChecked(const VoskCheck& check,
                                                      const std::shared_ptr<const VoskLibrary>& library,
                                                      const std::string& folder) {
    if (auto usable = check.run(library->file(), folder); !usable) {
        return usable.error();
    }
    return VoskDecoder::load(library, folder);
}

} // namespace

VoskService::VoskService(SystemLog& log, std::vector<std::string> libraries,
                         std::vector<std::string> modelFolders, VoskCheck check)
    : log_(log),
      libraries_(std::move(libraries)),
      models_(std::move(modelFolders)),
      check_(std::move(check)) {}

std::shared_ptr<SpeechRecognizer> VoskService::makeRecognizer(const std::string& localeIdentifier) {
    if (localeIdentifier.empty()) {
        return nullptr;
    }
    auto* const engine = engineFor(canonicalLocaleIdentifier(localeIdentifier));
    return engine == nullptr ? nullptr : engine->makeRecognizer();
}

std::string VoskService::currentLocaleIdentifier() const {
    return canonicalLocaleIdentifier(localeOfEnvironment());
}

void VoskService::prepare(const std::vector<std::string>& contextualStrings) {
    contextualStrings_ = contextualStrings;
    for (auto& loaded : loaded_) {
        loaded.engine->prepare(contextualStrings);
    }
}

bool VoskService::serves(const std::string& localeIdentifier) {
    // The folders are asked first: without a model the library need not be loaded.
    return models_.find(canonicalLocaleIdentifier(localeIdentifier)) && library();
}

std::optional<std::string> VoskService::whyUnavailable(const std::string& localeIdentifier) {
    const auto locale = canonicalLocaleIdentifier(localeIdentifier);
    if (!models_.find(locale)) {
        return models_.whereToGet(locale);
    }
    auto* const engine = engineFor(locale);
    return engine == nullptr ? std::optional(whyNoLibrary_) : engine->whyUnavailable();
}

bool VoskService::waitUntilReady(const std::string& localeIdentifier, Seconds atMost) {
    auto* const engine = engineFor(canonicalLocaleIdentifier(localeIdentifier));
    return engine != nullptr && engine->waitUntilReady(atMost);
}

std::shared_ptr<const VoskLibrary> VoskService::library() {
    if (!library_) {
        auto loaded = VoskLibrary::load(libraries_);
        if (loaded) {
            library_ = loaded.value();
        } else if (whyNoLibrary_ != loaded.error().description) {
            whyNoLibrary_ = loaded.error().description;
            log_.logLine("[TovikVoice] " + whyNoLibrary_);
        }
    }
    return library_;
}

ModelEngine* VoskService::engineFor(const std::string& locale) {
    const auto folder = models_.find(locale);
    if (!folder || !library()) {
        return nullptr;
    }
    const auto found = std::find_if(loaded_.begin(), loaded_.end(),
                                    [&](const Loaded& loaded) { return loaded.folder == *folder; });
    if (found != loaded_.end()) {
        loaded_.splice(loaded_.begin(), loaded_, found);
        return loaded_.front().engine.get();
    }
    // The big ones are read from the disk for a while.
    ModelEngine::Limits limits;
    limits.loading = kLoading;
    if (loaded_.size() == mostModels) {
        loaded_.pop_back();
    }
    loaded_.push_front(
        {*folder,
         std::make_unique<ModelEngine>(
             log_,
             ModelEngine::Model{.check = [folder = *folder] { return VoskModels::check(folder); },
                                .load = [check = check_, library = library_,
                                         folder = *folder] { return loadChecked(check, library, folder); },
                                .stamp = [folder = *folder] { return fileStamp({folder}); }},
             limits)});
    loaded_.front().engine->prepare(contextualStrings_);
    return loaded_.front().engine.get();
}

} // namespace tovik

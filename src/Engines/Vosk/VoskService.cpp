// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Engines/Vosk/VoskService.h"

#include "Engines/Host/FileStamp.h"
#include "Engines/Host/LocaleIdentifier.h"
#include "Engines/Vosk/VoskDecoder.h"

#include <algorithm>
#include <chrono>
#include <iterator>
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

VoskService::~VoskService() {
    for (auto& loaded : loaded_) {
        loaded.engine->end();
    }
}

std::shared_ptr<SpeechRecognizer> VoskService::makeRecognizer(const std::string& localeIdentifier) {
    if (localeIdentifier.empty()) {
        return nullptr;
    }
    const auto engine = engineFor(canonicalLocaleIdentifier(localeIdentifier));
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
    const auto engine = engineFor(locale);
    return engine == nullptr ? std::optional(whyNoLibrary_) : engine->whyUnavailable();
}

bool VoskService::waitUntilReady(const std::string& localeIdentifier, Seconds atMost) {
    const auto engine = engineFor(canonicalLocaleIdentifier(localeIdentifier));
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

std::shared_ptr<ModelEngine> VoskService::engineFor(const std::string& locale) {
    const auto folder = models_.find(locale);
    if (!folder || !library()) {
        return nullptr;
    }
    const auto found = std::find_if(loaded_.begin(), loaded_.end(),
                                    [&](const Loaded& loaded) { return loaded.folder == *folder; });
    if (found != loaded_.end()) {
        loaded_.splice(loaded_.begin(), loaded_, found);
        unloadIdleModels();
        return loaded_.front().engine;
    }
    // The big ones are read from the disk for a while.
    ModelEngine::Limits limits;
    limits.loading = kLoading;
    loaded_.push_front(
        {*folder,
         std::make_shared<ModelEngine>(
             log_,
             ModelEngine::Model{.check = [folder = *folder] { return VoskModels::check(folder); },
                                .load = [check = check_, library = library_,
                                         folder = *folder] { return loadChecked(check, library, folder); },
                                .stamp = [folder = *folder] { return fileStamp({folder}); }},
             limits)});
    loaded_.front().engine->prepare(contextualStrings_);
    unloadIdleModels();
    return loaded_.front().engine;
}

/// Those that were used longest ago; not one that somebody speaks with or still can.
void VoskService::unloadIdleModels() {
    unloading_.remove_if([](const std::future<void>& end) {
        return end.wait_for(std::chrono::seconds(0)) == std::future_status::ready;
    });
    for (auto loaded = loaded_.end(); loaded_.size() > mostModels && loaded != std::next(loaded_.begin());) {
        --loaded;
        // Nobody but this thread hands them out.
        const bool isHeld = loaded->engine.use_count() > 1;
        if (isHeld || !loaded->engine->isIdle()) {
            continue;
        }
        // Gigabytes take a while to go, and a model that is still loading keeps whoever ends it waiting.
        unloading_.push_back(std::async(std::launch::async,
                                        [engine = std::move(loaded->engine)]() mutable { engine.reset(); }));
        loaded = loaded_.erase(loaded);
    }
}

} // namespace tovik

// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Engines/Apertium/ApertiumService.h"

#include "Engines/Apertium/LanguagePairs.h"
#include "Engines/Apertium/ModeFile.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <utility>

namespace tovik {

namespace {

Error missing(const TranslationPair& pair) {
    const auto direction = pair.source + " → " + pair.target;
    const auto package = packageOfPair(pair);
    return {"Apertium", 1,
            package ? "To translate " + direction + ", install the package " + *package + "."
                    : "Apertium has no translator for " + direction + "."};
}

bool hasModes(const std::string& folder) {
    std::error_code ignored;
    for (const auto& entry : std::filesystem::directory_iterator(folder, ignored)) {
        if (entry.path().extension() == ".mode") {
            return true;
        }
    }
    return false;
}

} // namespace

ApertiumService::ApertiumService(MainQueue& queue, std::string modesFolder)
    : queue_(queue),
      modesFolder_(std::move(modesFolder)) {}

std::optional<std::string> ApertiumService::whyUnavailable() const {
    if (hasModes(modesFolder_)) {
        return std::nullopt;
    }
    return "To translate on this machine, install the packages apertium and apertium-eng-spa.";
}

std::string ApertiumService::pathOf(const std::string& mode) const {
    return modesFolder_ + "/" + mode + ".mode";
}

std::optional<std::string> ApertiumService::installedMode(const TranslationPair& pair) const {
    for (const auto& mode : modeNames(pair)) {
        std::error_code ignored;
        if (std::filesystem::exists(pathOf(mode), ignored)) {
            return mode;
        }
    }
    return std::nullopt;
}

void ApertiumService::availability(const TranslationPair& pair,
                                   std::function<void(const Result<TranslationAvailability>&)> completion) {
    auto answer = TranslationAvailability::unsupported;
    if (installedMode(pair)) {
        answer = TranslationAvailability::installed;
    } else if (packageOfPair(pair)) {
        answer = TranslationAvailability::supported;
    }
    queue_.async(lifetime_.guard([answer, completion = std::move(completion)] { completion(answer); }));
}

std::optional<Subscription> ApertiumService::offerSessions(const TranslationPair& pair,
                                                           SessionHandler handler) {
    TranslationSession session =
        lifetime_.guard([this, pair](const std::string& text, WarmPipeline::Completion completion) {
            translate(pair, text, std::move(completion));
        });
    return queue_.after(Seconds(0),
                        [session = std::move(session), handler = std::move(handler)] { handler(session); });
}

Result<WarmPipeline*> ApertiumService::pipelineFor(const TranslationPair& pair) {
    const auto mode = installedMode(pair);
    if (!mode) {
        return missing(pair);
    }
    auto& pipeline = pipelines_[*mode];
    if (!pipeline) {
        std::ifstream file(pathOf(*mode));
        const auto stages = stagesOfMode(std::string(std::istreambuf_iterator<char>(file), {}));
        if (!stages) {
            return stages.error();
        }
        pipeline = std::make_unique<WarmPipeline>(stages.value(), queue_);
    }
    return pipeline.get();
}

void ApertiumService::translate(const TranslationPair& pair, const std::string& text,
                                WarmPipeline::Completion completion) {
    const auto pipeline = pipelineFor(pair);
    if (pipeline) {
        pipeline.value()->translate(text, std::move(completion));
        return;
    }
    queue_.async(lifetime_.guard(
        [error = pipeline.error(), completion = std::move(completion)] { completion(error); }));
}

} // namespace tovik

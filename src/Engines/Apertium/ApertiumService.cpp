// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Engines/Apertium/ApertiumService.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <utility>

namespace tovik {

namespace {

/// Modes are named in two- or three-letter codes, whichever their makers preferred.
const std::vector<std::string>& codesOf(const std::string& language) {
    static const std::map<std::string, std::vector<std::string>> table{
        {"ar", {"ara", "ar"}},
        {"zh-Hans", {"zho", "zh"}},
        {"zh-Hant", {"zho_Hant", "zh_TW"}},
        {"nl", {"nld", "nl"}},
        {"en", {"eng", "en"}},
        {"fr", {"fra", "fr"}},
        {"de", {"deu", "de"}},
        {"hi", {"hin", "hi"}},
        {"id", {"ind", "id"}},
        {"it", {"ita", "it"}},
        {"ja", {"jpn", "ja"}},
        {"ko", {"kor", "ko"}},
        {"pl", {"pol", "pl"}},
        {"pt-BR", {"por_BR", "pt_BR", "por", "pt"}},
        {"ru", {"rus", "ru"}},
        {"es", {"spa", "es"}},
        {"th", {"tha", "th"}},
        {"tr", {"tur", "tr"}},
        {"uk", {"ukr", "uk"}},
        {"vi", {"vie", "vi"}},
    };
    static const std::vector<std::string> none;
    const auto found = table.find(language);
    return found == table.end() ? none : found->second;
}

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

constexpr std::string_view kShellOnly = ";&<>`()\"\\";

Error unreadableMode() {
    return {"Apertium", 2, "An Apertium mode file is not a plain pipeline of programs."};
}

/// Apertium's own program puts its options for generation and tagging here.
void addArgument(Stage& stage, const std::string& argument) {
    if (argument == "$1") {
        stage.emplace_back("-n");
    } else if (argument != "$2") {
        stage.push_back(argument);
    }
    if (stage.size() == 1) {
        stage.emplace_back("-z");
    }
}

/// Reads a mode file character by character.
class ModeReader {
public:
    [[nodiscard]] bool take(char character) {
        if (isQuoted_) {
            if (character == '\'') {
                isQuoted_ = false;
            } else {
                argument_ += character;
            }
            return true;
        }
        if (kShellOnly.find(character) != std::string_view::npos) {
            return false;
        }
        if (character == '\'') {
            isQuoted_ = true;
            hasArgument_ = true;
        } else if (character == '|') {
            return endStage();
        } else if (character == ' ' || character == '\t' || character == '\n' || character == '\r') {
            endArgument();
        } else {
            argument_ += character;
            hasArgument_ = true;
        }
        return true;
    }

    [[nodiscard]] bool end() { return !isQuoted_ && endStage(); }
    [[nodiscard]] std::vector<Stage> stages() && { return std::move(stages_); }

private:
    void endArgument() {
        if (hasArgument_) {
            addArgument(stage_, argument_);
            argument_.clear();
            hasArgument_ = false;
        }
    }

    bool endStage() {
        endArgument();
        if (stage_.empty()) {
            return false;
        }
        stages_.push_back(std::move(stage_));
        stage_ = {};
        return true;
    }

    std::vector<Stage> stages_;
    Stage stage_;
    std::string argument_;
    bool hasArgument_ = false;
    bool isQuoted_ = false;
};

} // namespace

std::vector<std::string> modeNames(const TranslationPair& pair) {
    std::vector<std::string> names;
    for (const auto& target : codesOf(pair.target)) {
        for (const auto& source : codesOf(pair.source)) {
            names.push_back(source);
            names.back().append("-").append(target);
        }
    }
    return names;
}

std::optional<std::string> packageOfPair(const TranslationPair& pair) {
    static const std::map<TranslationPair, std::string> packages{
        {{"en", "es"}, "apertium-eng-spa"},  {{"es", "fr"}, "apertium-fr-es"},
        {{"es", "pt-BR"}, "apertium-es-pt"}, {{"es", "it"}, "apertium-spa-ita"},
        {{"ru", "uk"}, "apertium-rus-ukr"},
    };
    auto found = packages.find(pair);
    if (found == packages.end()) {
        found = packages.find({pair.target, pair.source});
    }
    return found == packages.end() ? std::nullopt : std::optional(found->second);
}

Result<std::vector<Stage>> stagesOfMode(std::string_view content) {
    ModeReader reader;
    for (const char character : content) {
        if (!reader.take(character)) {
            return unreadableMode();
        }
    }
    if (!reader.end()) {
        return unreadableMode();
    }
    return std::move(reader).stages();
}

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

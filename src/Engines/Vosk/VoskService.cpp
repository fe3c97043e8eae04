// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Engines/Vosk/VoskService.h"

#include "Engines/Host/LocaleIdentifier.h"
#include "Engines/Host/RecognitionError.h"
#include "Engines/Vosk/VoskDecoder.h"
#include "Platform/AsciiCase.h"

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <utility>

namespace tovik {

namespace {

namespace fs = std::filesystem;

constexpr Seconds kLoading{300};

constexpr std::string_view kPrefix = "vosk-model-";
constexpr std::string_view kSmall = "small-";

/// Chinese is called "cn" in the names of models.
std::string modelLanguage(const std::string& language) {
    return language == "zh" ? "cn" : language;
}

bool beginsWithWord(std::string_view text, std::string_view word) {
    return text.starts_with(word) && (text.size() == word.size() || text[word.size()] == '-');
}

Error unusableModel(const std::string& folder, const std::string& why) {
    return recognitionError(RecognitionCode::noModel,
                            "The Vosk model " + folder + " is not usable: " + why + ". Unpack it again.");
}

/// Zero when the folder is none for the locale.
int fitness(const std::string& folderName, const std::string& locale) {
    const auto wanted = asciiLowerCased(locale);
    const auto language = wanted.substr(0, wanted.find('-'));
    auto name = asciiLowerCased(folderName);
    std::replace(name.begin(), name.end(), '_', '-');
    std::string_view rest = name;
    int size = 1;
    if (rest.starts_with(kPrefix)) {
        rest.remove_prefix(kPrefix.size());
        if (rest.starts_with(kSmall)) {
            rest.remove_prefix(kSmall.size());
            size = 0;
        }
    } else if (rest != wanted && rest != language && rest != modelLanguage(language)) {
        return 0;
    }
    if (beginsWithWord(rest, wanted)) {
        return 4 + size;
    }
    if (!beginsWithWord(rest, language) && !beginsWithWord(rest, modelLanguage(language))) {
        return 0;
    }
    // "en-us" is no model for another region's English as long as there is a better one.
    return 2 + size;
}

/// The folders in which the system looks for libraries.
std::vector<fs::path> libraryFolders() {
    std::vector<fs::path> folders{"/usr/local/lib", "/lib64", "/usr/lib64", "/lib", "/usr/lib"};
    std::error_code error;
    for (const auto& entry : fs::directory_iterator("/usr/lib", error)) {
        if (entry.path().filename().string().ends_with("-linux-gnu")) {
            folders.push_back(entry.path());
        }
    }
    return folders;
}

LocalModel engineModel(const std::string& folder, const std::vector<std::string>& libraries) {
    std::vector<std::string> command{ModelEngine::program(), "vosk", folder};
    command.insert(command.end(), libraries.begin(), libraries.end());
    std::vector<fs::path> files(libraries.begin(), libraries.end());
    files.emplace_back(folder);
    return {.check = [folder] { return VoskModels::check(folder); },
            .command = std::move(command),
            .files = std::move(files),
            .unusable = [folder](const std::string& how) { return unusableModel(folder, how); }};
}

Error notInstalled() {
    return voskUnusable("it is not installed");
}

} // namespace

std::vector<std::string> VoskModels::usualFolders(const std::string& dataFolder) {
    return {dataFolder + "/tovik-record/models", "/usr/local/share/vosk-models", "/usr/share/vosk-models",
            "/usr/share/vosk"};
}

std::optional<std::string> VoskModels::find(const std::string& locale) const {
    for (const auto& folder : folders_) {
        std::vector<std::string> names;
        std::error_code error;
        for (const auto& entry : fs::directory_iterator(folder, error)) {
            if (entry.is_directory(error)) {
                names.push_back(entry.path().filename().string());
            }
        }
        // Of two that are as good the one with the higher version.
        std::sort(names.begin(), names.end());
        const auto best = std::max_element(names.begin(), names.end(), [&](const auto& a, const auto& b) {
            return std::pair(fitness(a, locale), a) < std::pair(fitness(b, locale), b);
        });
        if (best != names.end() && fitness(*best, locale) > 0) {
            return folder + "/" + *best;
        }
    }
    return std::nullopt;
}

std::string VoskModels::whereToGet(const std::string& locale) const {
    return "There is no Vosk model for " + locale + ": unpack one of https://alphacephei.com/vosk/models " +
           "into " + (folders_.empty() ? "" : folders_.front()) + ".";
}

Result<void> VoskModels::check(const std::string& folder) {
    std::error_code error;
    const auto size = [&](const char* file) {
        const auto bytes = fs::file_size(fs::path(folder) / file, error);
        return error ? std::nullopt : std::optional(bytes);
    };
    // Older models have their files at the top.
    if (size("am/final.mdl").value_or(0) == 0 && size("final.mdl").value_or(0) == 0) {
        return unusableModel(folder, "am/final.mdl is missing");
    }
    // Without words the library hears nothing in anything, and does not say why.
    if (size("graph/words.txt") == 0U || size("words.txt") == 0U) {
        return unusableModel(folder, "its words.txt is empty");
    }
    return {};
}

std::vector<std::string> VoskService::usualLibraries(const std::string& dataFolder) {
    return {dataFolder + "/tovik-record/libvosk.so", "libvosk.so.0", "libvosk.so"};
}

VoskService::VoskService(SystemLog& log, std::vector<std::string> libraries,
                         std::vector<std::string> modelFolders)
    : log_(log),
      libraries_(std::move(libraries)),
      models_(std::move(modelFolders)) {}

VoskService::~VoskService() {
    for (auto& loaded : loaded_) {
        loaded.engine->beginEnd();
    }
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
    // The folders are asked first: without a model the library need not be looked for.
    return models_.find(canonicalLocaleIdentifier(localeIdentifier)) && !installedLibraries().empty();
}

std::optional<std::string> VoskService::whyUnavailable(const std::string& localeIdentifier) {
    const auto locale = canonicalLocaleIdentifier(localeIdentifier);
    if (!models_.find(locale)) {
        return models_.whereToGet(locale);
    }
    const auto engine = engineFor(locale);
    return engine == nullptr ? std::optional(notInstalled().description) : engine->whyUnavailable();
}

bool VoskService::waitUntilReady(const std::string& localeIdentifier, Seconds atMost) {
    const auto engine = engineFor(canonicalLocaleIdentifier(localeIdentifier));
    return engine != nullptr && engine->waitUntilReady(atMost);
}

std::vector<std::string> VoskService::installedLibraries() {
    std::vector<std::string> found;
    std::error_code error;
    for (const auto& name : libraries_) {
        for (const auto& folder :
             name.find('/') == std::string::npos ? libraryFolders() : std::vector{fs::path()}) {
            if (fs::exists(folder / name, error)) {
                found.push_back((folder / name).string());
                break;
            }
        }
    }
    if (found.empty() && !std::exchange(saidThereIsNoLibrary_, true)) {
        log_.logLine("[TovikVoice] " + notInstalled().description);
    }
    return found;
}

std::shared_ptr<ModelEngine> VoskService::engineFor(const std::string& locale) {
    const auto folder = models_.find(locale);
    if (!folder) {
        return nullptr;
    }
    const auto libraries = installedLibraries();
    if (libraries.empty()) {
        return nullptr;
    }
    use(*folder, libraries);
    unloadIdleModels();
    return loaded_.front().engine;
}

/// Brings the model to the front, loading it if need be.
void VoskService::use(const std::string& folder, const std::vector<std::string>& libraries) {
    const auto found = std::find_if(loaded_.begin(), loaded_.end(),
                                    [&](const Loaded& loaded) { return loaded.folder == folder; });
    if (found != loaded_.end()) {
        loaded_.splice(loaded_.begin(), loaded_, found);
        return;
    }
    // The big ones are read from the disk for a while.
    ModelProcess::Limits limits;
    limits.loading = kLoading;
    loaded_.push_front({folder, std::make_shared<ModelEngine>(log_, engineModel(folder, libraries), limits)});
    loaded_.front().engine->prepare(contextualStrings_);
}

/// Those that were used longest ago; not one that somebody speaks with or still can.
void VoskService::unloadIdleModels() {
    leaving_.remove_if([](const auto& engine) { return engine->hasEnded(); });
    for (auto loaded = loaded_.end(); loaded_.size() > mostModels && loaded != std::next(loaded_.begin());) {
        --loaded;
        // Nobody but this thread hands them out.
        const bool isHeld = loaded->engine.use_count() > 1;
        if (!isHeld && loaded->engine->isIdle()) {
            loaded->engine->beginEnd();
            leaving_.push_back(std::move(loaded->engine));
            loaded = loaded_.erase(loaded);
        }
    }
}

} // namespace tovik

// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Engines/Vosk/VoskModels.h"

#include "Engines/Host/RecognitionError.h"
#include "Platform/AsciiCase.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

namespace tovik {

namespace {

namespace fs = std::filesystem;

constexpr std::string_view kPrefix = "vosk-model-";
constexpr std::string_view kSmall = "small-";

/// Chinese is called "cn" in the names of models.
std::string modelLanguage(const std::string& language) {
    return language == "zh" ? "cn" : language;
}

bool beginsWithWord(std::string_view text, std::string_view word) {
    return text.starts_with(word) && (text.size() == word.size() || text[word.size()] == '-');
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
    const auto unusable = [&](const std::string& why) {
        return recognitionError(RecognitionCode::noModel,
                                "The Vosk model " + folder + " is not usable: " + why + ". Unpack it anew.");
    };
    // Older models have their files at the top.
    if (size("am/final.mdl").value_or(0) == 0 && size("final.mdl").value_or(0) == 0) {
        return unusable("am/final.mdl is missing");
    }
    // Without words the library hears nothing in anything, and does not say why.
    if (size("graph/words.txt") == 0U || size("words.txt") == 0U) {
        return unusable("its words.txt is empty");
    }
    return {};
}

} // namespace tovik

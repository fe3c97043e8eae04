// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Engines/Host/ModelEngine.h"
#include "Platform/SpeechService.h"

#include <list>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tovik {

/// The models on this machine: folders named as their makers name them, such as "vosk-model-small-fr-0.22",
/// or after a language or a locale, such as "fr" or "fr-FR". Looked for anew at each call.
class VoskModels {
public:
    /// Earlier folders go first.
    explicit VoskModels(std::vector<std::string> folders) : folders_(std::move(folders)) {}

    /// dataFolder: of the user's own programs, $XDG_DATA_HOME.
    [[nodiscard]] static std::vector<std::string> usualFolders(const std::string& dataFolder);

    /// The folder of the best model for a locale: one of the same region before one of the language, and a
    /// big one before a small one.
    [[nodiscard]] std::optional<std::string> find(const std::string& locale) const;

    /// Where a model for the locale is to be had and where it goes, in a sentence.
    [[nodiscard]] std::string whereToGet(const std::string& locale) const;

    /// Whether a folder has what every model has; a moment's look. The error says what is missing.
    [[nodiscard]] static Result<void> check(const std::string& folder);

private:
    const std::vector<std::string> folders_;
};

/// Recognizes with the Vosk library and the models that are on this machine, each locale with its own. A
/// model is loaded when its locale is asked for first; that of the language before stays.
class VoskService : public SpeechService {
public:
    /// The usual names and places of the library. dataFolder: of the user's own programs, $XDG_DATA_HOME.
    [[nodiscard]] static std::vector<std::string> usualLibraries(const std::string& dataFolder);

    /// libraries: files, and names that are looked for where the system has libraries; the first that works
    /// serves.
    VoskService(SystemLog& log, std::vector<std::string> libraries, std::vector<std::string> modelFolders);

    ~VoskService() override;
    VoskService(const VoskService&) = delete;
    VoskService& operator=(const VoskService&) = delete;

    [[nodiscard]] std::shared_ptr<SpeechRecognizer>
    makeRecognizer(const std::string& localeIdentifier) override;
    [[nodiscard]] std::string currentLocaleIdentifier() const override;
    void prepare(const std::vector<std::string>& contextualStrings) override;

    /// Whether a recognizer for the locale could be made, without loading its model.
    [[nodiscard]] bool serves(const std::string& localeIdentifier);
    /// Why there is no recognizer for the locale and where to get what is missing, in a sentence for the
    /// user. Nothing when there is one.
    [[nodiscard]] std::optional<std::string> whyUnavailable(const std::string& localeIdentifier);
    /// As ModelEngine.
    [[nodiscard]] bool waitUntilReady(const std::string& localeIdentifier, Seconds atMost);

private:
    /// Languages that people switch between; a model takes from 100 MB to several GB.
    static constexpr std::size_t mostModels = 2;

    struct Loaded {
        std::string folder;
        std::shared_ptr<ModelEngine> engine;
    };

    void unloadIdleModels();

    /// Null when there is no library or no model.
    [[nodiscard]] std::shared_ptr<ModelEngine> engineFor(const std::string& locale);
    /// Where the library is; nothing when it is not installed.
    [[nodiscard]] std::vector<std::string> installedLibraries();
    void use(const std::string& folder, const std::vector<std::string>& libraries);

    SystemLog& log_;
    const std::vector<std::string> libraries_;
    const VoskModels models_;
    bool saidThereIsNoLibrary_ = false;
    std::vector<std::string> contextualStrings_;
    /// The one used last comes first. More than mostModels while somebody may still speak with them.
    std::list<Loaded> loaded_;
    /// Those that are being unloaded: gigabytes take a while to go.
    std::list<std::shared_ptr<ModelEngine>> leaving_;
};

} // namespace tovik

// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Engines/Host/ModelEngine.h"
#include "Engines/Vosk/VoskCheck.h"
#include "Engines/Vosk/VoskLibrary.h"
#include "Engines/Vosk/VoskModels.h"
#include "Platform/SpeechService.h"

#include <future>
#include <list>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tovik {

/// Recognises with the Vosk library and the models that are on this machine, each locale with its own. A
/// model is loaded when its locale is asked for first; that of the language before stays.
class VoskService : public SpeechService {
public:
    VoskService(SystemLog& log, std::vector<std::string> libraries, std::vector<std::string> modelFolders,
                VoskCheck check = VoskCheck(VoskCheck::besideThisProgram()));

    ~VoskService() override;
    VoskService(const VoskService&) = delete;
    VoskService& operator=(const VoskService&) = delete;

    [[nodiscard]] std::shared_ptr<SpeechRecognizer>
    makeRecognizer(const std::string& localeIdentifier) override;
    [[nodiscard]] std::string currentLocaleIdentifier() const override;
    void prepare(const std::vector<std::string>& contextualStrings) override;

    /// Whether a recogniser for the locale could be made, without loading its model.
    [[nodiscard]] bool serves(const std::string& localeIdentifier);
    /// Why there is no recogniser for the locale and where to get what is missing, in a sentence for the
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
    [[nodiscard]] std::shared_ptr<const VoskLibrary> library();

    SystemLog& log_;
    const std::vector<std::string> libraries_;
    const VoskModels models_;
    const VoskCheck check_;
    std::shared_ptr<const VoskLibrary> library_;
    std::string whyNoLibrary_;
    std::vector<std::string> contextualStrings_;
    /// The one used last comes first. More than mostModels while somebody may still speak with them.
    std::list<Loaded> loaded_;
    /// The ends of models that are being unloaded.
    std::list<std::future<void>> unloading_;
};

} // namespace tovik

// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Engines/PocketSphinx/PocketSphinxService.h"
#include "Engines/Server/SpeechServerService.h"
#include "Engines/Vosk/VoskService.h"
#include "Platform/MainQueue.h"
#include "Platform/SpeechService.h"
#include "Platform/UserDefaults.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tovik {

/// Whether the user lets speech leave this machine, asked once for each server. A server on this machine
/// needs no consent. Main thread.
class SpeechConsent {
public:
    /// The settings outlive the consent.
    explicit SpeechConsent(UserDefaults& defaults) : defaults_(defaults) {}

    /// Nothing until the user has answered.
    [[nodiscard]] std::optional<bool> answer(const ServerAddress& server) const;
    [[nodiscard]] bool isAllowed(const ServerAddress& server) const { return answer(server).value_or(false); }
    void setAnswer(const ServerAddress& server, bool isAllowed);

    /// What the user is asked.
    [[nodiscard]] static std::string question(const ServerAddress& server);

private:
    UserDefaults& defaults_;
};

/// All speech engines of this program, as one: a locale is recognized by the first engine that can, in an
/// order that the user default "platform.speech.engine" chooses: "vosk", "server" or "pocketsphinx" alone, or
/// "auto", which tries them in that order. Main thread.
class SpeechEngines : public SpeechService {
public:
    struct Services {
        SystemLog& log;
        UserDefaults& defaults;
        MainQueue& queue;
        /// Nothing where there is none.
        SecretStore* secrets;
        /// Where programs keep the user's data: $XDG_DATA_HOME.
        std::string dataFolder;
    };

    /// The services outlive the engines.
    explicit SpeechEngines(Services services);

    [[nodiscard]] std::shared_ptr<SpeechRecognizer>
    makeRecognizer(const std::string& localeIdentifier) override;
    [[nodiscard]] std::string currentLocaleIdentifier() const override;
    /// Also loads what the next dictation will need.
    void prepare(const std::vector<std::string>& contextualStrings) override;

    /// Why no speech can be recognized at all and how to mend it, in a sentence for the user; nothing while
    /// some can.
    [[nodiscard]] std::optional<std::string> whyUnavailable();

    /// Whether the user has yet to say whether a server may hear, and what he is asked.
    [[nodiscard]] bool needsConsent();
    [[nodiscard]] std::string consentText() const;
    void answerConsent(bool isAllowed);
    /// Whether there is no recognition because the user did not allow it.
    [[nodiscard]] bool isRefused();

    /// Blocks until the engine that the next dictation will use is ready: for tools, which have nothing else
    /// to do. False when there is none, or not in time.
    [[nodiscard]] bool waitUntilReady(Seconds atMost);

private:
    enum class Engine { vosk, server, pocketSphinx };

    [[nodiscard]] std::vector<Engine> order() const;
    [[nodiscard]] bool isIn(Engine engine) const;
    [[nodiscard]] std::shared_ptr<SpeechRecognizer> make(Engine engine, const std::string& locale);
    [[nodiscard]] std::string why(Engine engine);
    /// The locales in which a dictation is tried, in order.
    [[nodiscard]] std::vector<std::string> wantedLocales() const;
    /// The first of these that an engine recognizes now, and by which one.
    struct Choice {
        Engine engine;
        std::string locale;
    };
    [[nodiscard]] std::optional<Choice> choice();
    [[nodiscard]] PocketSphinxService& pocketSphinx();
    [[nodiscard]] std::optional<ServerAddress> serverAddress() const;

    const Services services_;
    SpeechConsent consent_;
    std::vector<std::string> contextualStrings_;
    /// Made when it is needed first: its model takes memory.
    std::unique_ptr<PocketSphinxService> pocketSphinx_;
    VoskService vosk_;
    SpeechServerService server_;
};

} // namespace tovik

// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Engines/SpeechEngines.h"

#include "Audio/DictationLanguage.h"
#include "Engines/Host/LocaleIdentifier.h"

#include <algorithm>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <utility>

namespace tovik {

namespace {

constexpr auto kEngineKey = "platform.speech.engine";
constexpr auto kConsentKey = "platform.speech.serverConsent";

/// The model of the Debian package, unless the user has another one.
std::filesystem::path pocketSphinxModel(const UserDefaults& defaults) {
    const auto folder = defaults.string("platform.speechModel");
    return folder.value_or(PocketSphinxService::packageModel);
}

} // namespace

std::optional<bool> SpeechConsent::answer(const ServerAddress& server) const {
    if (server.isThisMachine()) {
        return true;
    }
    const auto answers = defaults_.value(kConsentKey);
    if (!answers || !answers->is_object()) {
        return std::nullopt;
    }
    const auto found = answers->find(server.origin());
    return found != answers->end() && found->is_boolean() ? std::optional(found->get<bool>()) : std::nullopt;
}

void SpeechConsent::setAnswer(const ServerAddress& server, bool isAllowed) {
    auto answers = defaults_.value(kConsentKey).value_or(PropertyValue::object());
    if (!answers.is_object()) {
        answers = PropertyValue::object();
    }
    answers[server.origin()] = isAllowed;
    defaults_.set(kConsentKey, std::move(answers));
}

std::string SpeechConsent::question(const ServerAddress& server) {
    return "What you dictate would be sent to the speech server " + server.origin() +
           " and recognized there" +
           (server.isEncrypted ? "." : ", over a connection that is not encrypted.");
}

SpeechEngines::SpeechEngines(Services services)
    : services_(std::move(services)),
      consent_(services_.defaults),
      vosk_(services_.log, VoskService::usualLibraries(services_.dataFolder),
            VoskModels::usualFolders(services_.dataFolder)),
      server_(
          {.log = services_.log,
           .defaults = services_.defaults,
           .queue = services_.queue,
           .secrets = services_.secrets,
           .failedAudioFolder = services_.dataFolder + "/tovik-record/failed-audio",
           .isAllowed = [this](const ServerAddress& server) { return consent_.isAllowed(server); },
           .embedded = [this](const std::string& locale) { return pocketSphinx().makeRecognizer(locale); }}) {
    const auto chosen = services_.defaults.string(kEngineKey);
    if (chosen && *chosen != "auto" && order().size() > 1) {
        services_.log.logLine("[TovikVoice] There is no speech engine \"" + *chosen +
                              "\"; the setting platform.speech.engine counts as \"auto\"");
    }
}

std::vector<SpeechEngines::Engine> SpeechEngines::order() const {
    const auto chosen = services_.defaults.string(kEngineKey).value_or("auto");
    if (chosen == "vosk") {
        return {Engine::vosk};
    }
    if (chosen == "server") {
        return {Engine::server};
    }
    if (chosen == "pocketsphinx") {
        return {Engine::pocketSphinx};
    }
    return {Engine::vosk, Engine::server, Engine::pocketSphinx};
}

bool SpeechEngines::isIn(Engine engine) const {
    const auto engines = order();
    return std::find(engines.begin(), engines.end(), engine) != engines.end();
}

PocketSphinxService& SpeechEngines::pocketSphinx() {
    if (!pocketSphinx_) {
        pocketSphinx_ =
            std::make_unique<PocketSphinxService>(services_.log, pocketSphinxModel(services_.defaults));
        pocketSphinx_->prepare(contextualStrings_);
    }
    return *pocketSphinx_;
}

std::shared_ptr<SpeechRecognizer> SpeechEngines::make(Engine engine, const std::string& locale) {
    switch (engine) {
    case Engine::vosk:
        return vosk_.makeRecognizer(locale);
    case Engine::server:
        return server_.makeRecognizer(locale);
    case Engine::pocketSphinx:
        return pocketSphinx().makeRecognizer(locale);
    }
    return nullptr;
}

std::shared_ptr<SpeechRecognizer> SpeechEngines::makeRecognizer(const std::string& localeIdentifier) {
    if (!isIn(Engine::server)) {
        server_.endServer();
    }
    std::shared_ptr<SpeechRecognizer> unavailable;
    std::optional<std::string> whyServerIsAway;
    for (const auto engine : order()) {
        auto recognizer = make(engine, localeIdentifier);
        if (recognizer && recognizer->isAvailable()) {
            if (whyServerIsAway) {
                services_.log.logLine("[TovikVoice] " + *whyServerIsAway +
                                      " Another engine recognizes this dictation");
            }
            return recognizer;
        }
        if (recognizer && engine == Engine::server) {
            whyServerIsAway = server_.whyAway();
        }
        if (!unavailable) {
            unavailable = std::move(recognizer);
        }
    }
    // Nobody else knows the language, and whoever asks would take another one next.
    return whyServerIsAway ? server_.makeRecognizerThatAsksAgain(localeIdentifier) : unavailable;
}

std::string SpeechEngines::currentLocaleIdentifier() const {
    return canonicalLocaleIdentifier(localeOfEnvironment());
}

std::vector<std::string> SpeechEngines::wantedLocales() const {
    std::vector<std::string> locales;
    if (const auto chosen = services_.defaults.string(kSelectedDictationLocaleKey)) {
        locales.push_back(*chosen);
    }
    locales.push_back(currentLocaleIdentifier());
    locales.insert(locales.end(), supportedLocales().begin(), supportedLocales().end());
    return locales;
}

std::optional<SpeechEngines::Choice> SpeechEngines::choice() {
    for (const auto& locale : wantedLocales()) {
        for (const auto engine : order()) {
            const auto recognizer = make(engine, locale);
            if (recognizer && recognizer->isAvailable()) {
                return Choice{engine, locale};
            }
        }
    }
    return std::nullopt;
}

void SpeechEngines::prepare(const std::vector<std::string>& contextualStrings) {
    contextualStrings_ = contextualStrings;
    vosk_.prepare(contextualStrings);
    if (isIn(Engine::server)) {
        server_.prepare(contextualStrings);
    } else {
        server_.endServer();
    }
    if (pocketSphinx_) {
        pocketSphinx_->prepare(contextualStrings);
    }
    // Looking for it makes it load its model.
    const auto chosen = choice();
    const bool serverIsUsed = chosen && chosen->engine == Engine::server;
    if (serverIsUsed &&
        services_.defaults.boolean("platform.speech.embeddedWhenServerFails").value_or(false)) {
        static_cast<void>(pocketSphinx());
    }
}

std::string SpeechEngines::why(Engine engine) {
    switch (engine) {
    case Engine::vosk:
        return vosk_.whyUnavailable(wantedLocales().front()).value_or("");
    case Engine::server:
        return server_.whyUnavailable().value_or("");
    case Engine::pocketSphinx:
        return pocketSphinx().whyUnavailable().value_or("");
    }
    return {};
}

std::optional<std::string> SpeechEngines::whyUnavailable() {
    return choice() ? std::nullopt : std::optional(why(order().back()));
}

std::optional<ServerAddress> SpeechEngines::serverAddress() const {
    const auto settings = ServerSettings::read(services_.defaults);
    return settings && *settings && isIn(Engine::server) ? std::optional(settings->value().address)
                                                         : std::nullopt;
}

std::string SpeechEngines::consentText() const {
    const auto server = serverAddress();
    return server ? SpeechConsent::question(*server) : "";
}

bool SpeechEngines::needsConsent() {
    const auto server = serverAddress();
    if (!server || consent_.answer(*server)) {
        return false;
    }
    // Nobody is asked about a server that another engine stands in front of.
    return order().front() == Engine::server || !vosk_.serves(wantedLocales().front());
}

void SpeechEngines::answerConsent(bool isAllowed) {
    if (const auto server = serverAddress()) {
        consent_.setAnswer(*server, isAllowed);
        prepare(contextualStrings_);
    }
}

bool SpeechEngines::isRefused() {
    const auto server = serverAddress();
    return server && consent_.answer(*server) == false && !choice();
}

bool SpeechEngines::waitUntilReady(Seconds atMost) {
    const auto chosen = choice();
    if (!chosen) {
        return false;
    }
    switch (chosen->engine) {
    case Engine::vosk:
        return vosk_.waitUntilReady(chosen->locale, atMost);
    case Engine::server:
        return true;
    case Engine::pocketSphinx:
        return pocketSphinx().waitUntilReady(atMost);
    }
    return false;
}

} // namespace tovik

// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Speech/Translation/TranslationManager.h"

#include "Speech/Text/Unicode.h"

#include <algorithm>
#include <memory>
#include <utility>

namespace tovik {

namespace {

constexpr std::size_t kLogPreviewLength = 50;
constexpr Seconds kBridgeLifetime{10.0};

Error noVisibleWindow() {
    return {"TovikVoice", -1, "No visible window for translation bridge"};
}

std::optional<TranslationLanguage> languageOfTable(const std::string& id) {
    const auto& table = availableTranslationLanguages();
    const auto found = std::ranges::find(table, id, &TranslationLanguage::id);
    return found == table.end() ? std::nullopt : std::optional(*found);
}

/// One text on its way through a service: makes a single outcome of the sessions that the service hands over,
/// once, several times or never.
class TranslationTaskBridge : public std::enable_shared_from_this<TranslationTaskBridge> {
public:
    using Continuation = std::function<void(const Result<std::string>&)>;

    TranslationTaskBridge(std::string text, Continuation continuation)
        : text_(std::move(text)),
          continuation_(std::move(continuation)) {}

    /// Has the session translate the text, unless there is an outcome already.
    void receive(const TranslationSession& session) {
        if (!hasResumed_) {
            session(text_, [self = shared_from_this()](const Result<std::string>& outcome) {
                self->resume(outcome);
            });
        }
    }

    /// The first outcome counts, all later ones are dropped.
    void resume(const Result<std::string>& outcome) {
        if (!std::exchange(hasResumed_, true)) {
            std::exchange(continuation_, nullptr)(outcome);
        }
    }

private:
    const std::string text_;
    Continuation continuation_;
    bool hasResumed_ = false;
};

} // namespace

TranslationManager::TranslationManager(const Ports& ports) : ports_(ports) {}

bool TranslationManager::isEnabled() const {
    return ports_.defaults.boolean(kTranslationEnabledKey).value_or(false);
}

std::string TranslationManager::sourceLanguageCode() const {
    return ports_.defaults.string(kTranslationSourceLanguageKey).value_or(kDefaultSourceLanguage);
}

std::string TranslationManager::targetLanguageCode() const {
    return ports_.defaults.string(kTranslationTargetLanguageKey).value_or(kDefaultTargetLanguage);
}

std::optional<TranslationLanguage> TranslationManager::sourceLanguage() const {
    return languageOfTable(sourceLanguageCode());
}

std::optional<TranslationLanguage> TranslationManager::targetLanguage() const {
    return languageOfTable(targetLanguageCode());
}

TranslationPair TranslationManager::chosenPair() const {
    return {sourceLanguageCode(), targetLanguageCode()};
}

void TranslationManager::translate(const std::string& text, Completion completion) {
    const auto pair = chosenPair();
    if (!isEnabled() || text.empty() || pair.source == pair.target) {
        completion(std::nullopt);
        return;
    }
    if (const auto reason = whyUnavailable()) {
        ports_.log.logLine("[TovikVoice] Translation requires macOS 15+");
        ports_.log.logLine("[TovikVoice] " + *reason);
        completion(std::nullopt);
        return;
    }
    ports_.queue.async(lifetime_.guard(
        [this, text, completion = std::move(completion)] { performTranslation(text, completion); }));
}

void TranslationManager::performTranslation(const std::string& text, const Completion& completion) {
    const auto pair = chosenPair();
    ports_.service.availability(
        pair,
        lifetime_.guard([this, text, pair, completion](const Result<TranslationAvailability>& availability) {
            if (!availability) {
                finish(text, pair, availability.error(), completion);
            } else if (admit(pair, availability.value())) {
                requestTranslation(text, pair, completion);
            } else {
                completion(std::nullopt);
            }
        }));
}

bool TranslationManager::admit(const TranslationPair& pair, TranslationAvailability availability) {
    switch (availability) {
    case TranslationAvailability::supported:
        ports_.log.logLine("[TovikVoice] Language pair supported but may need download. "
                           "Proceeding — system will prompt if needed.");
        return true;
    case TranslationAvailability::unsupported:
        ports_.log.logLine("[TovikVoice] Language pair " + pair.source + " → " + pair.target +
                           " not supported");
        return false;
    case TranslationAvailability::installed:
        break;
    }
    return true;
}

void TranslationManager::requestTranslation(const std::string& text, const TranslationPair& pair,
                                            const Completion& completion) {
    const auto bridge = std::make_shared<TranslationTaskBridge>(
        text, lifetime_.guard([this, text, pair, completion](const Result<std::string>& outcome) {
            finish(text, pair, outcome, completion);
        }));
    auto offer = ports_.service.offerSessions(
        pair, [bridge](const TranslationSession& session) { bridge->receive(session); });
    if (!offer) {
        bridge->resume(noVisibleWindow());
        return;
    }
    // The bridge is on offer for its time, whatever has come of it by then.
    hostings_.push_back(std::move(*offer));
    ports_.queue.asyncAfter(kBridgeLifetime, lifetime_.guard([this] { hostings_.pop_front(); }));
}

void TranslationManager::finish(const std::string& text, const TranslationPair& pair,
                                const Result<std::string>& outcome, const Completion& completion) {
    if (!outcome) {
        ports_.log.logLine("[TovikVoice] Translation error: " + outcome.error().description);
        completion(std::nullopt);
        return;
    }
    ports_.log.logLine("[TovikVoice] Translated: '" + firstCharacters(text, kLogPreviewLength) + "' → '" +
                       firstCharacters(outcome.value(), kLogPreviewLength) + "'");
    completion(TranslationResult{text, outcome.value(), pair.source, pair.target});
}

} // namespace tovik

// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/MainQueue.h"
#include "Platform/Subscription.h"
#include "Platform/SystemLog.h"
#include "Platform/TranslationService.h"
#include "Platform/UserDefaults.h"

#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace tovik {

/// A language to translate from or into.
struct TranslationLanguage {
    /// As translation services know it.
    std::string id;
    /// As the user reads it.
    std::string name;

    bool operator==(const TranslationLanguage&) const = default;
};

/// The languages that the user can choose, by name.
[[nodiscard]] inline const std::vector<TranslationLanguage>& availableTranslationLanguages() {
    static const std::vector<TranslationLanguage> languages{
        {"ar", "Arabic"},
        {"zh-Hans", "Chinese (Simplified)"},
        {"zh-Hant", "Chinese (Traditional)"},
        {"nl", "Dutch"},
        {"en", "English"},
        {"fr", "French"},
        {"de", "German"},
        {"hi", "Hindi"},
        {"id", "Indonesian"},
        {"it", "Italian"},
        {"ja", "Japanese"},
        {"ko", "Korean"},
        {"pl", "Polish"},
        {"pt-BR", "Portuguese (Brazil)"},
        {"ru", "Russian"},
        {"es", "Spanish"},
        {"th", "Thai"},
        {"tr", "Turkish"},
        {"uk", "Ukrainian"},
        {"vi", "Vietnamese"},
    };
    return languages;
}

inline constexpr const char* kTranslationEnabledKey = "TranslationEnabled";
inline constexpr const char* kTranslationSourceLanguageKey = "TranslationSourceLanguage";
inline constexpr const char* kTranslationTargetLanguageKey = "TranslationTargetLanguage";
/// What counts while the user has chosen no language.
inline constexpr const char* kDefaultSourceLanguage = "en";
inline constexpr const char* kDefaultTargetLanguage = "es";

/// Has transcripts translated between the languages that the user chose. A failure costs the translation and
/// never the text: the completion gets no result, and the log says why. Main thread.
class TranslationManager : public TextTranslator {
public:
    struct Ports {
        MainQueue& queue;
        SystemLog& log;
        UserDefaults& defaults;
        TranslationService& service;
    };

    explicit TranslationManager(const Ports& ports);

    [[nodiscard]] const std::vector<TranslationLanguage>& availableLanguages() const {
        return availableTranslationLanguages();
    }

    [[nodiscard]] std::optional<std::string> whyUnavailable() const override {
        return ports_.service.whyUnavailable();
    }
    [[nodiscard]] bool isAvailable() const { return !whyUnavailable(); }

    /// Read from the user defaults at each use.
    [[nodiscard]] bool isEnabled() const;
    [[nodiscard]] std::string sourceLanguageCode() const;
    [[nodiscard]] std::string targetLanguageCode() const;

    /// The stored codes as entries of the table; nothing for a code that is not in it.
    [[nodiscard]] std::optional<TranslationLanguage> sourceLanguage() const;
    [[nodiscard]] std::optional<TranslationLanguage> targetLanguage() const;

    void translate(const std::string& text,
                   std::function<void(const std::optional<TranslationResult>&)> completion) override;

private:
    using Completion = std::function<void(const std::optional<TranslationResult>&)>;

    [[nodiscard]] TranslationPair chosenPair() const;
    void performTranslation(const std::string& text, const Completion& completion);
    /// False: the pair cannot be translated.
    [[nodiscard]] bool admit(const TranslationPair& pair, TranslationAvailability availability);
    void requestTranslation(const std::string& text, const TranslationPair& pair,
                            const Completion& completion);
    void finish(const std::string& text, const TranslationPair& pair, const Result<std::string>& outcome,
                const Completion& completion);

    Ports ports_;
    /// What the bridges of the last ten seconds are on offer by, the oldest first.
    std::deque<Subscription> hostings_;
    Lifetime lifetime_;
};

} // namespace tovik

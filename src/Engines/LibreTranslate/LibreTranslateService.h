// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Engines/LibreTranslate/JsonTransfer.h"
#include "Engines/LibreTranslate/ServerLanguages.h"
#include "Platform/Lifetime.h"
#include "Platform/MainQueue.h"
#include "Platform/SecretStore.h"
#include "Platform/SystemLog.h"
#include "Platform/TranslationService.h"
#include "Platform/UserDefaults.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace tovik {

/// Translates on the server that the user default "platform.translation.url" names, which may run on this
/// machine, on the local network or anywhere. Where the server wants a key, that is the user default
/// "platform.translation.apiKey" or the desktop's secret "platform.translation.apiKey"; it is sent over
/// encrypted connections and to this machine only. Main thread, with an event loop.
class LibreTranslateService : public TranslationService {
public:
    struct Ports {
        MainQueue& queue;
        SystemLog& log;
        const UserDefaults& defaults;
        SecretStore& secrets;
    };

    explicit LibreTranslateService(const Ports& ports);

    /// Whether the user named a server at all.
    [[nodiscard]] bool isChosen() const;

    /// A server that is named counts as there; whether it answers shows when it is needed.
    [[nodiscard]] std::optional<std::string> whyUnavailable() const override;
    /// The server is asked for its languages once.
    void availability(const TranslationPair& pair,
                      std::function<void(const Result<TranslationAvailability>&)> completion) override;
    [[nodiscard]] std::optional<Subscription> offerSessions(const TranslationPair& pair,
                                                            SessionHandler handler) override;

private:
    using LanguagesCompletion = std::function<void(const Result<ServerLanguages>&)>;
    using KeyCompletion = std::function<void(const std::optional<std::string>&)>;
    using TextCompletion = std::function<void(const Result<std::string>&)>;

    [[nodiscard]] std::string url() const;
    void fetchLanguages(LanguagesCompletion completion);
    void languagesCame(const std::string& url, const Result<JsonTransfer::Answer>& answer);
    void fetchKey(KeyCompletion completion);
    void translate(const TranslationPair& pair, const std::string& text, TextCompletion completion);
    void send(const TranslationPair& codes, const std::string& text, const std::optional<std::string>& key,
              TextCompletion completion);
    [[nodiscard]] bool mayHaveKey(const QUrl& server) const;
    [[nodiscard]] Result<std::string> textOf(const Result<JsonTransfer::Answer>& answer);

    Ports ports_;
    JsonTransfer transfer_;
    /// Of the server at languagesUrl_.
    std::optional<ServerLanguages> languages_;
    std::string languagesUrl_;
    std::vector<LanguagesCompletion> waiting_;
    /// What the secret store answered, which may be that there is none.
    std::optional<std::optional<std::string>> secretKey_;
    Lifetime lifetime_;
};

} // namespace tovik

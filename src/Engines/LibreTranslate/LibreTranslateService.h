// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Engines/Http/HttpClient.h"
#include "Engines/Http/WebAddress.h"
#include "Platform/MainQueue.h"
#include "Platform/Subscription.h"
#include "Platform/SystemLog.h"
#include "Platform/TranslationService.h"
#include "Platform/UserDefaults.h"

#include <functional>
#include <map>
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace tovik {

/// What a server translates: its own language codes, and those that each can be translated into.
class ServerLanguages {
public:
    /// Nothing when the answer to GET /languages makes no sense.
    [[nodiscard]] static std::optional<ServerLanguages> read(const nlohmann::json& answer);

    /// The pair in the server's codes; nothing when it does not translate it.
    [[nodiscard]] std::optional<TranslationPair> codesFor(const TranslationPair& pair) const;

private:
    /// A server may leave out the targets: then every language is one.
    std::map<std::string, std::optional<std::set<std::string>>> targets_;
};

/// Translates on the server that the user default "platform.translation.url" names, which may run on this
/// machine, on the local network or anywhere. Where the server wants a key, that is the user default
/// "platform.translation.apiKey" or the desktop's secret "platform.translation.apiKey"; it is sent over
/// encrypted connections and to this machine only. Main thread.
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

    using AnswerCompletion = std::function<void(const Result<HttpResponse>&)>;
    struct Question {
        AnswerCompletion completion;
        Subscription transfer;
        Subscription timeLimit;
    };

    [[nodiscard]] std::string url() const;
    /// The address of one of the server's functions, such as "/languages".
    [[nodiscard]] std::string urlOf(const std::string& function) const;
    void ask(HttpRequest request, std::size_t textSize, AnswerCompletion completion);
    void answered(int id, const HttpOutcome& outcome);
    void fetchLanguages(LanguagesCompletion completion);
    void languagesCame(const std::string& url, const Result<HttpResponse>& answer);
    void fetchKey(KeyCompletion completion);
    void translate(const TranslationPair& pair, const std::string& text, TextCompletion completion);
    void send(const TranslationPair& codes, const std::string& text, const std::optional<std::string>& key,
              TextCompletion completion);
    [[nodiscard]] bool mayHaveKey() const;
    [[nodiscard]] Result<std::string> textOf(const Result<HttpResponse>& answer);

    Ports ports_;
    HttpClient http_;
    int lastQuestion_ = 0;
    std::map<int, Question> questions_;
    /// Of the server at languagesUrl_.
    std::optional<ServerLanguages> languages_;
    std::string languagesUrl_;
    std::vector<LanguagesCompletion> waiting_;
    /// What the secret store answered, which may be that there is none.
    std::optional<std::optional<std::string>> secretKey_;
    Lifetime lifetime_;
};

} // namespace tovik

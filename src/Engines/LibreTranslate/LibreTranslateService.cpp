// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Engines/LibreTranslate/LibreTranslateService.h"

#include "Engines/Http/SecretTransport.h"

#include <algorithm>
#include <memory>
#include <utility>

namespace tovik {

namespace {

constexpr auto kUrlKey = "platform.translation.url";
constexpr auto kApiKey = "platform.translation.apiKey";
/// The desktop may ask the user to unlock the key ring. A dictation does not wait for that any longer; the
/// next one has the key.
constexpr Seconds kKeyTimeLimit{3.0};

Error serverError(int code, const std::string& sentence) {
    return {"TranslationServer", code, sentence};
}

Error refusal(int status) {
    const auto number = std::to_string(status);
    if (status == 401 || status == 403) {
        return serverError(status, "The translation server refuses the key, or wants one (" + number + ").");
    }
    if (status == 429) {
        return serverError(status, "The translation server has had too many requests (" + number + ").");
    }
    if (status < 400) {
        return serverError(status, "The translation server has moved (" + number + ").");
    }
    return serverError(status, "The translation server answered with error " + number + ".");
}

Error nonsense() {
    return serverError(2, "The translation server gave an answer that makes no sense.");
}

QUrl addressOf(const std::string& url, const char* path) {
    return QUrl(QString::fromStdString(url) + path);
}

} // namespace

LibreTranslateService::LibreTranslateService(const Ports& ports) : ports_(ports), transfer_(ports.queue) {}

std::string LibreTranslateService::url() const {
    auto url = ports_.defaults.string(kUrlKey).value_or("");
    while (url.ends_with('/')) {
        url.pop_back();
    }
    return url;
}

bool LibreTranslateService::isChosen() const {
    return !url().empty();
}

std::optional<std::string> LibreTranslateService::whyUnavailable() const {
    if (!isChosen()) {
        return "No translation server is named in the setting platform.translation.url.";
    }
    const auto address = addressOf(url(), "");
    if (!address.isValid() || address.host().isEmpty() ||
        (address.scheme() != "http" && address.scheme() != "https")) {
        return "The setting platform.translation.url is no web address.";
    }
    return std::nullopt;
}

void LibreTranslateService::availability(
    const TranslationPair& pair, std::function<void(const Result<TranslationAvailability>&)> completion) {
    fetchLanguages([pair, completion = std::move(completion)](const Result<ServerLanguages>& languages) {
        if (!languages) {
            completion(languages.error());
            return;
        }
        completion(languages.value().codesFor(pair) ? TranslationAvailability::installed
                                                    : TranslationAvailability::unsupported);
    });
}

std::optional<Subscription> LibreTranslateService::offerSessions(const TranslationPair& pair,
                                                                 SessionHandler handler) {
    TranslationSession session =
        lifetime_.guard([this, pair](const std::string& text, TextCompletion completion) {
            translate(pair, text, std::move(completion));
        });
    return ports_.queue.after(
        Seconds(0), [session = std::move(session), handler = std::move(handler)] { handler(session); });
}

void LibreTranslateService::fetchLanguages(LanguagesCompletion completion) {
    const auto server = url();
    if (languages_ && languagesUrl_ == server) {
        ports_.queue.async(lifetime_.guard(
            [languages = *languages_, completion = std::move(completion)] { completion(languages); }));
        return;
    }
    const bool isAskedAlready = !waiting_.empty() && languagesUrl_ == server;
    languagesUrl_ = server;
    waiting_.push_back(std::move(completion));
    if (!isAskedAlready) {
        languages_.reset();
        transfer_.get(
            addressOf(server, "/languages"),
            [this, server](const Result<JsonTransfer::Answer>& answer) { languagesCame(server, answer); });
    }
}

void LibreTranslateService::languagesCame(const std::string& url,
                                          const Result<JsonTransfer::Answer>& answer) {
    if (url != languagesUrl_) {
        return;
    }
    auto outcome = [&]() -> Result<ServerLanguages> {
        if (!answer) {
            return answer.error();
        }
        if (answer.value().status >= 300) {
            return refusal(answer.value().status);
        }
        const auto languages = ServerLanguages::read(answer.value().content);
        return languages ? Result<ServerLanguages>(*languages) : nonsense();
    }();
    if (outcome) {
        languages_ = outcome.value();
    }
    for (const auto& completion : std::exchange(waiting_, {})) {
        completion(outcome);
    }
}

void LibreTranslateService::fetchKey(KeyCompletion completion) {
    const auto fromDefaults = ports_.defaults.string(kApiKey);
    if (fromDefaults || secretKey_) {
        completion(fromDefaults ? fromDefaults : *secretKey_);
        return;
    }
    // Whatever comes first: the answer, or the end of patience.
    const auto once = std::make_shared<KeyCompletion>(std::move(completion));
    const auto answer = [once](const std::optional<std::string>& key) {
        if (const auto waiting = std::exchange(*once, nullptr)) {
            waiting(key);
        }
    };
    ports_.queue.asyncAfter(kKeyTimeLimit, [answer] { answer(std::nullopt); });
    ports_.secrets.lookUp(
        kApiKey, lifetime_.guard([this, answer](const Result<std::optional<std::string>>& found) {
            // Many servers want no key: where the desktop has no store, they shall work all the same.
            if (!found) {
                ports_.log.logLine("[TovikVoice] Translating without a key. " + found.error().description);
            }
            secretKey_ = found ? found.value() : std::nullopt;
            answer(*secretKey_);
        }));
}

void LibreTranslateService::translate(const TranslationPair& pair, const std::string& text,
                                      TextCompletion completion) {
    fetchLanguages(lifetime_.guard(
        [this, pair, text, completion = std::move(completion)](const Result<ServerLanguages>& languages) {
            if (!languages) {
                completion(languages.error());
                return;
            }
            const auto codes = languages.value().codesFor(pair);
            if (!codes) {
                completion(serverError(3, "The translation server does not translate this pair."));
                return;
            }
            fetchKey(lifetime_.guard(
                [this, codes = *codes, text, completion](const std::optional<std::string>& key) {
                    send(codes, text, key, completion);
                }));
        }));
}

void LibreTranslateService::send(const TranslationPair& codes, const std::string& text,
                                 const std::optional<std::string>& key, TextCompletion completion) {
    nlohmann::json content{
        {"q", text}, {"source", codes.source}, {"target", codes.target}, {"format", "text"}};
    const auto server = addressOf(url(), "/translate");
    if (key && mayHaveKey(server)) {
        content["api_key"] = *key;
    }
    transfer_.post(server, content,
                   [this, completion = std::move(completion)](const Result<JsonTransfer::Answer>& answer) {
                       completion(textOf(answer));
                   });
}

bool LibreTranslateService::mayHaveKey(const QUrl& server) const {
    const bool isSafe =
        isSafeForKeys(server.scheme() == "https", server.host(QUrl::FullyEncoded).toStdString());
    if (!isSafe) {
        ports_.log.logLine("[TovikVoice] The translation server's key is not sent, since the connection to " +
                           server.host(QUrl::FullyEncoded).toStdString() + " is not encrypted");
    }
    return isSafe;
}

Result<std::string> LibreTranslateService::textOf(const Result<JsonTransfer::Answer>& answer) {
    if (!answer) {
        return answer.error();
    }
    const auto& [status, content] = answer.value();
    if (status == 401 || status == 403) {
        // The user may put another key into the store.
        secretKey_.reset();
    }
    if (status >= 300) {
        return refusal(status);
    }
    if (!content.is_object() || !content.contains("translatedText") ||
        !content["translatedText"].is_string()) {
        return nonsense();
    }
    return content["translatedText"].get<std::string>();
}

} // namespace tovik

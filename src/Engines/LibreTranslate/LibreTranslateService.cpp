// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Engines/LibreTranslate/LibreTranslateService.h"

#include <memory>
#include <nlohmann/json.hpp>
#include <utility>

namespace tovik {

namespace {

constexpr auto kUrlKey = "platform.translation.url";
constexpr auto kApiKey = "platform.translation.apiKey";
/// The desktop may ask the user to unlock the key ring. A dictation does not wait for that any longer; the
/// next one has the key.
constexpr Seconds kKeyTimeLimit{3.0};
/// For an answer, and what a longer text gets besides.
constexpr Seconds kTimeLimit{10.0};
constexpr double kBytesForOneMoreSecond = 1000;
/// Far beyond any list of languages, and any translation of a text.
constexpr std::uint64_t kLongestAnswer = 1 << 20;
constexpr std::uint64_t kMostBytesForOne = 16;

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
    return serverError(2, "The translation server gave an answer that cannot be understood.");
}

Error noAnswer(const HttpFailure& failure) {
    const auto because = [](const std::string& reason) {
        return serverError(1, "The translation server gave no answer: " + reason);
    };
    switch (failure.kind) {
    case HttpFailure::Kind::timedOut:
        return because("it took too long.");
    case HttpFailure::Kind::tooLong:
        return because("it was too long.");
    default:
        return because("it " + failure.description + ".");
    }
}

/// Servers of different ages call the same language differently.
std::vector<std::string> codesOf(const std::string& language) {
    if (language == "zh-Hans") {
        return {"zh-Hans", "zh"};
    }
    if (language == "zh-Hant") {
        return {"zh-Hant", "zt"};
    }
    if (language == "pt-BR") {
        return {"pt-BR", "pb", "pt"};
    }
    return {language};
}

} // namespace

std::optional<ServerLanguages> ServerLanguages::read(const nlohmann::json& answer) {
    if (!answer.is_array()) {
        return std::nullopt;
    }
    ServerLanguages languages;
    for (const auto& entry : answer) {
        if (!entry.is_object() || !entry.contains("code") || !entry["code"].is_string()) {
            return std::nullopt;
        }
        auto& targets = languages.targets_[entry["code"].get<std::string>()];
        if (!entry.contains("targets") || !entry["targets"].is_array()) {
            continue;
        }
        targets.emplace();
        for (const auto& target : entry["targets"]) {
            if (target.is_string()) {
                targets->insert(target.get<std::string>());
            }
        }
    }
    return languages;
}

std::optional<TranslationPair> ServerLanguages::codesFor(const TranslationPair& pair) const {
    for (const auto& source : codesOf(pair.source)) {
        const auto found = targets_.find(source);
        if (found == targets_.end()) {
            continue;
        }
        for (const auto& target : codesOf(pair.target)) {
            if (found->second ? found->second->contains(target) : targets_.contains(target)) {
                return TranslationPair{source, target};
            }
        }
    }
    return std::nullopt;
}

LibreTranslateService::LibreTranslateService(const Ports& ports) : ports_(ports) {}

std::string LibreTranslateService::url() const {
    auto url = ports_.defaults.string(kUrlKey).value_or("");
    while (url.ends_with('/')) {
        url.pop_back();
    }
    return url;
}

std::string LibreTranslateService::urlOf(const std::string& function) const {
    const auto address = WebAddress::parse(url());
    return address ? address->url(address->path + function) : url() + function;
}

bool LibreTranslateService::isChosen() const {
    return !url().empty();
}

std::optional<std::string> LibreTranslateService::whyUnavailable() const {
    if (!isChosen()) {
        return "No translation server is named in the setting platform.translation.url.";
    }
    if (!WebAddress::parse(url())) {
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

/// textSize: of what is to be translated; a long text may take longer and have a longer answer.
void LibreTranslateService::ask(HttpRequest request, std::size_t textSize, AnswerCompletion completion) {
    const auto id = ++lastQuestion_;
    request.headers = {"Accept: application/json"};
    // The queue's clock decides, for everything together.
    constexpr auto kUnlimited = HttpLimits::unlimited;
    request.limits = {.connect = kUnlimited,
                      .stall = kUnlimited,
                      .firstByte = kUnlimited,
                      .answer = kUnlimited,
                      .mostBytes = kLongestAnswer + kMostBytesForOne * textSize};
    const auto limit = kTimeLimit + Seconds(static_cast<double>(textSize) / kBytesForOneMoreSecond);
    auto here = lifetime_.guard([this, id](const HttpOutcome& outcome) { answered(id, outcome); });
    auto transfer = http_.send(std::move(request), [&queue = ports_.queue, here](const HttpOutcome& outcome) {
        queue.async([here, outcome]() mutable { here(outcome); });
    });
    auto timeLimit = ports_.queue.after(limit, [this, id] {
        answered(id, HttpFailure{HttpFailure::Kind::timedOut, "took too long"});
    });
    questions_[id] = {std::move(completion), std::move(transfer), std::move(timeLimit)};
}

void LibreTranslateService::answered(int id, const HttpOutcome& outcome) {
    auto question = questions_.extract(id);
    if (question.empty()) {
        return;
    }
    question.mapped().transfer.end();
    question.mapped().timeLimit.end();
    const auto* const response = std::get_if<HttpResponse>(&outcome);
    question.mapped().completion(response != nullptr ? Result<HttpResponse>(*response)
                                                     : noAnswer(std::get<HttpFailure>(outcome)));
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
        HttpRequest request;
        request.url = urlOf("/languages");
        ask(std::move(request), 0,
            [this, server](const Result<HttpResponse>& answer) { languagesCame(server, answer); });
    }
}

void LibreTranslateService::languagesCame(const std::string& url, const Result<HttpResponse>& answer) {
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
        const auto languages = ServerLanguages::read(answer.value().json());
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
    if (key && mayHaveKey()) {
        content["api_key"] = *key;
    }
    HttpRequest request;
    request.url = urlOf("/translate");
    request.body = content.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
    request.contentType = "application/json";
    ask(std::move(request), text.size(),
        [this, completion = std::move(completion)](const Result<HttpResponse>& answer) {
            completion(textOf(answer));
        });
}

bool LibreTranslateService::mayHaveKey() const {
    const auto address = WebAddress::parse(url());
    if (address && !address->isSafeForKeys()) {
        ports_.log.logLine("[TovikVoice] The translation server's key is not sent, since the connection to " +
                           address->host + " is not encrypted");
    }
    return address && address->isSafeForKeys();
}

Result<std::string> LibreTranslateService::textOf(const Result<HttpResponse>& answer) {
    if (!answer) {
        return answer.error();
    }
    const auto status = answer.value().status;
    if (status == 401 || status == 403) {
        // The user may put another key into the store.
        secretKey_.reset();
    }
    if (status >= 300) {
        return refusal(status);
    }
    const auto content = answer.value().json();
    if (!content.is_object() || !content.contains("translatedText") ||
        !content["translatedText"].is_string()) {
        return nonsense();
    }
    auto text = content["translatedText"].get<std::string>();
    // Nothing in place of what was said would be pasted as if it were a translation.
    return text.empty() ? Result<std::string>(nonsense()) : std::move(text);
}

} // namespace tovik

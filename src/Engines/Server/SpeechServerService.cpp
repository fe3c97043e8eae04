// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Engines/Server/SpeechServerService.h"

#include "Audio/RecognitionRequest.h"
#include "Engines/Host/LocaleIdentifier.h"
#include "Engines/Host/RecognitionError.h"
#include "Engines/Host/RequestTask.h"

#include <algorithm>
#include <utility>

namespace tovik {

namespace {

/// A server that is away is looked for this often at most.
constexpr std::chrono::seconds kCheckEvery{5};
constexpr int kServerError = 500;

/// Keys that were copied or came through a pipe may have a line break at their end.
std::string withoutOuterSpace(const std::string& text) {
    constexpr auto kSpace = " \t\r\n";
    const auto begin = text.find_first_not_of(kSpace);
    return begin == std::string::npos ? "" : text.substr(begin, text.find_last_not_of(kSpace) - begin + 1);
}

/// All of the sound at once.
std::shared_ptr<RecognitionRequest> requestWith(const RecognitionSettings& settings,
                                                const std::vector<std::int16_t>& samples) {
    const double seconds = static_cast<double>(samples.size()) / kTranscriptionRate;
    auto request = std::make_shared<RecognitionRequest>(settings, kTranscriptionRate, seconds + 1);
    std::vector<float> sound(samples.size());
    std::transform(samples.begin(), samples.end(), sound.begin(),
                   [](std::int16_t sample) { return static_cast<float>(sample) / 32768.0F; });
    request->append({sound, kTranscriptionRate});
    request->endAudio();
    return request;
}

} // namespace

class ServerRecognizer : public SpeechRecognizer {
public:
    ServerRecognizer(SpeechServerService& service, std::string locale, bool asksAgain)
        : service_(service),
          locale_(std::move(locale)),
          asksAgain_(asksAgain) {}

    [[nodiscard]] bool isAvailable() const override {
        return asksAgain_ ? !service_.whyNotToAsk() : !service_.whyUnavailable();
    }

    [[nodiscard]] std::unique_ptr<RecognitionTask> startTask(std::shared_ptr<RecognitionRequest> request,
                                                             RecognitionHandler handler) override {
        auto task = std::make_unique<RequestTask>(request);
        service_.start(std::make_shared<Utterance>(std::move(request), std::move(handler)), locale_);
        return task;
    }

private:
    SpeechServerService& service_;
    const std::string locale_;
    const bool asksAgain_;
};

std::optional<std::string> SpeechServerService::Health::whyBad() const {
    const std::lock_guard lock(mutex_);
    return whyBad_;
}

bool SpeechServerService::Health::set(std::optional<std::string> whyBad) {
    const std::lock_guard lock(mutex_);
    const bool isNews = whyBad && whyBad != whyBad_;
    whyBad_ = std::move(whyBad);
    return isNews;
}

bool SpeechServerService::Health::claimCheck() {
    const std::lock_guard lock(mutex_);
    const auto now = std::chrono::steady_clock::now();
    if (checked_ && now - *checked_ < kCheckEvery) {
        return false;
    }
    checked_ = now;
    return true;
}

SpeechServerService::SpeechServerService(Services services)
    : services_(std::move(services)),
      failedAudio_(services_.failedAudioFolder),
      process_(services_.log) {}

SpeechServerService::~SpeechServerService() {
    // All at once, so that the end takes no longer for several.
    for (auto& dictation : dictations_) {
        dictation.cancel();
    }
    dictations_.clear();
    for (auto& refusal : refusals_) {
        refusal.join();
    }
}

ServerDictation::Services SpeechServerService::dictationServices() {
    auto& queue = services_.queue;
    auto elsewhere =
        lifetime_.guard([this](const ServerDictation::Job& job, const std::vector<std::int16_t>& samples) {
            recognizeElsewhere(job, samples);
        });
    auto lookUp = lifetime_.guard([this] { lookUpKey(); });
    auto clearUp = lifetime_.guard([this] {
        dictations_.remove_if([](const ServerDictation& dictation) { return dictation.isOver(); });
    });
    return {.log = services_.log,
            .failedAudio = failedAudio_,
            .key = [this](const ServerSettings& settings) { return keyFor(settings); },
            .report = [this](std::optional<std::string> whyBad) { health_.set(std::move(whyBad)); },
            .keyWasRefused = [&queue, lookUp] { queue.async(lookUp); },
            .recognizeElsewhere =
                [&queue, elsewhere](const ServerDictation::Job& job, std::vector<std::int16_t> samples) {
                    queue.async([elsewhere, job, samples = std::move(samples)]() mutable {
                        elsewhere(job, samples);
                    });
                },
            .over = [&queue, clearUp] { queue.async(clearUp); }};
}

std::shared_ptr<SpeechRecognizer> SpeechServerService::makeRecognizer(const std::string& localeIdentifier) {
    const auto locale = servedLocale(localeIdentifier);
    return locale ? std::make_shared<ServerRecognizer>(*this, *locale, false) : nullptr;
}

std::shared_ptr<SpeechRecognizer>
SpeechServerService::makeRecognizerThatAsksAgain(const std::string& localeIdentifier) {
    const auto locale = servedLocale(localeIdentifier);
    return locale ? std::make_shared<ServerRecognizer>(*this, *locale, true) : nullptr;
}

std::optional<std::string> SpeechServerService::servedLocale(const std::string& localeIdentifier) {
    const auto settings = ServerSettings::read(services_.defaults);
    if (!settings || !*settings) {
        endServer();
        return std::nullopt;
    }
    if (localeIdentifier.empty()) {
        return std::nullopt;
    }
    auto locale = canonicalLocaleIdentifier(localeIdentifier);
    const auto& served = settings->value().locales;
    if (std::find(served.begin(), served.end(), locale) == served.end()) {
        return std::nullopt;
    }
    return locale;
}

std::string SpeechServerService::currentLocaleIdentifier() const {
    return canonicalLocaleIdentifier(localeOfEnvironment());
}

void SpeechServerService::prepare(const std::vector<std::string>& /*contextualStrings*/) {
    const auto settings = ServerSettings::read(services_.defaults);
    if (!settings || !*settings) {
        endServer();
    } else if (services_.isAllowed(settings->value().address) && health_.claimCheck()) {
        check(settings->value());
    }
}

std::optional<std::string> SpeechServerService::whyNotToAsk() const {
    const auto settings = ServerSettings::read(services_.defaults);
    if (!settings) {
        return "No speech server is set: give its address in \"platform.speech.serverUrl\".";
    }
    if (!*settings) {
        return settings->error().description;
    }
    if (!services_.isAllowed(settings->value().address)) {
        return "You have not allowed that your speech is sent to " + settings->value().address.origin() + ".";
    }
    return std::nullopt;
}

std::optional<std::string> SpeechServerService::whyAway() const {
    return whyNotToAsk() ? std::nullopt : health_.whyBad();
}

std::optional<std::string> SpeechServerService::whyUnavailable() {
    if (auto why = whyNotToAsk()) {
        return why;
    }
    auto why = health_.whyBad();
    if (why && health_.claimCheck()) {
        if (const auto settings = ServerSettings::read(services_.defaults); settings && *settings) {
            check(settings->value());
        }
    }
    return why;
}

void SpeechServerService::endServer() {
    process_.need({});
}

void SpeechServerService::check(const ServerSettings& settings) {
    process_.need(settings.command);
    HttpRequest request;
    request.url = settings.address.url(settings.address.models);
    request.key = keyFor(settings);
    request.headers = {"Accept: application/json"};
    request.isStarting = !settings.command.empty();
    request.limits = {.connect = settings.connectTimeout,
                      .stall = settings.firstByteTimeout,
                      .firstByte = settings.firstByteTimeout,
                      .answer = settings.wholeTimeout,
                      .total = settings.wholeTimeout};
    check_ = http_.send(std::move(request),
                        [this, settings](const HttpOutcome& outcome) { checked(settings, outcome); });
    if (!settings.key && !hasAskedForKey_) {
        lookUpKey();
    }
}

/// On the thread of the HTTP client.
void SpeechServerService::checked(const ServerSettings& settings, const HttpOutcome& outcome) {
    std::optional<std::string> why;
    if (const auto* failure = std::get_if<HttpFailure>(&outcome)) {
        why = "The speech server " + settings.address.origin() + " " + failure->description + ".";
    } else {
        // Not every server tells its models; any other answer means that it is there.
        const auto& response = std::get<HttpResponse>(outcome);
        if (isAboutTheKey(response)) {
            dictationServices_.keyWasRefused();
        }
        if (isAboutTheKey(response) || response.status >= kServerError) {
            why = whyRefused(settings.address, response).value_or("") + ".";
        }
    }
    if (health_.set(why)) {
        services_.log.logLine("[TovikVoice] " + *why);
    }
}

void SpeechServerService::lookUpKey() {
    hasAskedForKey_ = true;
    if (services_.secrets == nullptr) {
        return;
    }
    services_.secrets->lookUp(
        kServerKeyName, lifetime_.guard([this](const Result<std::optional<std::string>>& key) {
            if (!key) {
                services_.log.logLine("[TovikVoice] The speech server's key could not be looked up: " +
                                      key.error().description);
                return;
            }
            {
                const std::lock_guard lock(keyMutex_);
                if (key.value() == keptKey_) {
                    return;
                }
                keptKey_ = key.value();
            }
            if (const auto settings = ServerSettings::read(services_.defaults); settings && *settings) {
                check(settings->value());
            }
        }));
}

/// A key is not shown to everybody on the way. Any thread.
std::string SpeechServerService::keyFor(const ServerSettings& settings) const {
    const auto fromRing = [this] {
        const std::lock_guard lock(keyMutex_);
        return keptKey_.value_or("");
    }();
    auto key = withoutOuterSpace(settings.key.value_or(fromRing));
    if (!key.empty() && !settings.address.isSafeForKeys()) {
        services_.log.logLine("[TovikVoice] The speech server's key is not sent, since the connection to " +
                              settings.address.origin() + " is not encrypted");
        return {};
    }
    const bool isClean = std::all_of(key.begin(), key.end(), [](char c) { return c > ' ' && c < '\x7f'; });
    if (!isClean) {
        services_.log.logLine(
            "[TovikVoice] The speech server's key is not sent, since it has characters that no key "
            "has");
        return {};
    }
    return key;
}

void SpeechServerService::start(std::shared_ptr<Utterance> utterance, const std::string& locale) {
    const auto read = ServerSettings::read(services_.defaults);
    if (!read || !*read || !services_.isAllowed(read->value().address)) {
        refuse(std::move(utterance), whyUnavailable().value_or(""));
        return;
    }
    const auto& settings = read->value();
    if (!settings.key && !hasAskedForKey_) {
        lookUpKey();
    }
    process_.need(settings.command);
    ServerDictation::Job job{settings, std::move(utterance), std::nullopt, locale, process_.keep()};
    if (settings.localeIsChosen) {
        job.language = locale.substr(0, locale.find('-'));
    }
    dictations_.emplace_back(std::move(job), dictationServices_);
}

/// On another thread, as all that is recognized comes.
void SpeechServerService::refuse(std::shared_ptr<Utterance> utterance, const std::string& why) {
    for (auto& refusal : refusals_) {
        refusal.join();
    }
    refusals_.clear();
    refusals_.emplace_back([utterance = std::move(utterance), why] {
        utterance->answer(recognitionError(RecognitionCode::noModel, why));
    });
}

void SpeechServerService::recognizeElsewhere(const ServerDictation::Job& job,
                                             const std::vector<std::int16_t>& samples) {
    const auto recognizer = services_.embedded ? services_.embedded(job.locale) : nullptr;
    if (!recognizer) {
        job.utterance->answer(recognitionError(
            RecognitionCode::failed, "The speech server failed and no embedded engine knows " + job.locale));
        return;
    }
    services_.log.logLine("[TovikVoice] The embedded engine recognizes the dictation instead");
    const auto task =
        recognizer->startTask(requestWith(job.utterance->request().settings(), samples),
                              [utterance = job.utterance](const std::optional<RecognitionResult>& result,
                                                          const std::optional<Error>& error) {
                                  if (result && result->isFinal) {
                                      utterance->answer(result->formattedString);
                                  } else if (result) {
                                      utterance->reportPartial(result->formattedString);
                                  } else if (error) {
                                      utterance->answer(*error);
                                  }
                              });
}

} // namespace tovik

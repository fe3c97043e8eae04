// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Engines/Server/SpeechServerService.h"

#include "Engines/Host/LocaleIdentifier.h"
#include "Engines/Host/RecognitionError.h"
#include "Engines/Host/RequestTask.h"
#include "Engines/Http/SecretTransport.h"
#include "Audio/RecognitionRequest.h"

#include <algorithm>
#include <utility>

namespace tovik {

namespace {

/// A server that is away is looked for this often at most.
constexpr std::chrono::seconds kCheckEvery{5};

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
    ServerRecognizer(SpeechServerService& service, std::string locale)
        : service_(service),
          locale_(std::move(locale)) {}

    [[nodiscard]] bool isAvailable() const override { return !service_.whyUnavailable(); }

    [[nodiscard]] std::unique_ptr<RecognitionTask> startTask(std::shared_ptr<RecognitionRequest> request,
                                                             RecognitionHandler handler) override {
        auto task = std::make_unique<RequestTask>(request);
        service_.start(std::make_shared<Utterance>(std::move(request), std::move(handler)), locale_);
        return task;
    }

private:
    SpeechServerService& service_;
    const std::string locale_;
};

SpeechServerService::SpeechServerService(Services services)
    : services_(std::move(services)),
      log_(std::make_shared<SharedLog>(services_.log)),
      threadContext_(std::make_unique<QObject>()),
      collector_(std::make_unique<SoundCollector>()) {
    threadContext_->moveToThread(&thread_);
    thread_.start();
    // What the worker asks for is done on the main thread, and only while the service is there.
    auto recogniseHere =
        lifetime_.guard([this](const ServerDictation& dictation, const std::vector<std::int16_t>& samples) {
            this->recogniseHere(dictation, samples);
        });
    auto lookUp = lifetime_.guard([this] { lookUpKey(); });
    ServerWorker::Services workerServices{
        .log = log_,
        .health = health_,
        .failedAudioFolder = services_.failedAudioFolder,
        .recogniseHere =
            [&queue = services_.queue, recogniseHere](const ServerDictation& dictation,
                                                      std::vector<std::int16_t> samples) {
                queue.async([recogniseHere, dictation, samples = std::move(samples)]() mutable {
                    recogniseHere(dictation, samples);
                });
            },
        .keyWasRefused = [&queue = services_.queue, lookUp] { queue.async(lookUp); },
    };
    QMetaObject::invokeMethod(
        threadContext_.get(),
        [this, workerServices] { worker_ = std::make_unique<ServerWorker>(workerServices); },
        Qt::BlockingQueuedConnection);
}

SpeechServerService::~SpeechServerService() {
    collector_.reset();
    QMetaObject::invokeMethod(
        threadContext_.get(), [this] { worker_.reset(); }, Qt::BlockingQueuedConnection);
    thread_.quit();
    thread_.wait();
    log_->close();
}

template <typename Work>
void SpeechServerService::onWorker(Work work) {
    QMetaObject::invokeMethod(
        threadContext_.get(),
        [this, work = std::move(work)]() mutable {
            if (worker_) {
                work(*worker_);
            }
        },
        Qt::QueuedConnection);
}

std::shared_ptr<SpeechRecognizer> SpeechServerService::makeRecognizer(const std::string& localeIdentifier) {
    const auto settings = ServerSettings::read(services_.defaults);
    if (!settings || !*settings) {
        endServer();
        return nullptr;
    }
    if (localeIdentifier.empty()) {
        return nullptr;
    }
    const auto locale = canonicalLocaleIdentifier(localeIdentifier);
    const auto& served = settings->value().locales;
    if (std::find(served.begin(), served.end(), locale) == served.end()) {
        return nullptr;
    }
    return std::make_shared<ServerRecognizer>(*this, locale);
}

std::string SpeechServerService::currentLocaleIdentifier() const {
    return canonicalLocaleIdentifier(localeOfEnvironment());
}

void SpeechServerService::prepare(const std::vector<std::string>& /*contextualStrings*/) {
    const auto settings = ServerSettings::read(services_.defaults);
    if (!settings || !*settings) {
        endServer();
    } else if (services_.isAllowed(settings->value().address) && health_->claimCheck(kCheckEvery)) {
        check(settings->value());
    }
}

std::optional<std::string> SpeechServerService::whyUnavailable() {
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
    auto why = health_->whyBad();
    if (why && health_->claimCheck(kCheckEvery)) {
        check(settings->value());
    }
    return why;
}

void SpeechServerService::endServer() {
    if (std::exchange(hasStartedServer_, false)) {
        onWorker([](ServerWorker& worker) { worker.endServer(); });
    }
}

void SpeechServerService::check(const ServerSettings& settings) {
    hasStartedServer_ = hasStartedServer_ || !settings.command.empty();
    onWorker([settings, key = keyFor(settings)](ServerWorker& worker) { worker.check(settings, key); });
    if (!settings.key && !hasAskedForKey_) {
        lookUpKey();
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
                log_->logLine("[TovikVoice] The speech server's key could not be looked up: " +
                              key.error().description);
                return;
            }
            if (key.value() == keptKey_) {
                return;
            }
            keptKey_ = key.value();
            if (const auto settings = ServerSettings::read(services_.defaults); settings && *settings) {
                check(settings->value());
            }
        }));
}

/// A key is not shown to everybody on the way.
std::string SpeechServerService::keyFor(const ServerSettings& settings) const {
    const auto key = withoutOuterSpace(settings.key.value_or(keptKey_.value_or("")));
    if (!key.empty() && !isSafeForKeys(settings.address.isEncrypted, settings.address.host)) {
        log_->logLine("[TovikVoice] The speech server's key is not sent, since the connection to " +
                      settings.address.origin() + " is not encrypted");
        return {};
    }
    const bool isClean = std::all_of(key.begin(), key.end(), [](char c) { return c > ' ' && c < '\x7f'; });
    if (!isClean) {
        log_->logLine("[TovikVoice] The speech server's key is not sent, since it has characters that no key "
                      "has");
        return {};
    }
    return key;
}

void SpeechServerService::start(std::shared_ptr<Utterance> utterance, const std::string& locale) {
    const auto settings = ServerSettings::read(services_.defaults);
    if (!settings || !*settings || !services_.isAllowed(settings->value().address)) {
        onWorker([utterance = std::move(utterance), why = whyUnavailable().value_or("")](ServerWorker&) {
            utterance->answer(recognitionError(RecognitionCode::noModel, why));
        });
        return;
    }
    ServerDictation dictation{settings->value(), keyFor(settings->value()), utterance, std::nullopt, locale};
    if (dictation.settings.localeIsChosen) {
        dictation.language = locale.substr(0, locale.find('-'));
    }
    hasStartedServer_ = hasStartedServer_ || !settings->value().command.empty();
    const auto number = ++number_;
    onWorker([number, dictation](ServerWorker& worker) { worker.begin(number, dictation); });
    // The collector is gone before the thread, so its callbacks find this object.
    collector_->collect(std::move(utterance), [this, number](Result<SoundCollector::Sound> sound) {
        onWorker([number, sound = std::move(sound)](ServerWorker& worker) mutable {
            worker.send(number, std::move(sound));
        });
    });
}

void SpeechServerService::recogniseHere(const ServerDictation& dictation,
                                        const std::vector<std::int16_t>& samples) {
    const auto recognizer = services_.embedded ? services_.embedded(dictation.locale) : nullptr;
    if (!recognizer) {
        dictation.utterance->answer(
            recognitionError(RecognitionCode::failed,
                             "The speech server failed and no embedded engine knows " + dictation.locale));
        return;
    }
    log_->logLine("[TovikVoice] The embedded engine recognises the dictation instead");
    const auto task = recognizer->startTask(
        requestWith(dictation.utterance->request().settings(), samples),
        [utterance = dictation.utterance](const std::optional<RecognitionResult>& result,
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

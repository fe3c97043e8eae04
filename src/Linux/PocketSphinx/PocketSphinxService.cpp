// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Linux/PocketSphinx/PocketSphinxService.h"

#include "Linux/PocketSphinx/LocaleIdentifier.h"
#include "Linux/PocketSphinx/PocketSphinxDecoder.h"
#include "Linux/PocketSphinx/PocketSphinxError.h"

#include <utility>

namespace tovik {

namespace {

constexpr std::string_view kLocale = "en-US";

class PocketSphinxTask : public RecognitionTask {
public:
    explicit PocketSphinxTask(std::weak_ptr<RecognitionRequest> request) : request_(std::move(request)) {}

    void finish() override {
        if (const auto request = request_.lock()) {
            request->endAudio();
        }
    }

private:
    const std::weak_ptr<RecognitionRequest> request_;
};

} // namespace

class PocketSphinxRecognizer : public SpeechRecognizer {
public:
    explicit PocketSphinxRecognizer(PocketSphinxService& service) : service_(service) {}

    [[nodiscard]] bool isAvailable() const override { return !service_.whyUnavailable(); }

    [[nodiscard]] std::unique_ptr<RecognitionTask> startTask(std::shared_ptr<RecognitionRequest> request,
                                                             RecognitionHandler handler) override {
        auto task = std::make_unique<PocketSphinxTask>(request);
        service_.start(std::make_shared<Utterance>(std::move(request), std::move(handler)));
        return task;
    }

private:
    PocketSphinxService& service_;
};

PocketSphinxService::PocketSphinxService(SystemLog& log, ModelFiles files)
    : PocketSphinxService(
          log, [files] { return files.check(); }, [files] { return PocketSphinxDecoder::load(files); },
          Limits{}) {}

PocketSphinxService::PocketSphinxService(SystemLog& log, std::function<Result<void>()> check,
                                         DecoderLoader loader, Limits limits)
    : log_(std::make_shared<SharedLog>(log)),
      check_(std::move(check)),
      loader_(std::move(loader)),
      limits_(limits) {
    if (auto usable = check_(); usable) {
        recognition_ = std::make_shared<RecognitionThread>(loader_, limits_.clock, log_);
    } else {
        missing_ = usable.error();
        log_->logLine("[TovikVoice] Speech recognition is not available: " + missing_->description);
    }
    watch_ = std::thread([this] { watch(); });
}

PocketSphinxService::~PocketSphinxService() {
    {
        const std::lock_guard lock(mutex_);
        ends_ = true;
    }
    ending_.notify_all();
    watch_.join();
    if (recognition_) {
        for (const auto& utterance : recognition_->leave(limits_.goodbye)) {
            utterance->answer(pocketSphinxError(PocketSphinxCode::ended, "Recognition was ended"));
        }
    }
    log_->close();
}

std::shared_ptr<SpeechRecognizer> PocketSphinxService::makeRecognizer(const std::string& localeIdentifier) {
    if (localeIdentifier.empty() || canonicalLocaleIdentifier(localeIdentifier) != kLocale) {
        return nullptr;
    }
    return std::make_shared<PocketSphinxRecognizer>(*this);
}

std::string PocketSphinxService::currentLocaleIdentifier() const {
    return canonicalLocaleIdentifier(localeOfEnvironment());
}

std::optional<std::string> PocketSphinxService::whyUnavailable() {
    const std::lock_guard lock(mutex_);
    if (!recognition_ && check_()) {
        missing_.reset();
        recognition_ = std::make_shared<RecognitionThread>(loader_, limits_.clock, log_);
    }
    if (!recognition_) {
        return missing_->description;
    }
    if (const auto failure = recognition_->failure()) {
        return failure->description;
    }
    return std::nullopt;
}

bool PocketSphinxService::waitUntilLoaded(Seconds atMost) {
    std::shared_ptr<RecognitionThread> recognition;
    {
        const std::lock_guard lock(mutex_);
        recognition = recognition_;
    }
    return recognition && recognition->waitUntilLoaded(atMost);
}

void PocketSphinxService::start(std::shared_ptr<Utterance> utterance) {
    std::optional<Error> missing;
    {
        const std::lock_guard lock(mutex_);
        if (recognition_) {
            recognition_->add(utterance);
            return;
        }
        missing = missing_;
    }
    utterance->answer(*missing);
}

void PocketSphinxService::watch() {
    std::unique_lock lock(mutex_);
    while (!ending_.wait_for(lock, limits_.look, [this] { return ends_; })) {
        if (recognition_ && recognition_->silentFor() > limits_.silence) {
            replaceSilentThread();
        }
    }
}

void PocketSphinxService::replaceSilentThread() {
    log_->logLine("[TovikVoice] Speech recognition does not answer: it is started anew");
    auto unanswered = recognition_->leave(Seconds(0));
    recognition_ = std::make_shared<RecognitionThread>(loader_, limits_.clock, log_);
    if (unanswered.empty()) {
        return;
    }
    unanswered.front()->answer(
        pocketSphinxError(PocketSphinxCode::notAnswering, "The recogniser does not answer"));
    unanswered.pop_front();
    for (auto& utterance : unanswered) {
        recognition_->add(std::move(utterance));
    }
}

} // namespace tovik

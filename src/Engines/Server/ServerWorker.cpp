// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Engines/Server/ServerWorker.h"

#include "Engines/Host/RecognitionError.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

namespace tovik {

namespace {

constexpr int kUnauthorized = 401;
constexpr int kForbidden = 403;
constexpr int kServerError = 500;
/// 60 dB below full scale: nobody has spoken into a microphone that heard no more.
constexpr int kAudible = 32;

bool isAudible(const std::vector<std::int16_t>& samples) {
    return std::any_of(samples.begin(), samples.end(),
                       [](std::int16_t sample) { return std::abs(int{sample}) >= kAudible; });
}

bool isSuccess(int status) {
    return status >= 200 && status < 300;
}

} // namespace

std::optional<std::string> ServerHealth::whyBad() const {
    const std::lock_guard lock(mutex_);
    return whyBad_;
}

void ServerHealth::set(std::optional<std::string> whyBad) {
    const std::lock_guard lock(mutex_);
    whyBad_ = std::move(whyBad);
}

bool ServerHealth::claimCheck(std::chrono::steady_clock::duration atMostEvery) {
    const std::lock_guard lock(mutex_);
    const auto now = std::chrono::steady_clock::now();
    if (checked_ && now - *checked_ < atMostEvery) {
        return false;
    }
    checked_ = now;
    return true;
}

ServerWorker::ServerWorker(Services services)
    : services_(std::move(services)),
      process_(services_.log, {}),
      failedAudio_(services_.failedAudioFolder) {}

ServerWorker::~ServerWorker() {
    for (auto& [number, job] : jobs_) {
        if (job.dictation.settings.keepFailedAudio && !job.samples.empty()) {
            keepAudio(job);
        }
        job.dictation.utterance->answer(recognitionError(RecognitionCode::ended, "Recognition was ended"));
    }
}

void ServerWorker::need(const std::vector<std::string>& command) {
    // Nobody would start it again for a dictation that it still works on.
    endsProcess_ = command.empty() && !jobs_.empty();
    if (!endsProcess_) {
        process_.need(command);
    }
}

// --------------------------------------------------------------------------------- availability

void ServerWorker::check(const ServerSettings& settings, const std::string& key) {
    need(settings.command);
    checkedSettings_ = settings;
    check_ = std::make_unique<Upload>(settings);
    check_->send(healthRequest(settings, key), [this](const Upload::Outcome& outcome) { checked(outcome); });
}

void ServerWorker::checked(const Upload::Outcome& outcome) {
    std::optional<std::string> why;
    if (const auto* failure = std::get_if<HttpFailure>(&outcome)) {
        why = failure->description + ".";
    } else {
        // Not every server tells its models; any other answer means that it is there.
        const auto& response = std::get<HttpResponse>(outcome);
        const bool isRefusal = response.status == kUnauthorized || response.status == kForbidden;
        if (isRefusal || response.status >= kServerError) {
            why = whyRefused(*checkedSettings_, response) + ".";
        }
    }
    if (why && why != services_.health->whyBad()) {
        services_.log->logLine("[TovikVoice] " + *why);
    }
    services_.health->set(why);
}

std::string ServerWorker::whyRefused(const ServerSettings& settings, const HttpResponse& response) const {
    const auto server = "The speech server " + settings.address.origin();
    if (response.status == kUnauthorized || response.status == kForbidden) {
        services_.keyWasRefused();
        return server + " does not accept the key (" + std::to_string(response.status) + ")";
    }
    return server + " answered with the error " + std::to_string(response.status);
}

// ----------------------------------------------------------------------------------- dictations

void ServerWorker::begin(int number, ServerDictation dictation) {
    need(dictation.settings.command);
    auto upload = std::make_unique<Upload>(dictation.settings);
    upload->open();
    jobs_.emplace(number, Job{std::move(dictation), std::move(upload), {}});
}

void ServerWorker::send(int number, Result<SoundCollector::Sound> sound) {
    const auto found = jobs_.find(number);
    if (found == jobs_.end()) {
        return;
    }
    auto& job = found->second;
    auto& utterance = *job.dictation.utterance;
    if (!sound) {
        utterance.answer(sound.error());
        drop(number);
        return;
    }
    if (sound.value().isCutOff) {
        services_.log->logLine("[TovikVoice] The speech server gets only the first half hour of a dictation");
    }
    // Models make words of silence, and nobody pays for it.
    if (!isAudible(sound.value().samples)) {
        utterance.answer(recognitionError(RecognitionCode::noSpeech, "No speech detected"));
        drop(number);
        return;
    }
    Transcription transcription{std::move(sound.value().samples), job.dictation.language,
                                utterance.request().settings().contextualStrings};
    auto request = transcriptionRequest(job.dictation.settings, job.dictation.key, transcription);
    job.samples = std::move(transcription.samples);
    if (!request) {
        failed(job, request.error().description);
        drop(number);
        return;
    }
    job.upload->send(std::move(request.value()),
                     [this, number](const Upload::Outcome& outcome) { answered(number, outcome); });
}

void ServerWorker::answered(int number, const Upload::Outcome& outcome) {
    auto& job = jobs_.at(number);
    if (const auto* failure = std::get_if<HttpFailure>(&outcome)) {
        services_.health->set(failure->description + ".");
        failed(job, failure->description);
    } else {
        recognised(job, std::get<HttpResponse>(outcome));
    }
    drop(number);
}

void ServerWorker::recognised(Job& job, const HttpResponse& response) {
    if (!isSuccess(response.status)) {
        const auto why = whyRefused(job.dictation.settings, response);
        services_.health->set(why + ".");
        failed(job, why);
        return;
    }
    const auto text = transcribedText(response);
    if (!text) {
        failed(job, "The speech server " + job.dictation.settings.address.origin() +
                        " gave an answer without a text");
        return;
    }
    services_.health->set(std::nullopt);
    if (text->empty()) {
        job.dictation.utterance->answer(recognitionError(RecognitionCode::noSpeech, "No speech detected"));
    } else {
        failedAudio_.forgetAll();
        job.dictation.utterance->answer(*text);
    }
}

void ServerWorker::failed(Job& job, const std::string& why) {
    services_.log->logLine("[TovikVoice] " + why);
    const auto& settings = job.dictation.settings;
    if (settings.keepFailedAudio) {
        keepAudio(job);
    }
    if (settings.embeddedWhenServerFails) {
        services_.recogniseHere(job.dictation, std::move(job.samples));
    } else {
        job.dictation.utterance->answer(recognitionError(RecognitionCode::failed, why));
    }
}

void ServerWorker::keepAudio(const Job& job) {
    const auto kept = failedAudio_.keep(job.samples, kTranscriptionRate);
    services_.log->logLine(kept ? "[TovikVoice] The sound of the dictation is kept in " + kept.value() +
                                      " until the next one is recognised"
                                : "[TovikVoice] The sound of the dictation could not be kept: " +
                                      kept.error().description);
}

void ServerWorker::drop(int number) {
    // Its upload may be the one that reports this.
    QMetaObject::invokeMethod(
        &context_, [job = std::make_shared<Job>(std::move(jobs_.at(number)))] {}, Qt::QueuedConnection);
    jobs_.erase(number);
    if (jobs_.empty() && std::exchange(endsProcess_, false)) {
        process_.need({});
    }
}

} // namespace tovik

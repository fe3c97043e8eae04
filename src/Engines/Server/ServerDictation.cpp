// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Engines/Server/ServerDictation.h"

#include "Engines/Host/RecognitionError.h"
#include "Engines/Host/Resampler.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <nlohmann/json.hpp>
#include <span>
#include <string_view>
#include <utility>

namespace tovik {

namespace {

constexpr int kUnauthorized = 401;
constexpr int kForbidden = 403;
/// 60 dB below full scale: nobody has spoken into a microphone that heard no more.
constexpr int kAudible = 32;
/// Longer dictations are cut off there: 58 MB of sound.
constexpr std::size_t kMostSamples = std::size_t{30} * 60 * kTranscriptionRate;
/// The slowest way to a server on which dictations are sent at all: 16 kB a second is half of what sound of
/// 16 kHz comes in at.
constexpr double kSlowestBytes = 16000;
/// The slowest server that is waited for: it takes twice as long as somebody has spoken.
constexpr double kSlowestRecognition = 2;
/// Models take in some 200 tokens of a prompt.
constexpr std::size_t kLongestPrompt = 600;
/// What some servers write instead of nothing.
constexpr std::string_view kBlank = "[BLANK_AUDIO]";

bool isAudible(const std::vector<std::int16_t>& samples) {
    return std::any_of(samples.begin(), samples.end(),
                       [](std::int16_t sample) { return std::abs(int{sample}) >= kAudible; });
}

Error noSpeech() {
    return recognitionError(RecognitionCode::noSpeech, "No speech detected");
}

bool isSpace(char c) {
    return c == ' ' || c == '\n' || c == '\r' || c == '\t';
}

/// Servers begin with a blank and put the segments of a longer text on lines of their own.
std::string oneLine(const std::string& text) {
    std::string line;
    bool gap = false;
    for (const auto c : text) {
        if (isSpace(c)) {
            gap = true;
            continue;
        }
        line += gap && !line.empty() ? " " : "";
        line += c;
        gap = false;
    }
    return line;
}

/// The text in a server's answer; empty when nothing was said; nothing when it is no answer to such a
/// request.
std::optional<std::string> transcribedText(const HttpResponse& response) {
    const auto answer = response.json();
    if (!answer.is_object() || !answer.contains("text") || !answer.at("text").is_string()) {
        return std::nullopt;
    }
    const auto text = oneLine(answer.at("text").get<std::string>());
    return text == kBlank ? "" : text;
}

} // namespace

std::string promptOf(const std::vector<std::string>& contextualStrings) {
    std::string prompt;
    for (auto term = contextualStrings.rbegin(); term != contextualStrings.rend(); ++term) {
        if (prompt.size() + term->size() + 2 > kLongestPrompt) {
            break;
        }
        prompt.insert(0, prompt.empty() ? *term : *term + ", ");
    }
    return prompt;
}

bool isAboutTheKey(const HttpResponse& response) {
    return response.status == kUnauthorized || response.status == kForbidden;
}

std::optional<std::string> whyRefused(const ServerAddress& server, const HttpResponse& response) {
    const auto status = std::to_string(response.status);
    if (isAboutTheKey(response)) {
        return "The speech server " + server.origin() + " does not accept the key (" + status + ")";
    }
    if (response.status < 200 || response.status >= 300) {
        return "The speech server " + server.origin() + " answered with the error " + status;
    }
    return std::nullopt;
}

void Utterance::reportPartial(const std::string& text) {
    if (handler_) {
        handler_(RecognitionResult{text, false}, std::nullopt);
    }
}

void Utterance::answer(const std::string& text) {
    if (const auto handler = std::exchange(handler_, nullptr)) {
        handler(RecognitionResult{text, true}, std::nullopt);
    }
}

void Utterance::answer(const Error& error) {
    if (const auto handler = std::exchange(handler_, nullptr)) {
        handler(std::nullopt, error);
    }
}

ServerDictation::ServerDictation(Job job, const Services& services)
    : job_(std::move(job)),
      services_(services),
      thread_([this] { run(); }) {}

ServerDictation::~ServerDictation() {
    cancel();
    thread_.join();
}

void ServerDictation::cancel() {
    upload_.cancel();
}

void ServerDictation::run() {
    failedBefore_ = services_.failedAudio.kept();
    auto resampler = Resampler::make(job_.utterance->request().sampleRate(), kTranscriptionRate);
    if (resampler) {
        resampler_ = std::move(resampler.value());
        const auto& address = job_.settings.address;
        const auto outcome =
            upload_.perform(address.url(address.transcriptions),
                            [this](std::chrono::milliseconds atMost) { return listen(atMost); });
        answered(outcome);
    } else {
        job_.utterance->answer(resampler.error());
    }
    job_.server.reset();
    isOver_ = true;
    services_.over();
}

// --------------------------------------------------------------------------------------- the sound

/// Reads what has come. The request, once all of it has.
std::optional<HttpRequest> ServerDictation::listen(std::chrono::milliseconds atMost) {
    std::array<float, 4096> frames{};
    auto& sound = job_.utterance->request();
    for (auto patience = atMost;; patience = std::chrono::milliseconds(0)) {
        // Asked before reading: what was appended before the request was let go of is then read first.
        const bool isAbandoned = job_.utterance->requestAbandoned();
        const auto count = sound.readWithin(frames, patience);
        if (count && *count > 0) {
            hear(std::span(frames).first(*count));
        } else if (count || isAbandoned) {
            return soundIsThere();
        } else {
            return std::nullopt;
        }
    }
}

void ServerDictation::hear(std::span<const float> frames) {
    if (samples_.size() < kMostSamples) {
        resampler_->process(frames, samples_);
    } else {
        isCutOff_ = true;
    }
}

std::optional<HttpRequest> ServerDictation::soundIsThere() {
    resampler_->finish(samples_);
    soundIsComplete_ = true;
    if (isCutOff_) {
        services_.log.logLine("[TovikVoice] The speech server gets only the first half hour of a dictation");
    }
    // Models make words of silence, and nobody pays for it.
    if (!isAudible(samples_)) {
        unasked_ = noSpeech();
        upload_.cancel();
        return std::nullopt;
    }
    auto file = soundFile(samples_, kTranscriptionRate, job_.settings.format);
    if (!file) {
        unasked_ = file.error();
        upload_.cancel();
        return std::nullopt;
    }
    return request(std::move(file.value()));
}

HttpRequest ServerDictation::request(std::string file) const {
    const auto& settings = job_.settings;
    const bool isFlac = settings.format == SoundFormat::flac;
    const Seconds forSending(static_cast<double>(file.size()) / kSlowestBytes);
    const Seconds forThinking(kSlowestRecognition * static_cast<double>(samples_.size()) /
                              kTranscriptionRate);
    HttpRequest request;
    request.url = settings.address.url(settings.address.transcriptions);
    request.key = services_.key(settings);
    request.headers = {"Accept: application/json"};
    request.form.push_back({"model", settings.model, {}, {}});
    if (job_.language) {
        request.form.push_back({"language", *job_.language, {}, {}});
    }
    const auto& terms = job_.utterance->request().settings().contextualStrings;
    if (auto prompt = promptOf(terms); !prompt.empty()) {
        request.form.push_back({"prompt", std::move(prompt), {}, {}});
    }
    request.form.push_back({"response_format", "json", {}, {}});
    request.form.push_back({"file", std::move(file), isFlac ? "dictation.flac" : "dictation.wav",
                            isFlac ? "audio/flac" : "audio/wav"});
    request.isStarting = !settings.command.empty();
    request.limits = {.connect = settings.connectTimeout,
                      .stall = settings.firstByteTimeout,
                      .firstByte = settings.firstByteTimeout + forThinking,
                      .answer = settings.wholeTimeout + forThinking,
                      .total = settings.wholeTimeout + forThinking + forSending};
    return request;
}

// -------------------------------------------------------------------------------------- the answer

void ServerDictation::answered(const HttpOutcome& outcome) {
    if (unasked_) {
        const bool isSilence = *unasked_ == noSpeech();
        isSilence ? job_.utterance->answer(*unasked_) : failed(unasked_->description);
        return;
    }
    const auto& address = job_.settings.address;
    if (const auto* failure = std::get_if<HttpFailure>(&outcome)) {
        if (failure->kind == HttpFailure::Kind::cancelled) {
            if (soundIsComplete_ && job_.settings.keepFailedAudio) {
                keepAudio();
            }
            job_.utterance->answer(recognitionError(RecognitionCode::ended, "Recognition was ended"));
            return;
        }
        const auto why = "The speech server " + address.origin() + " " + failure->description;
        services_.report(why + ".");
        failed(why);
        return;
    }
    const auto& response = std::get<HttpResponse>(outcome);
    if (const auto why = whyRefused(address, response)) {
        if (isAboutTheKey(response)) {
            services_.keyWasRefused();
        }
        services_.report(*why + ".");
        failed(*why);
        return;
    }
    const auto text = transcribedText(response);
    if (!text) {
        failed("The speech server " + address.origin() + " gave an answer without a text");
        return;
    }
    services_.report(std::nullopt);
    if (text->empty()) {
        job_.utterance->answer(noSpeech());
    } else {
        services_.failedAudio.forget(failedBefore_);
        job_.utterance->answer(*text);
    }
}

void ServerDictation::failed(const std::string& why) {
    services_.log.logLine("[TovikVoice] " + why);
    if (job_.settings.keepFailedAudio) {
        keepAudio();
    }
    if (job_.settings.embeddedWhenServerFails) {
        // The program's own server is not needed for that.
        job_.server.reset();
        services_.recognizeElsewhere(job_, std::move(samples_));
    } else {
        job_.utterance->answer(recognitionError(RecognitionCode::failed, why));
    }
}

void ServerDictation::keepAudio() {
    const auto kept = services_.failedAudio.keep(samples_, kTranscriptionRate);
    services_.log.logLine(kept ? "[TovikVoice] The sound of the dictation is kept in " + kept.value() +
                                     " until the next one is recognized"
                               : "[TovikVoice] The sound of the dictation could not be kept: " +
                                     kept.error().description);
}

} // namespace tovik

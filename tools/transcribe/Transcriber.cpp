// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Transcriber.h"

#include <chrono>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <utility>

namespace tovik {

namespace {

/// Loading takes half a second; a machine that needs this long will not recognize anything either.
constexpr Seconds kLoadAtMost{60};

Seconds timeOn(clockid_t clock) {
    timespec time{};
    clock_gettime(clock, &time);
    return Seconds(static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9);
}

/// Of this process and of those that decode for it.
Seconds processorTime() {
    auto total = timeOn(CLOCK_PROCESS_CPUTIME_ID);
    std::error_code error;
    for (const auto& thread : std::filesystem::directory_iterator("/proc/self/task", error)) {
        std::ifstream children(thread.path() / "children");
        for (pid_t child = 0; children >> child;) {
            clockid_t clock{};
            if (clock_getcpuclockid(child, &clock) == 0) {
                total += timeOn(clock);
            }
        }
    }
    return total;
}

} // namespace

Transcriber::Transcriber(FileAudioEngine::Pace pace, OwnSettings::Values settings, SystemLog& log)
    : settings_(std::move(settings)),
      chain_(settings_, log),
      dictionary_(settings_, log),
      recognition_({.log = log,
                    .defaults = settings_,
                    .queue = queue_,
                    .secrets = nullptr,
                    .dataFolder = folders_.applicationSupport()}),
      watched_(recognition_),
      engine_(pace, [this](const std::stop_token& stopped) { return watched_.waitUntilKeptUp(stopped); }),
      manager_({clock_, queue_, log, settings_, engine_, devices_, hardware_, watched_},
               {.processTranscription =
                    [this](const std::string& recognized) { return chain_.processTranscription(recognized); },
                .onTranscription = [this](const std::string& cleaned) { cleaned_ = cleaned; },
                .onPartialUpdate = nullptr,
                .onLevel = nullptr}) {}

std::optional<std::string> Transcriber::prepare() {
    const auto begin = std::chrono::steady_clock::now();
    if (!recognition_.waitUntilReady(kLoadAtMost)) {
        return recognition_.whyUnavailable().value_or("No speech engine gets ready in time");
    }
    loadTime_ = std::chrono::steady_clock::now() - begin;
    return std::nullopt;
}

Transcript Transcriber::transcribe(SoundFile sound) {
    Transcript transcript;
    transcript.audioSeconds = sound.seconds();
    cleaned_.clear();
    engine_.load(std::move(sound));
    watched_.expectUtterance();

    const auto processorBefore = processorTime();
    if (const auto started = manager_.start(); !started) {
        transcript.error = started.error().description;
        return transcript;
    }
    engine_.waitUntilPlayed();
    const auto endOfSound = std::chrono::steady_clock::now();
    manager_.stop();
    const auto outcome = watched_.waitForOutcome([this] { queue_.run(); });
    const auto processorUsed = processorTime() - processorBefore;

    if (!outcome) {
        transcript.error = "There is no recognizer";
        return transcript;
    }
    if (outcome->error) {
        transcript.error = outcome->error->description;
    } else {
        transcript.recognized = outcome->recognized;
        transcript.text = dictionary_.apply(cleaned_);
    }
    transcript.finalMilliseconds =
        std::chrono::duration<double, std::milli>(outcome->at - endOfSound).count();
    transcript.realTimeFactor =
        transcript.audioSeconds > 0 ? processorUsed.count() / transcript.audioSeconds : 0;
    return transcript;
}

} // namespace tovik

// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Engines/Host/RecognitionThread.h"

#include "Engines/Host/RecognitionError.h"
#include "Engines/Host/Resampler.h"

#include <array>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <string>
#include <utility>

namespace tovik {

namespace {

/// How often a thread that waits for sound looks whether it is still wanted.
constexpr std::chrono::milliseconds kLookUp{100};
/// Sound between two looks at the hypothesis.
constexpr double kPartialInterval = 0.25;
/// Frames of the microphone that are decoded at once: little, so that leaving never takes long.
constexpr std::size_t kFramesAtOnce = 2048;

} // namespace

struct RecognitionThread::State {
    State(DecoderLoader loader, SteadyClock steadyClock, std::shared_ptr<SharedLog> systemLog)
        : load(std::move(loader)),
          clock(std::move(steadyClock)),
          log(std::move(systemLog)) {}

    const DecoderLoader load;
    const SteadyClock clock;
    const std::shared_ptr<SharedLog> log;

    std::mutex mutex;
    std::condition_variable wake;
    std::condition_variable gotReady;
    std::condition_variable ended;
    std::deque<std::shared_ptr<Utterance>> waiting;
    std::shared_ptr<Utterance> current;
    /// What the decoder is to learn next; nothing when it has.
    std::optional<std::vector<std::string>> toLearn;
    bool learning = false;
    std::optional<Error> failure;
    std::optional<std::chrono::steady_clock::time_point> busySince;
    bool loaded = false;
    bool leaving = false;
    bool hasEnded = false;

    [[nodiscard]] bool isLeaving() {
        const std::lock_guard lock(mutex);
        return leaving;
    }

    /// Runs a task of the decoder and remembers since when.
    template <typename Task>
    auto busy(Task task) {
        {
            const std::lock_guard lock(mutex);
            busySince = clock();
        }
        auto outcome = task();
        const std::lock_guard lock(mutex);
        busySince.reset();
        return outcome;
    }

    void run();
    [[nodiscard]] std::unique_ptr<UtteranceDecoder> loadDecoder();
    [[nodiscard]] std::shared_ptr<Utterance> next(UtteranceDecoder& decoder);
    [[nodiscard]] std::optional<std::vector<std::string>> nextToLearn();
    void learn(UtteranceDecoder& decoder, const std::vector<std::string>& contextualStrings);
    void decode(UtteranceDecoder& decoder, Utterance& utterance);
    [[nodiscard]] Result<std::string> listen(UtteranceDecoder& decoder, Utterance& utterance);
    [[nodiscard]] std::optional<std::size_t> hear(Utterance& utterance, std::span<float> frames);
};

void RecognitionThread::State::run() {
    if (auto decoder = loadDecoder()) {
        while (const auto utterance = next(*decoder)) {
            decode(*decoder, *utterance);
            const std::lock_guard lock(mutex);
            if (!leaving) {
                current.reset();
            }
        }
    }
    const std::lock_guard lock(mutex);
    hasEnded = true;
    ended.notify_all();
}

std::unique_ptr<UtteranceDecoder> RecognitionThread::State::loadDecoder() {
    auto decoder = busy([this] { return load(); });
    if (decoder) {
        const std::lock_guard lock(mutex);
        loaded = true;
        gotReady.notify_all();
        return std::move(decoder.value());
    }
    const auto& why = decoder.error();
    std::deque<std::shared_ptr<Utterance>> unanswerable;
    {
        const std::lock_guard lock(mutex);
        if (leaving) {
            return nullptr;
        }
        failure = why;
        unanswerable.swap(waiting);
        gotReady.notify_all();
    }
    log->logLine("[TovikVoice] Speech recognition is not available: " + why.description);
    for (const auto& utterance : unanswerable) {
        utterance->answer(why);
    }
    return nullptr;
}

std::shared_ptr<Utterance> RecognitionThread::State::next(UtteranceDecoder& decoder) {
    while (const auto contextualStrings = nextToLearn()) {
        learn(decoder, *contextualStrings);
    }
    const std::lock_guard lock(mutex);
    if (leaving) {
        return nullptr;
    }
    current = std::move(waiting.front());
    waiting.pop_front();
    return current;
}

/// Waits for something to do; nothing when that is not to learn.
std::optional<std::vector<std::string>> RecognitionThread::State::nextToLearn() {
    std::unique_lock lock(mutex);
    wake.wait(lock, [this] { return leaving || !waiting.empty() || toLearn; });
    // Whoever speaks already has words of the utterance's own, which are learned with it.
    if (leaving || !waiting.empty()) {
        return std::nullopt;
    }
    learning = true;
    return std::exchange(toLearn, std::nullopt);
}

void RecognitionThread::State::learn(UtteranceDecoder& decoder,
                                     const std::vector<std::string>& contextualStrings) {
    const auto learned = busy([&] { return decoder.prepare(contextualStrings); });
    if (!learned && !isLeaving()) {
        log->logLine("[TovikVoice] Speech recognition could not learn the vocabulary: " +
                     learned.error().description);
    }
    const std::lock_guard lock(mutex);
    learning = false;
    gotReady.notify_all();
}

void RecognitionThread::State::decode(UtteranceDecoder& decoder, Utterance& utterance) {
    const auto text = listen(decoder, utterance);
    if (isLeaving()) {
        // Whoever asked this thread to leave answers for it.
        return;
    }
    if (text) {
        utterance.answer(text.value());
    } else {
        utterance.answer(text.error());
    }
}

/// The number of frames heard, 0 at the end; nothing when the thread is to leave.
std::optional<std::size_t> RecognitionThread::State::hear(Utterance& utterance, std::span<float> frames) {
    for (;;) {
        // Asked before reading: what was appended before the request was let go of is then read first.
        const bool abandoned = utterance.requestAbandoned();
        if (const auto count = utterance.request().readWithin(frames, kLookUp)) {
            return isLeaving() ? std::nullopt : count;
        }
        if (isLeaving()) {
            return std::nullopt;
        }
        if (abandoned) {
            return 0;
        }
    }
}

Result<std::string> RecognitionThread::State::listen(UtteranceDecoder& decoder, Utterance& utterance) {
    const auto& settings = utterance.request().settings();
    auto resampler = Resampler::make(utterance.request().sampleRate(), UtteranceDecoder::sampleRate);
    if (!resampler) {
        return resampler.error();
    }
    if (auto begun = busy([&] { return decoder.begin(settings.contextualStrings); }); !begun) {
        return begun.error();
    }

    std::array<float, kFramesAtOnce> frames{};
    std::vector<std::int16_t> samples;
    std::optional<Error> trouble;
    std::string partial;
    double sinceLook = 0;
    for (;;) {
        const auto count = hear(utterance, frames);
        if (!count) {
            return recognitionError(RecognitionCode::ended, "Recognition was ended");
        }
        samples.clear();
        if (*count > 0) {
            resampler.value()->process(std::span(frames).first(*count), samples);
        } else {
            resampler.value()->finish(samples);
        }
        // After an error the sound is still taken, so that the next utterance finds its place.
        if (!trouble) {
            if (auto accepted = busy([&] { return decoder.accept(samples); }); !accepted) {
                trouble = accepted.error();
            }
        }
        if (*count == 0) {
            break;
        }
        sinceLook += static_cast<double>(*count) / utterance.request().sampleRate();
        if (settings.reportPartialResults && !trouble && sinceLook >= kPartialInterval) {
            sinceLook = 0;
            auto hypothesis = busy([&] { return decoder.hypothesis(); });
            if (!hypothesis.empty() && hypothesis != partial && !isLeaving()) {
                partial = std::move(hypothesis);
                utterance.reportPartial(partial);
            }
        }
    }
    auto text = busy([&] { return decoder.finish(); });
    return trouble ? Result<std::string>(*trouble) : text;
}

RecognitionThread::RecognitionThread(DecoderLoader loader, SteadyClock clock, std::shared_ptr<SharedLog> log)
    : state_(std::make_shared<State>(std::move(loader), std::move(clock), std::move(log))),
      thread_([state = state_] { state->run(); }) {}

RecognitionThread::~RecognitionThread() {
    if (thread_.joinable()) {
        const auto unanswered = leave(Seconds(0));
        const auto why = recognitionError(RecognitionCode::ended, "Recognition was ended");
        if (unanswered.current) {
            unanswered.current->answer(why);
        }
        for (const auto& utterance : unanswered.waiting) {
            utterance->answer(why);
        }
    }
}

void RecognitionThread::add(std::shared_ptr<Utterance> utterance) {
    std::optional<Error> why;
    {
        const std::lock_guard lock(state_->mutex);
        why = state_->failure;
        if (!why) {
            state_->waiting.push_back(utterance);
        }
    }
    if (why) {
        utterance->answer(*why);
    } else {
        state_->wake.notify_one();
    }
}

std::optional<Error> RecognitionThread::failure() const {
    const std::lock_guard lock(state_->mutex);
    return state_->failure;
}

void RecognitionThread::prepare(std::vector<std::string> contextualStrings) {
    {
        const std::lock_guard lock(state_->mutex);
        state_->toLearn = std::move(contextualStrings);
    }
    state_->wake.notify_one();
}

bool RecognitionThread::waitUntilReady(Seconds atMost) const {
    std::unique_lock lock(state_->mutex);
    const auto isReady = [this] { return state_->loaded && !state_->toLearn && !state_->learning; };
    state_->gotReady.wait_for(lock, atMost, [&] { return isReady() || state_->failure; });
    return isReady();
}

bool RecognitionThread::isIdle() const {
    const std::lock_guard lock(state_->mutex);
    return !state_->current && state_->waiting.empty();
}

bool RecognitionThread::isLoaded() const {
    const std::lock_guard lock(state_->mutex);
    return state_->loaded;
}

Seconds RecognitionThread::silentFor() const {
    const std::lock_guard lock(state_->mutex);
    return state_->busySince ? Seconds(state_->clock() - *state_->busySince) : Seconds(0);
}

RecognitionThread::Unanswered RecognitionThread::leave(Seconds atMost) {
    Unanswered unanswered;
    bool ended = false;
    {
        std::unique_lock lock(state_->mutex);
        state_->leaving = true;
        state_->wake.notify_all();
        ended = state_->ended.wait_for(lock, atMost, [this] { return state_->hasEnded; });
        unanswered.waiting.swap(state_->waiting);
        unanswered.current = std::move(state_->current);
    }
    if (ended) {
        thread_.join();
    } else {
        thread_.detach();
    }
    return unanswered;
}

} // namespace tovik

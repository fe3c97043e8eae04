// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "WatchedSpeechService.h"

#include "Audio/RecognitionRequest.h"

#include <utility>

namespace tovik {

/// Sound that may wait for the recognizer, in seconds: as much as a microphone has on its way.
constexpr double kBacklog = 0.1;
constexpr std::chrono::milliseconds kLookAgain{2};

class WatchedRecognizer : public SpeechRecognizer {
public:
    WatchedRecognizer(std::shared_ptr<SpeechRecognizer> recognizer,
                      std::shared_ptr<WatchedSpeechService::State> state)
        : recognizer_(std::move(recognizer)),
          state_(std::move(state)) {}

    [[nodiscard]] bool isAvailable() const override { return recognizer_->isAvailable(); }

    [[nodiscard]] std::unique_ptr<RecognitionTask> startTask(std::shared_ptr<RecognitionRequest> request,
                                                             RecognitionHandler handler) override {
        {
            const std::lock_guard lock(state_->mutex);
            state_->begun = true;
            state_->request = request;
        }
        return recognizer_->startTask(std::move(request), [state = state_, handler = std::move(handler)](
                                                              const auto& result, const auto& error) {
            const auto now = std::chrono::steady_clock::now();
            handler(result, error);
            if (!error && !(result && result->isFinal)) {
                return;
            }
            const std::lock_guard lock(state->mutex);
            state->outcome = {result ? result->formattedString : "", error, now};
            state->changed.notify_all();
        });
    }

private:
    const std::shared_ptr<SpeechRecognizer> recognizer_;
    const std::shared_ptr<WatchedSpeechService::State> state_;
};

WatchedSpeechService::WatchedSpeechService(SpeechService& service) : service_(service) {}

std::shared_ptr<SpeechRecognizer> WatchedSpeechService::makeRecognizer(const std::string& localeIdentifier) {
    auto recognizer = service_.makeRecognizer(localeIdentifier);
    return recognizer ? std::make_shared<WatchedRecognizer>(std::move(recognizer), state_) : nullptr;
}

std::string WatchedSpeechService::currentLocaleIdentifier() const {
    return service_.currentLocaleIdentifier();
}

void WatchedSpeechService::prepare(const std::vector<std::string>& contextualStrings) {
    service_.prepare(contextualStrings);
}

void WatchedSpeechService::expectUtterance() {
    const std::lock_guard lock(state_->mutex);
    state_->begun = false;
    state_->request.reset();
    state_->outcome.reset();
}

std::optional<WatchedSpeechService::Outcome>
WatchedSpeechService::waitForOutcome(const std::function<void()>& meanwhile) {
    std::unique_lock lock(state_->mutex);
    while (
        !state_->changed.wait_for(lock, kLookAgain, [this] { return !state_->begun || state_->outcome; })) {
        lock.unlock();
        meanwhile();
        lock.lock();
    }
    return state_->outcome;
}

bool WatchedSpeechService::waitUntilKeptUp(const std::stop_token& stopped) {
    std::unique_lock lock(state_->mutex);
    while (!stopped.stop_requested()) {
        const auto request = state_->request.lock();
        if (!request || state_->outcome ||
            static_cast<double>(request->waitingFrames()) < kBacklog * request->sampleRate()) {
            return true;
        }
        state_->changed.wait_for(lock, kLookAgain);
    }
    return false;
}

} // namespace tovik

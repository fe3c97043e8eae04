// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "support/FakeSpeechService.h"
#include "support/ReadSound.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace tovik::test {

FakeUtterance::FakeUtterance(std::string localeIdentifier, std::shared_ptr<RecognitionRequest> request,
                             RecognitionHandler handler)
    : localeIdentifier_(std::move(localeIdentifier)),
      request_(std::move(request)),
      handler_(std::move(handler)) {}

bool FakeUtterance::finished() const {
    const std::lock_guard lock(mutex_);
    return finished_;
}

bool FakeUtterance::dropped() const {
    const std::lock_guard lock(mutex_);
    return dropped_;
}

void FakeUtterance::deliverPartial(const std::string& text) {
    deliver(RecognitionResult{text, false}, std::nullopt);
}

void FakeUtterance::deliverFinal(const std::string& text) {
    deliver(RecognitionResult{text, true}, std::nullopt);
}

void FakeUtterance::deliverError(const Error& error) {
    deliver(std::nullopt, error);
}

void FakeUtterance::deliver(const std::optional<RecognitionResult>& result,
                            const std::optional<Error>& error) {
    handler_(result, error);
}

std::vector<float> FakeUtterance::readSound() {
    return readAll(*request_);
}

class FakeRecognitionTask : public RecognitionTask {
public:
    explicit FakeRecognitionTask(std::shared_ptr<FakeUtterance> utterance)
        : utterance_(std::move(utterance)) {}
    ~FakeRecognitionTask() override {
        const std::lock_guard lock(utterance_->mutex_);
        utterance_->dropped_ = true;
    }

    void finish() override {
        {
            const std::lock_guard lock(utterance_->mutex_);
            utterance_->finished_ = true;
        }
        utterance_->request_->endAudio();
    }

private:
    const std::shared_ptr<FakeUtterance> utterance_;
};

struct FakeSpeechService::State {
    mutable std::mutex mutex;
    std::map<std::string, Locale> locales{{"en-US", Locale::available}};
    std::string currentLocale = "en-US";
    std::optional<std::string> answer;
    std::vector<std::string> preparedFor;
    std::vector<std::string> asked;
    std::vector<std::shared_ptr<FakeUtterance>> utterances;
    std::vector<std::thread> answering;

    [[nodiscard]] Locale locale(const std::string& identifier) const {
        const std::lock_guard lock(mutex);
        const auto found = locales.find(identifier);
        return found == locales.end() ? Locale::unknown : found->second;
    }

    void begin(std::shared_ptr<FakeUtterance> utterance) {
        const std::lock_guard lock(mutex);
        utterances.push_back(utterance);
        if (answer) {
            answering.emplace_back([utterance = std::move(utterance), text = *answer] {
                const auto sound = utterance->readSound();
                if (std::all_of(sound.begin(), sound.end(), [](float sample) { return sample == 0; })) {
                    utterance->deliverError({"FakeSpeechService", 1, "No speech detected"});
                    return;
                }
                if (utterance->request().settings().reportPartialResults) {
                    utterance->deliverPartial(text);
                }
                utterance->deliverFinal(text);
            });
        }
    }
};

class FakeRecognizer : public SpeechRecognizer {
public:
    FakeRecognizer(std::string localeIdentifier, std::shared_ptr<FakeSpeechService::State> state)
        : localeIdentifier_(std::move(localeIdentifier)),
          state_(std::move(state)) {}

    [[nodiscard]] bool isAvailable() const override {
        return state_->locale(localeIdentifier_) == FakeSpeechService::Locale::available;
    }

    [[nodiscard]] std::unique_ptr<RecognitionTask> startTask(std::shared_ptr<RecognitionRequest> request,
                                                             RecognitionHandler handler) override {
        auto utterance =
            std::make_shared<FakeUtterance>(localeIdentifier_, std::move(request), std::move(handler));
        state_->begin(utterance);
        return std::make_unique<FakeRecognitionTask>(std::move(utterance));
    }

private:
    const std::string localeIdentifier_;
    const std::shared_ptr<FakeSpeechService::State> state_;
};

FakeSpeechService::FakeSpeechService() : state_(std::make_shared<State>()) {}

FakeSpeechService::~FakeSpeechService() {
    std::vector<std::thread> threads;
    {
        const std::lock_guard lock(state_->mutex);
        threads.swap(state_->answering);
    }
    for (auto& thread : threads) {
        thread.join();
    }
}

std::shared_ptr<SpeechRecognizer> FakeSpeechService::makeRecognizer(const std::string& localeIdentifier) {
    {
        const std::lock_guard lock(state_->mutex);
        state_->asked.push_back(localeIdentifier);
    }
    if (state_->locale(localeIdentifier) == Locale::unknown) {
        return nullptr;
    }
    return std::make_shared<FakeRecognizer>(localeIdentifier, state_);
}

std::string FakeSpeechService::currentLocaleIdentifier() const {
    const std::lock_guard lock(state_->mutex);
    return state_->currentLocale;
}

void FakeSpeechService::setLocale(const std::string& localeIdentifier, Locale state) {
    const std::lock_guard lock(state_->mutex);
    state_->locales.insert_or_assign(localeIdentifier, state);
}

void FakeSpeechService::setCurrentLocaleIdentifier(std::string localeIdentifier) {
    const std::lock_guard lock(state_->mutex);
    state_->currentLocale = std::move(localeIdentifier);
}

void FakeSpeechService::answerWith(std::string text) {
    const std::lock_guard lock(state_->mutex);
    state_->answer = std::move(text);
}

void FakeSpeechService::prepare(const std::vector<std::string>& contextualStrings) {
    const std::lock_guard lock(state_->mutex);
    state_->preparedFor = contextualStrings;
}

std::vector<std::string> FakeSpeechService::preparedFor() const {
    const std::lock_guard lock(state_->mutex);
    return state_->preparedFor;
}

std::vector<std::string> FakeSpeechService::askedLocales() const {
    const std::lock_guard lock(state_->mutex);
    return state_->asked;
}

std::size_t FakeSpeechService::utteranceCount() const {
    const std::lock_guard lock(state_->mutex);
    return state_->utterances.size();
}

std::shared_ptr<FakeUtterance> FakeSpeechService::lastUtterance() const {
    const std::lock_guard lock(state_->mutex);
    return state_->utterances.empty() ? nullptr : state_->utterances.back();
}

std::vector<std::shared_ptr<FakeUtterance>> FakeSpeechService::utterances() const {
    const std::lock_guard lock(state_->mutex);
    return state_->utterances;
}

} // namespace tovik::test

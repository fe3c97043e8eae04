// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Engines/Host/RecognitionError.h"
#include "Engines/Host/UtteranceDecoder.h"

#include <condition_variable>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace tovik::test {

/// What scripted decoders do, and what they were asked; shared by a test and the decoders it made.
class DecoderScript {
public:
    /// Holds up whatever comes to the gate until it is opened.
    class Gate {
    public:
        void close() {
            const std::lock_guard lock(mutex_);
            open_ = false;
        }
        void open() {
            const std::lock_guard lock(mutex_);
            open_ = true;
            changed_.notify_all();
        }
        /// Called by the decoder.
        void pass() {
            std::unique_lock lock(mutex_);
            ++waiting_;
            changed_.notify_all();
            changed_.wait(lock, [this] { return open_; });
            --waiting_;
        }
        /// Returns when a decoder stands at the closed gate.
        void waitForSomebody() {
            std::unique_lock lock(mutex_);
            changed_.wait(lock, [this] { return waiting_ > 0; });
        }

    private:
        std::mutex mutex_;
        std::condition_variable changed_;
        bool open_ = true;
        int waiting_ = 0;
    };

    Gate loading;
    Gate finishing;

    void failFrom(std::size_t utterance) {
        const std::lock_guard lock(mutex_);
        failingFrom_ = utterance;
    }
    [[nodiscard]] bool fails(std::size_t utterance) {
        const std::lock_guard lock(mutex_);
        return utterance >= failingFrom_;
    }
    void began(const std::vector<std::string>& contextualStrings) {
        const std::lock_guard lock(mutex_);
        contextualStrings_.push_back(contextualStrings);
    }
    [[nodiscard]] std::vector<std::vector<std::string>> contextualStrings() {
        const std::lock_guard lock(mutex_);
        return contextualStrings_;
    }
    void failToLearn() {
        const std::lock_guard lock(mutex_);
        failsToLearn_ = true;
    }
    [[nodiscard]] Result<void> learn(const std::vector<std::string>& contextualStrings) {
        const std::lock_guard lock(mutex_);
        learned_.push_back(contextualStrings);
        return failsToLearn_ ? recognitionError(RecognitionCode::failed, "script") : Result<void>();
    }
    [[nodiscard]] std::vector<std::vector<std::string>> learned() {
        const std::lock_guard lock(mutex_);
        return learned_;
    }
    void decoderMade() {
        const std::lock_guard lock(mutex_);
        ++decoders_;
        made_.notify_all();
    }
    /// Returns when so many decoders have been asked for.
    void waitForDecoders(int count) {
        std::unique_lock lock(mutex_);
        made_.wait(lock, [&] { return decoders_ >= count; });
    }
    [[nodiscard]] int decoders() {
        const std::lock_guard lock(mutex_);
        return decoders_;
    }

private:
    std::mutex mutex_;
    std::size_t failingFrom_ = 1000;
    std::vector<std::vector<std::string>> contextualStrings_;
    std::vector<std::vector<std::string>> learned_;
    bool failsToLearn_ = false;
    std::condition_variable made_;
    int decoders_ = 0;
};

/// Recognises how many samples an utterance has, such as "32000 samples".
class ScriptedDecoder : public UtteranceDecoder {
public:
    explicit ScriptedDecoder(std::shared_ptr<DecoderScript> script) : script_(std::move(script)) {}

    Result<void> prepare(const std::vector<std::string>& contextualStrings) override {
        return script_->learn(contextualStrings);
    }
    Result<void> begin(const std::vector<std::string>& contextualStrings) override {
        script_->began(contextualStrings);
        ++utterances_;
        samples_ = 0;
        return {};
    }
    Result<void> accept(std::span<const std::int16_t> samples) override {
        samples_ += samples.size();
        if (script_->fails(utterances_)) {
            return recognitionError(RecognitionCode::failed, "The recogniser failed: script");
        }
        return {};
    }
    [[nodiscard]] std::string hypothesis() override { return text(); }
    [[nodiscard]] Result<std::string> finish() override {
        script_->finishing.pass();
        if (samples_ == 0) {
            return recognitionError(RecognitionCode::noSpeech, "No speech detected");
        }
        return text();
    }

private:
    [[nodiscard]] std::string text() const { return std::to_string(samples_) + " samples"; }

    const std::shared_ptr<DecoderScript> script_;
    std::size_t utterances_ = 0;
    std::size_t samples_ = 0;
};

} // namespace tovik::test

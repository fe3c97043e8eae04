// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Engines/Vosk/VoskDecoder.h"

#include "Engines/Host/RecognitionError.h"
#include "Engines/Vosk/VoskAnswer.h"
#include "Engines/Vosk/VoskModels.h"

#include <unicode/unistr.h>

#include <algorithm>
#include <utility>

namespace tovik {

namespace {

/// Readings that are compared when there are words to favour.
constexpr int kAlternatives = 5;

/// More words than a hum is taken for were said by somebody, perhaps in a whisper beside a fan.
constexpr std::ptrdiff_t kWordsOfHum = 2;

std::string lowerCase(const std::string& text) {
    std::string lower;
    icu::UnicodeString::fromUTF8(text).toLower().toUTF8String(lower);
    return lower;
}

std::string joined(const std::string& first, const std::string& second) {
    return first.empty() || second.empty() ? first + second : first + " " + second;
}

} // namespace

Result<std::unique_ptr<UtteranceDecoder>> VoskDecoder::load(std::shared_ptr<const VoskLibrary> library,
                                                            const std::string& modelFolder) {
    if (auto usable = VoskModels::check(modelFolder); !usable) {
        return usable.error();
    }
    auto* const model = library->newModel(modelFolder.c_str());
    if (model == nullptr) {
        return recognitionError(RecognitionCode::noModel,
                                "The Vosk model " + modelFolder + " is not usable. Unpack it anew.");
    }
    return std::unique_ptr<UtteranceDecoder>(new VoskDecoder(std::move(library), model));
}

VoskDecoder::VoskDecoder(std::shared_ptr<const VoskLibrary> library, VoskModel* model)
    : library_(std::move(library)),
      model_(model) {}

VoskDecoder::~VoskDecoder() {
    freeRecognizer();
    library_->freeModel(model_);
}

void VoskDecoder::freeRecognizer() {
    if (recognizer_ != nullptr) {
        library_->freeRecognizer(std::exchange(recognizer_, nullptr));
    }
}

Result<void> VoskDecoder::prepare(const std::vector<std::string>& contextualStrings) {
    favoured_.clear();
    for (const auto& term : contextualStrings) {
        favoured_.push_back(lowerCase(term));
    }
    return {};
}

Result<void> VoskDecoder::begin(const std::vector<std::string>& contextualStrings) {
    static_cast<void>(prepare(contextualStrings));
    text_.clear();
    voice_.begin();
    // A fresh one each time: it costs little beside the model, and nothing of the utterance before stays.
    freeRecognizer();
    recognizer_ = library_->newRecognizer(model_, static_cast<float>(sampleRate));
    if (recognizer_ == nullptr) {
        return recognitionError(RecognitionCode::failed, "The Vosk library made no recogniser");
    }
    if (!favoured_.empty() && library_->setMaxAlternatives != nullptr) {
        library_->setMaxAlternatives(recognizer_, kAlternatives);
    }
    return {};
}

Result<void> VoskDecoder::accept(std::span<const std::int16_t> samples) {
    voice_.process(samples);
    const int heard = library_->acceptSamples(recognizer_, samples.data(), static_cast<int>(samples.size()));
    if (heard < 0) {
        return recognitionError(RecognitionCode::failed, "The Vosk library failed");
    }
    if (heard > 0) {
        append(library_->result(recognizer_));
    }
    return {};
}

void VoskDecoder::append(const char* answer) {
    text_ = joined(text_, answer == nullptr ? "" : voskText(answer, favoured_));
}

bool VoskDecoder::isHum(const std::string& text) const {
    return voice_.heardOnlyTones() && std::count(text.begin(), text.end(), ' ') < kWordsOfHum;
}

std::string VoskDecoder::hypothesis() {
    const char* const answer = library_->partialResult(recognizer_);
    auto text = joined(text_, answer == nullptr ? "" : voskPartial(answer));
    return isHum(text) ? "" : text;
}

Result<std::string> VoskDecoder::finish() {
    append(library_->finalResult(recognizer_));
    freeRecognizer();
    if (text_.empty() || isHum(text_)) {
        return recognitionError(RecognitionCode::noSpeech, "No speech detected");
    }
    return text_;
}

} // namespace tovik

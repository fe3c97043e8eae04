// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Engines/Vosk/VoskDecoder.h"

#include <dlfcn.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <nlohmann/json.hpp>
#include <random>
#include <utility>

namespace tovik {

namespace {

/// Readings that are compared when there are words to favour.
constexpr int kAlternatives = 5;

/// More words than a hum is taken for were said by somebody, perhaps in a whisper beside a fan.
constexpr std::ptrdiff_t kWordsOfHum = 2;

/// What one reading of a sound counts for more when it holds a word to favour; the library's own measure is
/// the logarithm of a likelihood.
constexpr double kFavour = 3;

std::string lowerCase(const std::string& text) {
    std::string lower;
    icu::UnicodeString::fromUTF8(text).toLower().toUTF8String(lower);
    return lower;
}

std::string stringIn(const nlohmann::json& object, const char* name) {
    const auto found = object.find(name);
    return found != object.end() && found->is_string() ? found->get<std::string>() : "";
}

/// How many of the favoured words stand in the text, as whole words.
int favouredIn(const std::string& text, const std::vector<std::string>& favoured) {
    const auto padded = " " + text + " ";
    int count = 0;
    for (const auto& term : favoured) {
        count += padded.find(" " + term + " ") != std::string::npos ? 1 : 0;
    }
    return count;
}

/// The text in a result of the library, of the alternatives the best one; empty when there is none.
std::string voskText(std::string_view answer, const std::vector<std::string>& favoured) {
    const auto object = nlohmann::json::parse(answer, nullptr, false);
    if (!object.is_object()) {
        return {};
    }
    const auto alternatives = object.find("alternatives");
    if (alternatives == object.end() || !alternatives->is_array()) {
        return stringIn(object, "text");
    }
    std::string best;
    double bestScore = 0;
    bool isFirst = true;
    for (const auto& alternative : *alternatives) {
        if (!alternative.is_object()) {
            continue;
        }
        auto text = stringIn(alternative, "text");
        // Older versions begin with a blank.
        text.erase(0, text.find_first_not_of(' '));
        const auto confidence = alternative.find("confidence");
        const double score =
            (confidence != alternative.end() && confidence->is_number() ? confidence->get<double>() : 0) +
            kFavour * favouredIn(text, favoured);
        if (isFirst || score > bestScore) {
            best = text;
            bestScore = score;
            isFirst = false;
        }
    }
    return best;
}

/// The text in a partial result.
std::string voskPartial(std::string_view answer) {
    const auto object = nlohmann::json::parse(answer, nullptr, false);
    return object.is_object() ? stringIn(object, "partial") : "";
}

/// Some noise, so that the search has something to do, then quiet.
std::vector<std::int16_t> secondOfSound() {
    constexpr auto rate = static_cast<std::size_t>(kEngineRate);
    std::minstd_rand random(1);
    std::uniform_int_distribution<int> noise(-3000, 3000);
    std::vector<std::int16_t> samples(rate);
    for (std::size_t i = 0; i < rate / 2; ++i) {
        samples[i] = static_cast<std::int16_t>(noise(random));
    }
    return samples;
}

template <typename Function>
bool find(void* handle, const char* name, Function& function) {
    function = reinterpret_cast<Function>(::dlsym(handle, name));
    return function != nullptr;
}

} // namespace

// ------------------------------------------------------------------------------------ the library

Result<std::unique_ptr<const VoskLibrary>> VoskLibrary::load(const std::vector<std::string>& candidates) {
    std::string why = "it is not installed";
    for (const auto& candidate : candidates) {
        void* const handle = ::dlopen(candidate.c_str(), RTLD_NOW | RTLD_LOCAL);
        if (handle == nullptr) {
            const std::string message = ::dlerror();
            // One that is there and cannot be loaded is worth more words than one that is not there.
            if (message.find("No such file") == std::string::npos) {
                why = message;
            }
            continue;
        }
        std::unique_ptr<VoskLibrary> library(new VoskLibrary(handle));
        const auto missing = library->findFunctions();
        if (missing.empty()) {
            library->setLogLevel(-1);
            return std::unique_ptr<const VoskLibrary>(std::move(library));
        }
        why = candidate;
        why.append(" has no ").append(missing);
    }
    return voskUnusable(why);
}

std::string VoskLibrary::findFunctions() {
    find(handle_, "vosk_recognizer_set_max_alternatives", setMaxAlternatives);
    const std::pair<const char*, bool> needed[] = {
        {"vosk_set_log_level", find(handle_, "vosk_set_log_level", setLogLevel)},
        {"vosk_model_new", find(handle_, "vosk_model_new", newModel)},
        {"vosk_model_free", find(handle_, "vosk_model_free", freeModel)},
        {"vosk_recognizer_new", find(handle_, "vosk_recognizer_new", newRecognizer)},
        {"vosk_recognizer_free", find(handle_, "vosk_recognizer_free", freeRecognizer)},
        {"vosk_recognizer_accept_waveform_s",
         find(handle_, "vosk_recognizer_accept_waveform_s", acceptSamples)},
        {"vosk_recognizer_result", find(handle_, "vosk_recognizer_result", result)},
        {"vosk_recognizer_partial_result", find(handle_, "vosk_recognizer_partial_result", partialResult)},
        {"vosk_recognizer_final_result", find(handle_, "vosk_recognizer_final_result", finalResult)},
    };
    for (const auto& [name, isThere] : needed) {
        if (!isThere) {
            return name;
        }
    }
    return {};
}

// ------------------------------------------------------------------------------------ the decoder

Result<std::unique_ptr<UtteranceDecoder>> VoskDecoder::load(const std::vector<std::string>& libraries,
                                                            const std::string& modelFolder) {
    auto library = VoskLibrary::load(libraries);
    if (!library) {
        return library.error();
    }
    if (auto* const model = library.value()->newModel(modelFolder.c_str())) {
        std::unique_ptr<VoskDecoder> decoder(new VoskDecoder(std::move(library.value()), model));
        if (decoder->canHear()) {
            return std::unique_ptr<UtteranceDecoder>(std::move(decoder));
        }
    }
    return recognitionError(RecognitionCode::noModel,
                            "The Vosk model " + modelFolder +
                                " is not usable: the library refuses it. Unpack it again.");
}

VoskDecoder::VoskDecoder(std::unique_ptr<const VoskLibrary> library, VoskModel* model)
    : library_(std::move(library)),
      model_(model) {}

/// Many a broken model shows when it is to hear something, and so does what is read only then.
bool VoskDecoder::canHear() {
    if (!begin({"word"}) || !accept(secondOfSound())) {
        return false;
    }
    static_cast<void>(hypothesis());
    const auto text = finish();
    return text || text.error().code == static_cast<int>(RecognitionCode::noSpeech);
}

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
    recognizer_ = library_->newRecognizer(model_, static_cast<float>(kEngineRate));
    if (recognizer_ == nullptr) {
        return recognitionError(RecognitionCode::failed, "The Vosk library made no recognizer");
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

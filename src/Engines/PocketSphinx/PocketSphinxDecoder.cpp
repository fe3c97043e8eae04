// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Engines/PocketSphinx/PocketSphinxDecoder.h"

#include "Engines/Host/RecognitionError.h"

#include <pocketsphinx.h>
#include <sphinxbase/ckd_alloc.h>
#include <sphinxbase/err.h>
#include <sphinxbase/feat.h>

#include <algorithm>
#include <array>
#include <cstdarg>
#include <cstdio>
#include <string_view>
#include <utility>

namespace tovik {

namespace {

constexpr const char* kNoSpeech = "No speech detected";

// The search keeps every path since its beginning, so that an hour in one piece would take ever more memory
// and, at each look at the hypothesis, time. After half a minute it begins anew in the next pause, and after
// one and a half without any.
constexpr std::size_t kFramesInOnePiece = 3000;
constexpr std::size_t kFramesAtMost = 9000;
constexpr std::size_t kFramesBetweenLooks = 25;
constexpr int kPauseFrames = 30;
constexpr std::string_view kQuiet = "<sil>";

/// What the library complained of since this was asked last, in one line.
std::string& complaints() {
    static std::string text;
    return text;
}

void hearComplaint(void*, err_lvl_t level, const char* format, ...) {
    if (level < ERR_ERROR) {
        return;
    }
    std::array<char, 1024> line{};
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(line.data(), line.size(), format, arguments);
    va_end(arguments);
    std::string complaint(line.data());
    std::replace(complaint.begin(), complaint.end(), '\n', ' ');
    complaints() += complaint;
}

std::string takeComplaints() {
    auto text = std::exchange(complaints(), "");
    text.erase(text.find_last_not_of(' ') + 1);
    return text;
}

cmd_ln_t* makeConfiguration(const std::string& folder) {
    return cmd_ln_init(nullptr, ps_args(), TRUE,                          //
                       "-hmm", (folder + "/en-us").c_str(),               //
                       "-lm", (folder + "/en-us.lm.bin").c_str(),         //
                       "-dict", (folder + "/cmudict-en-us.dict").c_str(), //
                       // A file that shrinks while it is mapped would end the process.
                       "-mmap", "no",
                       // The second pass over the whole utterance begins only at its end: too late.
                       "-fwdflat", "no",
                       // Two thirds of the work, and no more words are wrong.
                       "-maxhmmpf", "5000", "-topn", "2", nullptr);
}

Error unusable(const std::string& why) {
    return recognitionError(RecognitionCode::noModel,
                            "The English speech model is not usable: " + why +
                                ". Install the Debian package pocketsphinx-en-us again.");
}

/// Whether the library has made a dictionary with words; of a file that is none it makes one without.
bool knowsWords(ps_decoder_t* decoder) {
    char* const phones = ps_lookup_word(decoder, "the");
    const bool isKnown = phones != nullptr;
    ckd_free(phones);
    return isKnown;
}

/// A call of the library that tells its failure by a negative number.
Result<void> outcome(int code) {
    if (code < 0) {
        return recognitionError(RecognitionCode::failed, "The recognizer failed: " + takeComplaints());
    }
    takeComplaints();
    return {};
}

} // namespace

Result<ps_decoder_s*> PocketSphinxDecoder::loadLibrary(const std::string& folder) {
    err_set_logfp(nullptr);
    err_set_callback(hearComplaint, nullptr);
    takeComplaints();
    auto* const configuration = makeConfiguration(folder);
    auto* const decoder = configuration == nullptr ? nullptr : ps_init(configuration);
    cmd_ln_free_r(configuration);
    if (decoder == nullptr) {
        return unusable(takeComplaints());
    }
    if (!knowsWords(decoder)) {
        ps_free(decoder);
        return unusable("the dictionary holds no English words");
    }
    // The library normalises from what it heard last; here the frames come normalised.
    ps_get_feat(decoder)->cmn = CMN_NONE;
    return decoder;
}

Result<std::unique_ptr<UtteranceDecoder>> PocketSphinxDecoder::load(const std::string& folder) {
    const auto loaded = loadLibrary(folder);
    if (!loaded) {
        return loaded.error();
    }
    auto* const decoder = loaded.value();
    auto frontEnd = FrontEnd::make(ps_get_config(decoder));
    if (frontEnd == nullptr) {
        ps_free(decoder);
        return unusable("it has other features");
    }
    return std::unique_ptr<UtteranceDecoder>(new PocketSphinxDecoder(folder, decoder, std::move(frontEnd)));
}

PocketSphinxDecoder::PocketSphinxDecoder(std::string folder, ps_decoder_s* decoder,
                                         std::unique_ptr<FrontEnd> frontEnd)
    : folder_(std::move(folder)),
      decoder_(decoder),
      frontEnd_(std::move(frontEnd)) {}

PocketSphinxDecoder::~PocketSphinxDecoder() {
    ps_free(decoder_);
}

Result<void> PocketSphinxDecoder::forgetTerms() {
    const auto loaded = loadLibrary(folder_);
    if (!loaded) {
        return loaded.error();
    }
    ps_free(decoder_);
    decoder_ = loaded.value();
    vocabulary_ = {};
    return {};
}

Result<void> PocketSphinxDecoder::prepare(const std::vector<std::string>& contextualStrings) {
    if (vocabulary_.isTaught(contextualStrings)) {
        return {};
    }
    // Nothing can be untaught, so that fewer terms need another decoder.
    if (!vocabulary_.canBeExtendedTo(contextualStrings)) {
        if (auto forgotten = forgetTerms(); !forgotten) {
            return forgotten;
        }
    }
    takeComplaints();
    if (vocabulary_.teach(decoder_, contextualStrings)) {
        return {};
    }
    const auto why = takeComplaints();
    // It may have learned some of them.
    static_cast<void>(forgetTerms());
    return recognitionError(RecognitionCode::failed, "The vocabulary could not be used: " + why);
}

Result<void> PocketSphinxDecoder::begin(const std::vector<std::string>& contextualStrings) {
    if (auto prepared = prepare(contextualStrings); !prepared) {
        return prepared;
    }
    voice_.begin();
    frontEnd_->begin();
    mean_.begin();
    searched_ = 0;
    earlierWords_.clear();
    return outcome(ps_start_utt(decoder_));
}

Result<void> PocketSphinxDecoder::accept(std::span<const std::int16_t> samples) {
    heard_.clear();
    voice_.process(samples);
    frontEnd_->process(samples, heard_);
    mean_.process(heard_, ready_);
    return searchReady();
}

Result<void> PocketSphinxDecoder::searchReady() {
    if (ready_.startsOver && searched_ > 0) {
        searched_ = 0;
        ps_end_utt(decoder_);
        if (auto startedOver = outcome(ps_start_utt(decoder_)); !startedOver) {
            return startedOver;
        }
    }
    return search(ready_.frames);
}

Result<void> PocketSphinxDecoder::search(std::span<const Cepstrum> frames) {
    for (const auto& frame : frames) {
        last_ = frame;
        auto* row = last_.data();
        if (auto result = outcome(ps_process_cep(decoder_, &row, 1, FALSE, FALSE)); !result) {
            return result;
        }
        ++searched_;
        const bool looks = searched_ >= kFramesInOnePiece && searched_ % kFramesBetweenLooks == 0;
        if (looks && (searched_ >= kFramesAtMost || isPausing())) {
            if (auto afresh = searchAfresh(); !afresh) {
                return afresh;
            }
        }
    }
    return {};
}

// The last frames wait for three more, which give their features the right-hand side.
Result<void> PocketSphinxDecoder::searchPadding() {
    for (int frame = 0; frame < 3; ++frame) {
        auto* row = last_.data();
        if (auto result = outcome(ps_process_cep(decoder_, &row, 1, FALSE, FALSE)); !result) {
            return result;
        }
    }
    return {};
}

bool PocketSphinxDecoder::isPausing() {
    int quiet = 0;
    for (auto* segment = ps_seg_iter(decoder_); segment != nullptr; segment = ps_seg_next(segment)) {
        int first = 0;
        int last = 0;
        ps_seg_frames(segment, &first, &last);
        quiet = ps_seg_word(segment) == kQuiet ? last - first + 1 : 0;
    }
    return quiet >= kPauseFrames;
}

Result<void> PocketSphinxDecoder::searchAfresh() {
    if (auto padded = searchPadding(); !padded) {
        return padded;
    }
    if (auto ended = outcome(ps_end_utt(decoder_)); !ended) {
        return ended;
    }
    earlierWords_ = joined(earlierWords_, newWords());
    searched_ = 0;
    return outcome(ps_start_utt(decoder_));
}

std::string PocketSphinxDecoder::newWords() {
    const char* const text = ps_get_hyp(decoder_, nullptr);
    return text != nullptr ? vocabulary_.spelled(text) : "";
}

std::string PocketSphinxDecoder::hypothesis() {
    // Of a noise the library makes words, too.
    return voice_.heardVoice() ? joined(earlierWords_, newWords()) : "";
}

Result<std::string> PocketSphinxDecoder::finish() {
    heard_.clear();
    frontEnd_->finish(heard_);
    mean_.process(heard_, ready_);
    auto searched = searchReady();
    if (searched) {
        mean_.finish(ready_);
        searched = searchReady();
    }
    if (searched && searched_ > 0) {
        searched = searchPadding();
    }
    if (auto ended = outcome(ps_end_utt(decoder_)); searched && !ended) {
        searched = ended;
    }
    if (!searched) {
        return searched.error();
    }
    auto text = hypothesis();
    if (text.empty()) {
        return recognitionError(RecognitionCode::noSpeech, kNoSpeech);
    }
    return text;
}

} // namespace tovik

// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Engines/PocketSphinx/PocketSphinxDecoder.h"

#include "Engines/Host/RecognitionError.h"

#include <pocketsphinx.h>
#include <sphinxbase/ckd_alloc.h>
#include <sphinxbase/err.h>
#include <sphinxbase/feat.h>

#include <string_view>

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

struct ModelPaths {
    std::string acousticModel;
    std::string languageModel;
    std::string dictionary;
};

cmd_ln_t* makeConfiguration(const ModelPaths& paths) {
    return cmd_ln_init(nullptr, ps_args(), TRUE,            //
                       "-hmm", paths.acousticModel.c_str(), //
                       "-lm", paths.languageModel.c_str(),  //
                       "-dict", paths.dictionary.c_str(),   //
                       // A file that shrinks while it is mapped would end the process.
                       "-mmap", "no",
                       // The second pass over the whole utterance begins only at its end: too late.
                       "-fwdflat", "no",
                       // Two thirds of the work, and no more words are wrong.
                       "-maxhmmpf", "5000", "-topn", "2", nullptr);
}

std::string joined(const std::string& earlier, const std::string& later) {
    return earlier.empty() || later.empty() ? earlier + later : earlier + ' ' + later;
}

} // namespace

Result<ps_decoder_s*> PocketSphinxDecoder::loadLibrary(const ModelFiles& files) {
    LibraryCall library;
    const ModelPaths paths{files.acousticModel.string(), files.languageModel.string(),
                           files.dictionary.string()};
    cmd_ln_t* configuration = nullptr;
    ps_decoder_t* decoder = nullptr;
    const bool returned = library([&] {
        configuration = makeConfiguration(paths);
        if (configuration != nullptr) {
            decoder = ps_init(configuration);
            cmd_ln_free_r(configuration);
        }
        // Of a file that is none the library makes a dictionary without words.
        if (decoder != nullptr) {
            char* const phones = ps_lookup_word(decoder, "the");
            if (phones == nullptr) {
                E_ERROR("The dictionary holds no English words\n");
                ps_free(decoder);
                decoder = nullptr;
            }
            ckd_free(phones);
        }
    });
    if (!returned || decoder == nullptr) {
        return recognitionError(RecognitionCode::noModel,
                                "The English speech model is not usable: " + library.complaintsLine() +
                                    ". Install the Debian package pocketsphinx-en-us anew.");
    }
    // The library normalises from what it heard last; here the frames come normalised.
    ps_get_feat(decoder)->cmn = CMN_NONE;
    return decoder;
}

Result<std::unique_ptr<UtteranceDecoder>> PocketSphinxDecoder::load(const ModelFiles& files) {
    if (auto usable = files.checkContent(); !usable) {
        return usable.error();
    }
    const auto loaded = loadLibrary(files);
    if (!loaded) {
        return loaded.error();
    }
    auto* const decoder = loaded.value();
    auto frontEnd = FrontEnd::make(ps_get_config(decoder));
    if (frontEnd == nullptr) {
        ps_free(decoder);
        return recognitionError(RecognitionCode::noModel,
                                "The English speech model is not usable: it has other features. "
                                "Install the Debian package pocketsphinx-en-us anew.");
    }
    return std::unique_ptr<UtteranceDecoder>(new PocketSphinxDecoder(files, decoder, std::move(frontEnd)));
}

PocketSphinxDecoder::PocketSphinxDecoder(ModelFiles files, ps_decoder_s* decoder,
                                         std::unique_ptr<FrontEnd> frontEnd)
    : files_(std::move(files)),
      decoder_(decoder),
      frontEnd_(std::move(frontEnd)) {}

PocketSphinxDecoder::~PocketSphinxDecoder() {
    if (!unusable_) {
        ps_free(decoder_);
    }
}

template <typename Callable>
Result<void> PocketSphinxDecoder::call(Callable callable) {
    LibraryCall library;
    int outcome = 0;
    if (unusable_ || !library([&] { outcome = callable(); })) {
        unusable_ = true;
        return recognitionError(RecognitionCode::failed,
                                "The recogniser gave up: " + library.complaintsLine());
    }
    if (outcome < 0) {
        return recognitionError(RecognitionCode::failed,
                                "The recogniser failed: " + library.complaintsLine());
    }
    return {};
}

Result<void> PocketSphinxDecoder::forgetTerms() {
    const auto loaded = loadLibrary(files_);
    if (!loaded) {
        return loaded.error();
    }
    if (!unusable_) {
        ps_free(decoder_);
    }
    unusable_ = false;
    decoder_ = loaded.value();
    vocabulary_ = {};
    return {};
}

Result<void> PocketSphinxDecoder::prepare(const std::vector<std::string>& contextualStrings) {
    if (!unusable_ && vocabulary_.isTaught(contextualStrings)) {
        return {};
    }
    // Nothing can be untaught, so that fewer terms need another decoder.
    if (unusable_ || !vocabulary_.canBeExtendedTo(contextualStrings)) {
        if (auto forgotten = forgetTerms(); !forgotten) {
            return forgotten;
        }
    }
    auto taught = vocabulary_.teach(decoder_, contextualStrings);
    unusable_ = !taught;
    return taught;
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
    return call([this] { return ps_start_utt(decoder_); });
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
        auto startedOver = call([this] {
            ps_end_utt(decoder_);
            return ps_start_utt(decoder_);
        });
        if (!startedOver) {
            return startedOver;
        }
    }
    return search(ready_.frames);
}

Result<void> PocketSphinxDecoder::search(std::span<const Cepstrum> frames) {
    for (const auto& frame : frames) {
        last_ = frame;
        auto* row = last_.data();
        if (auto result = call([&] { return ps_process_cep(decoder_, &row, 1, FALSE, FALSE); }); !result) {
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
        if (auto result = call([&] { return ps_process_cep(decoder_, &row, 1, FALSE, FALSE); }); !result) {
            return result;
        }
    }
    return {};
}

bool PocketSphinxDecoder::isPausing() {
    int quiet = 0;
    const auto looked = call([&] {
        for (auto* segment = ps_seg_iter(decoder_); segment != nullptr; segment = ps_seg_next(segment)) {
            int first = 0;
            int last = 0;
            ps_seg_frames(segment, &first, &last);
            quiet = ps_seg_word(segment) == kQuiet ? last - first + 1 : 0;
        }
        return 0;
    });
    return looked && quiet >= kPauseFrames;
}

Result<void> PocketSphinxDecoder::searchAfresh() {
    if (auto padded = searchPadding(); !padded) {
        return padded;
    }
    if (auto ended = call([this] { return ps_end_utt(decoder_); }); !ended) {
        return ended;
    }
    earlierWords_ = joined(earlierWords_, newWords());
    searched_ = 0;
    return call([this] { return ps_start_utt(decoder_); });
}

std::string PocketSphinxDecoder::newWords() {
    const char* text = nullptr;
    const auto result = call([&] {
        text = ps_get_hyp(decoder_, nullptr);
        return 0;
    });
    return result && text != nullptr ? vocabulary_.spelled(text) : "";
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
    if (auto ended = call([this] { return ps_end_utt(decoder_); }); searched && !ended) {
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

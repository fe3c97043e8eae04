// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Linux/PocketSphinx/PocketSphinxDecoder.h"

#include "Linux/PocketSphinx/PocketSphinxError.h"

#include <pocketsphinx.h>
#include <sphinxbase/feat.h>

#include <array>

namespace tovik {

namespace {

constexpr const char* kNoSpeech = "No speech detected";

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
                       "-fwdflat", "no", nullptr);
}

} // namespace

Result<std::unique_ptr<UtteranceDecoder>> PocketSphinxDecoder::load(const ModelFiles& files) {
    if (auto usable = files.check(); !usable) {
        return usable.error();
    }
    LibraryCall library;
    const ModelPaths paths{files.acousticModel.string(), files.languageModel.string(),
                           files.dictionary.string()};
    cmd_ln_t* configuration = nullptr;
    ps_decoder_t* decoder = nullptr;
    const bool returned = library([&] {
        configuration = makeConfiguration(paths);
        if (configuration != nullptr) {
            decoder = ps_init(configuration);
        }
    });
    if (!returned || decoder == nullptr) {
        if (returned) {
            cmd_ln_free_r(configuration);
        }
        return pocketSphinxError(PocketSphinxCode::noModel,
                                 "The English speech model is not usable: " + library.complaintsLine() +
                                     ". Install the Debian package pocketsphinx-en-us anew.");
    }
    // The library normalises from what it heard last; here the frames come normalised.
    ps_get_feat(decoder)->cmn = CMN_NONE;
    auto frontEnd = FrontEnd::make(configuration);
    cmd_ln_free_r(configuration);
    if (frontEnd == nullptr) {
        ps_free(decoder);
        return pocketSphinxError(PocketSphinxCode::noModel,
                                 "The English speech model is not usable: it has other features. "
                                 "Install the Debian package pocketsphinx-en-us anew.");
    }
    return std::unique_ptr<UtteranceDecoder>(new PocketSphinxDecoder(decoder, std::move(frontEnd)));
}

PocketSphinxDecoder::PocketSphinxDecoder(ps_decoder_s* decoder, std::unique_ptr<FrontEnd> frontEnd)
    : decoder_(decoder),
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
        return pocketSphinxError(PocketSphinxCode::failed,
                                 "The recogniser gave up: " + library.complaintsLine());
    }
    if (outcome < 0) {
        return pocketSphinxError(PocketSphinxCode::failed,
                                 "The recogniser failed: " + library.complaintsLine());
    }
    return {};
}

Result<void> PocketSphinxDecoder::begin(const std::vector<std::string>&) {
    voice_.begin();
    frontEnd_->begin();
    mean_.begin();
    searched_ = 0;
    return call([this] { return ps_start_utt(decoder_); });
}

Result<void> PocketSphinxDecoder::accept(std::span<const std::int16_t> samples) {
    heard_.clear();
    ready_.clear();
    voice_.process(samples);
    frontEnd_->process(samples, heard_);
    mean_.process(heard_, ready_);
    return search(ready_);
}

Result<void> PocketSphinxDecoder::search(std::span<const Cepstrum> frames) {
    for (const auto& frame : frames) {
        last_ = frame;
        auto* row = last_.data();
        if (auto result = call([&] { return ps_process_cep(decoder_, &row, 1, FALSE, FALSE); }); !result) {
            return result;
        }
        ++searched_;
    }
    return {};
}

std::string PocketSphinxDecoder::hypothesis() {
    // Of a noise the library makes words, too.
    if (!voice_.heardVoice()) {
        return {};
    }
    const char* text = nullptr;
    const auto result = call([&] {
        text = ps_get_hyp(decoder_, nullptr);
        return 0;
    });
    return result && text != nullptr ? text : "";
}

Result<std::string> PocketSphinxDecoder::finish() {
    heard_.clear();
    ready_.clear();
    frontEnd_->finish(heard_);
    mean_.process(heard_, ready_);
    mean_.finish(ready_);
    auto searched = search(ready_);
    if (searched && searched_ > 0) {
        // The last frames wait for three more, which give their features the right-hand side.
        const std::array<Cepstrum, 3> padding{last_, last_, last_};
        searched = search(padding);
    }
    if (auto ended = call([this] { return ps_end_utt(decoder_); }); searched && !ended) {
        searched = ended;
    }
    if (!searched) {
        return searched.error();
    }
    auto text = hypothesis();
    if (text.empty()) {
        return pocketSphinxError(PocketSphinxCode::noSpeech, kNoSpeech);
    }
    return text;
}

} // namespace tovik

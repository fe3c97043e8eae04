// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
//
// tovik-check-vosk LIBRARY MODEL: tries whether the Vosk library can use a model. Exit status 0 when it can.
// The library may also end it with a signal; when it hangs, SIGALRM does.
#include "Engines/Host/RecognitionError.h"
#include "Engines/Vosk/VoskDecoder.h"

#include <signal.h>
#include <sys/prctl.h>
#include <unistd.h>

#include <cstdio>
#include <random>
#include <vector>

namespace {

using namespace tovik;

constexpr int kUnusable = 1;
constexpr int kWrongUse = 2;

/// The biggest models take a minute from a cold disk.
constexpr unsigned kLoadingSeconds = 150;
/// For a second of sound.
constexpr unsigned kListeningSeconds = 30;

/// Some noise, so that the search has something to do, then quiet.
std::vector<std::int16_t> sound() {
    constexpr auto rate = static_cast<std::size_t>(UtteranceDecoder::sampleRate);
    std::minstd_rand random(1);
    std::uniform_int_distribution<int> noise(-3000, 3000);
    std::vector<std::int16_t> samples(rate);
    for (std::size_t i = 0; i < rate / 2; ++i) {
        samples[i] = static_cast<std::int16_t>(noise(random));
    }
    return samples;
}

int check(const std::string& libraryFile, const std::string& modelFolder) {
    const auto library = VoskLibrary::load({libraryFile});
    if (!library) {
        return kUnusable;
    }
    ::alarm(kLoadingSeconds);
    const auto decoder = VoskDecoder::load(library.value(), modelFolder);
    if (!decoder) {
        return kUnusable;
    }
    ::alarm(kListeningSeconds);
    if (!decoder.value()->begin({"word"}) || !decoder.value()->accept(sound())) {
        return kUnusable;
    }
    static_cast<void>(decoder.value()->hypothesis());
    const auto text = decoder.value()->finish();
    const bool isAnswer = text || text.error().code == recognitionError(RecognitionCode::noSpeech, {}).code;
    return isAnswer ? 0 : kUnusable;
}

} // namespace

int main(int count, char** arguments) {
    // No core files of crashes that are expected, and no life without the program that asks.
    ::prctl(PR_SET_DUMPABLE, 0);
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (count != 3) {
        std::fputs("usage: tovik-check-vosk LIBRARY MODEL\n", stderr);
        return kWrongUse;
    }
    const int outcome = check(arguments[1], arguments[2]);
    // Whatever the library would still do on its way out is of no interest.
    ::_exit(outcome);
}

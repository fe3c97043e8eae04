// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
//
// tovik-engine pocketsphinx MODEL
// tovik-engine vosk MODEL LIBRARY...
//
// Decodes speech with one model and one library, for a program that talks with it as Engines/Host/Protocol.h
// says.
#include "Engines/Host/DecoderHost.h"
#include "Engines/PocketSphinx/PocketSphinxDecoder.h"
#include "Engines/Vosk/VoskDecoder.h"

#include <cstdio>

int main(int count, char** arguments) {
    using namespace tovik;
    const std::vector<std::string> words(arguments, arguments + count);
    if (count == 3 && words[1] == "pocketsphinx") {
        serveDecoder([&] { return PocketSphinxDecoder::load(words[2]); });
    }
    if (count >= 4 && words[1] == "vosk") {
        serveDecoder([&] { return VoskDecoder::load({words.begin() + 3, words.end()}, words[2]); });
    }
    std::fputs("usage: tovik-engine pocketsphinx MODEL | vosk MODEL LIBRARY...\n", stderr);
    return 2;
}

// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Transcriber.h"

#include <cstdio>
#include <iostream>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <vector>

namespace {

using tovik::FileAudioEngine;
using tovik::SoundFile;
using tovik::Transcriber;
using tovik::Transcript;

constexpr int kFailed = 1;
constexpr int kWrongUse = 2;

constexpr std::string_view kHelp =
    R"(usage: tovik-transcribe [OPTION...] FILE.wav...

Dictates recordings without a desktop: the program's recognizer and text rules, with the
settings of the first day. Touches no settings; only the sound that a speech server
fails is kept in a file.

  --json      one JSON object a recording: file, text (as it would be pasted), recognised
              (the recognizer's own words), audio_seconds, final_ms (end of sound to final
              text), rtf (processor time for a second of sound), load_ms (until the model was
              loaded); error when there is no text
  --realtime  play at the speed at which a person speaks
  --vocabulary TERMS
              words and phrases to favour, beside the built-in ones; commas between them
  --setting KEY=VALUE
              a setting by its key, its value as JSON or as plain text
  --verbose   the program's log lines on standard error

Exit status: 0 when every recording was heard, also one without speech; 1 when a file cannot
be read or the recognizer cannot be used; 2 for a wrong command line.
)";

struct Options {
    bool json = false;
    bool realTime = false;
    bool verbose = false;
    bool help = false;
    tovik::OwnSettings::Values settings;
    std::vector<std::string> files;
    std::string wrong;
};

void addSetting(std::string_view setting, Options& options) {
    const auto equals = setting.find('=');
    if (equals == std::string_view::npos) {
        options.wrong = "a setting needs a key and a value: " + std::string(setting);
        return;
    }
    const std::string text(setting.substr(equals + 1));
    const auto value = tovik::PropertyValue::parse(text, nullptr, false);
    options.settings[std::string(setting.substr(0, equals))] =
        value.is_discarded() ? tovik::PropertyValue(text) : value;
}

Options parse(int count, char** arguments) {
    Options options;
    bool onlyFiles = false;
    for (int i = 1; i < count; ++i) {
        const std::string_view argument = arguments[i];
        if (onlyFiles || !argument.starts_with("--")) {
            options.files.emplace_back(argument);
        } else if (argument == "--") {
            onlyFiles = true;
        } else if (argument == "--json") {
            options.json = true;
        } else if (argument == "--realtime") {
            options.realTime = true;
        } else if (argument == "--vocabulary" && i + 1 < count) {
            options.settings["CustomVocabulary"] = arguments[++i];
        } else if (argument == "--setting" && i + 1 < count) {
            addSetting(arguments[++i], options);
        } else if (argument == "--verbose") {
            options.verbose = true;
        } else if (argument == "--help") {
            options.help = true;
        } else {
            options.wrong = "unknown option " + std::string(argument);
        }
    }
    if (options.files.empty() && options.wrong.empty()) {
        options.wrong = "no file given";
    }
    return options;
}

void printJson(const std::string& file, const Transcript& transcript, tovik::Seconds loadTime) {
    nlohmann::ordered_json object{{"file", file},
                                  {"text", transcript.text},
                                  {"recognised", transcript.recognized},
                                  {"audio_seconds", transcript.audioSeconds},
                                  {"final_ms", transcript.finalMilliseconds},
                                  {"rtf", transcript.realTimeFactor},
                                  {"load_ms", loadTime.count() * 1000}};
    if (transcript.error) {
        object["error"] = *transcript.error;
    }
    // A file name need not be UTF-8.
    std::cout << object.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace) << std::endl;
}

void printPlain(const std::string& file, const Transcript& transcript) {
    std::cout << file << '\n'
              << "  text        " << transcript.text << '\n'
              << "  recognised  " << transcript.recognized << '\n';
    if (transcript.error) {
        std::cout << "  error       " << *transcript.error << '\n';
    }
    std::printf("  %.2f s of sound, final text %.0f ms after its end, real-time factor %.2f\n",
                transcript.audioSeconds, transcript.finalMilliseconds, transcript.realTimeFactor);
    std::cout << std::flush;
}

int complain(const std::string& what) {
    std::cerr << "tovik-transcribe: " << what << '\n';
    return kFailed;
}

int transcribeAll(const Options& options) {
    tovik::ErrorStreamLog log(options.verbose);
    Transcriber transcriber(options.realTime ? FileAudioEngine::Pace::realTime
                                             : FileAudioEngine::Pace::asFastAsAllowed,
                            options.settings, log);
    int status = 0;
    bool prepared = false;
    for (const auto& file : options.files) {
        auto sound = SoundFile::read(file);
        if (!sound) {
            status = complain(sound.error().description);
            continue;
        }
        if (!prepared) {
            if (const auto why = transcriber.prepare()) {
                return complain(*why);
            }
            prepared = true;
        }
        const auto transcript = transcriber.transcribe(std::move(sound.value()));
        if (options.json) {
            printJson(file, transcript, transcriber.loadTime());
        } else {
            printPlain(file, transcript);
        }
    }
    return status;
}

} // namespace

int main(int count, char** arguments) {
    std::ios::sync_with_stdio(true);
    const auto options = parse(count, arguments);
    if (options.help) {
        std::cout << kHelp;
        return 0;
    }
    if (!options.wrong.empty()) {
        std::cerr << "tovik-transcribe: " << options.wrong << '\n' << kHelp;
        return kWrongUse;
    }
    return transcribeAll(options);
}

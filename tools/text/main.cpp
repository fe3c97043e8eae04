// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Linux/Storage/JsonUserDefaults.h"
#include "Linux/Storage/XdgFolders.h"
#include "Platform/SystemLog.h"
#include "RequestAnswerer.h"
#include "Speech/Text/FinalTextChain.h"
#include "Speech/Text/TranscriptionDictionary.h"

#include <cstdlib>
#include <filesystem>
#include <functional>
#include <iostream>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace {

constexpr std::string_view kHelp = R"(Cleans text as Tovik Record cleans what you dictate.

  tovik-text [--settings FILE]   clean standard input line by line: punctuation spacing, filler words,
                                 spoken forms, and then your corrections
  tovik-text --jsonl             answer one JSON object for each line of standard input, such as
                                 {"op":"process","text":"um twenty five dollars","settings":{}}
  tovik-text --help              show this text

Settings are those of Tovik Record, or those in FILE. As when Tovik Record starts, its own few corrections are
stored in them where none are stored yet. With --jsonl no settings are read or written but those that a line
brings along. Operations there: process, fillers, format, number, day, year, corrections, parseDisplay,
fillerList, vocabulary, menuTitle, elapsed, level, bar.
)";

/// The log of a program whose standard output is its result.
class ErrorLog : public tovik::SystemLog {
public:
    void printLine(std::string_view line) override { std::cerr << line << std::endl; }
    void logLine(std::string_view line) override { printLine(line); }
};

struct Options {
    bool jsonLines = false;
    bool help = false;
    std::optional<std::string> settings;
};

/// Nothing when the arguments make no sense.
std::optional<Options> optionsFrom(const std::vector<std::string_view>& arguments) {
    Options options;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        if (arguments[i] == "--jsonl") {
            options.jsonLines = true;
        } else if (arguments[i] == "--help" || arguments[i] == "-h") {
            options.help = true;
        } else if (arguments[i] == "--settings" && i + 1 < arguments.size()) {
            options.settings = arguments[++i];
        } else {
            return std::nullopt;
        }
    }
    if (options.jsonLines && options.settings) {
        return std::nullopt;
    }
    return options;
}

/// False when standard output is gone.
bool answerLines(const std::function<std::string(const std::string&)>& answer) {
    std::string line;
    while (std::getline(std::cin, line)) {
        if (!(std::cout << answer(line) << std::endl)) {
            return false;
        }
    }
    return true;
}

bool cleanLines(const std::string& settingsFile) {
    ErrorLog log;
    tovik::JsonUserDefaults settings(std::filesystem::absolute(settingsFile).string(), log);
    tovik::FinalTextChain chain(settings, log);
    tovik::TranscriptionDictionary dictionary(settings, log);
    return answerLines(
        [&](const std::string& line) { return dictionary.apply(chain.processTranscription(line)); });
}

bool answerRequests() {
    ErrorLog log;
    tovik::RequestAnswerer answerer(log);
    return answerLines([&](const std::string& line) { return answerer.answer(line); });
}

} // namespace

int main(int argc, char** argv) {
    std::ios::sync_with_stdio(false);
    const auto options = optionsFrom({argv + 1, argv + argc});
    if (!options) {
        std::cerr << kHelp;
        return 2;
    }
    if (options->help) {
        std::cout << kHelp;
        return EXIT_SUCCESS;
    }
    const bool written = options->jsonLines
                             ? answerRequests()
                             : cleanLines(options->settings.value_or(tovik::XdgFolders().defaultsFile()));
    return written ? EXIT_SUCCESS : EXIT_FAILURE;
}

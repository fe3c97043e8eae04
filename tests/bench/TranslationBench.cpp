// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
//
// How long the translator on this machine takes, as the program uses it: through its event loop.
#include "Engines/Apertium/ApertiumService.h"
#include "Linux/Desktop/QtMainQueue.h"

#include <QCoreApplication>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>
#include <vector>

namespace {

using namespace tovik;

const std::vector<std::string>& sentences() {
    static const std::vector<std::string> all{
        "Good morning.",
        "I will go to the shop tomorrow and buy some milk.",
        "Please send me the report before Friday, because we have to talk about it with the others.",
        "The meeting begins at 10:30 and ends at noon.",
        "She said that the house of her friend is bigger than ours.",
        "Could you tell him that we cannot come on the second of March?",
        "I have read the book that you gave me, and I liked it very much.",
        "The train was late again, so we took the car and drove all night long.",
    };
    return all;
}

class Stopwatch {
public:
    [[nodiscard]] double milliseconds() const {
        return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start_).count();
    }

private:
    std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
};

/// From the wish for a translation to the text.
double timeOf(TranslationService& service, const std::string& text) {
    const Stopwatch watch;
    std::optional<Result<std::string>> outcome;
    const auto offer = service.offerSessions({"en", "es"}, [&](const TranslationSession& session) {
        session(text, [&](const Result<std::string>& answer) { outcome = answer; });
    });
    while (!outcome) {
        QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
    }
    const auto elapsed = watch.milliseconds();
    if (!*outcome) {
        std::fprintf(stderr, "%s\n", outcome->error().description.c_str());
        std::exit(EXIT_FAILURE);
    }
    return elapsed;
}

void report(const char* what, std::vector<double> times) {
    std::ranges::sort(times);
    std::printf("%-45s median %8.1f ms   least %8.1f   most %8.1f   (%zu)\n", what, times[times.size() / 2],
                times.front(), times.back(), times.size());
}

/// What the programs of the pipeline need: all that they map, and their fair share of it.
void reportMemory() {
    long resident = 0;
    long share = 0;
    std::size_t count = 0;
    for (const auto& thread : std::filesystem::directory_iterator("/proc/self/task")) {
        std::ifstream children(thread.path() / "children");
        for (std::string child; children >> child; ++count) {
            std::ifstream rollup("/proc/" + child + "/smaps_rollup");
            for (std::string line; std::getline(rollup, line);) {
                if (line.starts_with("Rss:")) {
                    resident += std::atol(line.c_str() + 4);
                } else if (line.starts_with("Pss:")) {
                    share += std::atol(line.c_str() + 4);
                }
            }
        }
    }
    std::printf("%-45s %zu programs, resident %.0f MB, shared pages counted once %.0f MB\n",
                "memory while warm", count, static_cast<double>(resident) / 1024.0,
                static_cast<double>(share) / 1024.0);
}

} // namespace

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    QtMainQueue queue;

    std::vector<double> cold;
    for (auto count = 0; count < 10; ++count) {
        ApertiumService fresh(queue);
        cold.push_back(timeOf(fresh, sentences()[1]));
    }
    report("a sentence, the programs started for it", cold);

    ApertiumService service(queue);
    timeOf(service, sentences()[0]);
    constexpr int kTimes = 400;
    std::vector<double> warm;
    warm.reserve(kTimes);
    for (auto count = 0; count < kTimes; ++count) {
        warm.push_back(timeOf(service, sentences()[static_cast<std::size_t>(count) % sentences().size()]));
    }
    report("a sentence, warm", warm);
    reportMemory();

    std::string text;
    for (std::size_t count = 0; text.size() < 200000; ++count) {
        text += sentences()[count % sentences().size()] + (count % 5 == 4 ? "\n" : " ");
    }
    report("200 kB of sentences", {timeOf(service, text)});
    return EXIT_SUCCESS;
}

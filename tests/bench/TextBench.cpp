// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Speech/Text/FinalTextChain.h"
#include "Speech/Text/TranscriptionDictionary.h"
#include "support/MemoryUserDefaults.h"
#include "support/PlainTextRules.h"
#include "support/RecordingLog.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <map>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

// What the text rules cost. The ratios at the end are what matters: they compare times of the same run.

namespace tovik::test {

namespace {

/// 30 words in which something is there for most rules.
const std::string kTranscript = "Um so the meeting with bot to bot is on march the fifth at one thirty pm "
                                "and,uh it will cost us about twenty "
                                "five dollars for the first place I think.";

TranscriptionDictionary::Mapping correctionsOf(std::size_t count) {
    TranscriptionDictionary::Mapping mapping{{"bot to bot", "Tovik Record"}};
    for (std::size_t i = 1; i < count; ++i) {
        mapping.emplace("heard phrase number " + std::to_string(i), "Written" + std::to_string(i));
    }
    return mapping;
}

std::string textOf(std::size_t bytes) {
    std::string text;
    while (text.size() < bytes) {
        text += kTranscript + " ";
    }
    return text;
}

/// The whole road of a transcript.
class Road {
public:
    explicit Road(std::size_t corrections) : chain_(prepared(defaults_, corrections), log_, "en_US") {}

    std::string run(const std::string& text) { return dictionary_.apply(chain_.processTranscription(text)); }
    TranscriptionDictionary& dictionary() { return dictionary_; }

private:
    static UserDefaults& prepared(UserDefaults& defaults, std::size_t corrections) {
        defaults.set(FillerWords::removeKey, true);
        defaults.set(TranscriptionDictionary::dictionaryKey, correctionsOf(corrections));
        return defaults;
    }

    MemoryUserDefaults defaults_;
    RecordingLog log_;
    FinalTextChain chain_;
    TranscriptionDictionary dictionary_{defaults_, log_};
};

void measureRoad(benchmark::State& state, std::size_t corrections, const std::string& text) {
    Road road(corrections);
    for (auto _ : state) {
        benchmark::DoNotOptimize(road.run(text));
    }
}

/// The plain reading of the rules, which compiles each of its patterns for each call.
void measurePlainReading(benchmark::State& state, std::size_t corrections) {
    const auto mapping = correctionsOf(corrections);
    const std::string fillers(FillerWords::defaultList);
    for (auto _ : state) {
        benchmark::DoNotOptimize(
            plain::applyCorrections(plain::processTranscription(kTranscript, fillers), mapping));
    }
}

void measureNewMapping(benchmark::State& state, std::size_t corrections) {
    Road road(corrections);
    const auto mapping = correctionsOf(corrections);
    for (auto _ : state) {
        road.dictionary().setDictionary(mapping);
        benchmark::DoNotOptimize(road.dictionary().apply(kTranscript));
    }
}

std::string hostile(const std::string& piece) {
    std::string text;
    while (text.size() < 1'000'000) {
        text += piece;
    }
    return text;
}

/// Remembers the processor time of each benchmark beside showing it.
class RememberingReporter : public benchmark::ConsoleReporter {
public:
    void ReportRuns(const std::vector<Run>& runs) override {
        for (const auto& run : runs) {
            const auto name = run.benchmark_name();
            if (run.run_type == Run::RT_Iteration) {
                const auto time = run.GetAdjustedCPUTime() / benchmark::GetTimeUnitMultiplier(run.time_unit);
                const auto known = times_.find(name);
                times_[name] = known == times_.end() ? time : std::min(time, known->second);
            }
        }
        ConsoleReporter::ReportRuns(runs);
    }

    void printRatio(const char* meaning, const std::string& of, const std::string& to,
                    const char* target) const {
        const auto dividend = times_.find(of);
        const auto divisor = times_.find(to);
        if (dividend != times_.end() && divisor != times_.end()) {
            std::printf("%-66s %8.1f   (%s)\n", meaning, dividend->second / divisor->second, target);
        }
    }

private:
    /// In seconds; the fastest repetition counts.
    std::map<std::string, double> times_;
};

void registerAll() {
    using benchmark::RegisterBenchmark;
    const auto milliseconds = benchmark::kMillisecond;
    const auto microseconds = benchmark::kMicrosecond;
    RegisterBenchmark("road/30_words/50_corrections", [](auto& state) {
        measureRoad(state, 50, kTranscript);
    })->Unit(microseconds);
    RegisterBenchmark("road/30_words/50_corrections/plain_reading", [](auto& state) {
        measurePlainReading(state, 50);
    })->Unit(microseconds);
    RegisterBenchmark("road/30_words/10000_corrections", [](auto& state) {
        measureRoad(state, 10'000, kTranscript);
    })->Unit(microseconds);
    RegisterBenchmark("road/20_kB/50_corrections", [](auto& state) {
        measureRoad(state, 50, textOf(20'000));
    })->Unit(milliseconds);
    RegisterBenchmark("road/200_kB/50_corrections", [](auto& state) {
        measureRoad(state, 50, textOf(200'000));
    })->Unit(milliseconds);
    RegisterBenchmark("new_mapping/10000_corrections", [](auto& state) {
        measureNewMapping(state, 10'000);
    })->Unit(milliseconds);
    for (const auto& [name, piece] : std::map<std::string, std::string>{{"number_words", "one "},
                                                                        {"dollars", "one one dollars and "},
                                                                        {"spaces", " "},
                                                                        {"line_feeds", "\n"},
                                                                        {"dots", "."},
                                                                        {"hyphens", "-"},
                                                                        {"combining_marks", "\u0301"},
                                                                        {"months", "march the "}}) {
        RegisterBenchmark(("road/1_MB/" + name).c_str(), [text = hostile(piece)](auto& state) {
            measureRoad(state, 50, text);
        })->Unit(milliseconds);
    }
}

} // namespace

} // namespace tovik::test

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 1;
    }
    tovik::test::registerAll();
    tovik::test::RememberingReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    const std::string road = "road/30_words/50_corrections";
    std::printf("\n");
    reporter.printRatio("The plain reading of the rules, against the program's", road + "/plain_reading",
                        road, "at least 20");
    reporter.printRatio("10,000 corrections against 50, 30 words", "road/30_words/10000_corrections", road,
                        "at most 10");
    reporter.printRatio("200 kB of text against 20 kB", "road/200_kB/50_corrections",
                        "road/20_kB/50_corrections", "at most 12");
    return 0;
}

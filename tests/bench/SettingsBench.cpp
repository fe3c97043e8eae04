// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
//
// What reading and writing a setting costs, beside a history of the usual length and of an absurd one.
#include "Linux/Storage/JsonUserDefaults.h"
#include "support/RecordingLog.h"
#include "support/TemporaryFolder.h"

#include <benchmark/benchmark.h>
#include <fcntl.h>

#include <cstdio>
#include <nlohmann/json.hpp>
#include <string>

namespace tovik::test {
namespace {

constexpr auto kHistory = "transcription.history";

PropertyValue historyOf(std::int64_t length) {
    auto history = PropertyValue::array();
    for (std::int64_t n = 0; n < length; ++n) {
        history.push_back({{"text", "Transcript number " + std::to_string(n) +
                                        ", as long as a sentence that somebody has spoken usually is."},
                           {"createdAt", 1740837909.25 + static_cast<double>(n)}});
    }
    return history;
}

/// Settings on the disk with a history of this length and a switch beside it.
class Settings {
public:
    explicit Settings(std::int64_t historyLength) {
        defaults.set("TranslationEnabled", true);
        defaults.set(kHistory, historyOf(historyLength));
        // File times advance in steps: what was just written is looked at twice.
        while (std::filesystem::file_time_type::clock::now() - std::filesystem::last_write_time(file) <
               std::chrono::milliseconds(60)) {
        }
        (void)defaults.value("TranslationEnabled");
    }

    TemporaryFolder folder;
    RecordingLog log;
    std::string file = folder / "defaults.json";
    JsonUserDefaults defaults{file, log};
};

void readASwitch(benchmark::State& state) {
    const Settings settings(state.range(0));
    for (auto unused : state) {
        benchmark::DoNotOptimize(settings.defaults.boolean("TranslationEnabled"));
    }
}
BENCHMARK(readASwitch)->Arg(100)->Arg(100000);

void readTheHistory(benchmark::State& state) {
    const Settings settings(state.range(0));
    for (auto unused : state) {
        benchmark::DoNotOptimize(settings.defaults.value(kHistory));
    }
}
BENCHMARK(readTheHistory)->Arg(100)->Arg(100000)->Unit(benchmark::kMicrosecond);

void readAfterAnotherProcessWrote(benchmark::State& state) {
    const Settings settings(state.range(0));
    JsonUserDefaults other(settings.file, const_cast<RecordingLog&>(settings.log));
    for (auto unused : state) {
        state.PauseTiming();
        other.set("TranslationEnabled", true);
        state.ResumeTiming();
        benchmark::DoNotOptimize(settings.defaults.boolean("TranslationEnabled"));
    }
}
BENCHMARK(readAfterAnotherProcessWrote)->Arg(100)->Arg(100000)->Unit(benchmark::kMillisecond);

void writeASwitch(benchmark::State& state) {
    Settings settings(state.range(0));
    for (auto unused : state) {
        settings.defaults.set("TranslationEnabled", false);
    }
}
BENCHMARK(writeASwitch)->Arg(100)->Arg(100000)->Unit(benchmark::kMillisecond)->UseRealTime();

void writeTheHistory(benchmark::State& state) {
    Settings settings(state.range(0));
    const auto history = historyOf(state.range(0));
    for (auto unused : state) {
        settings.defaults.set(kHistory, history);
    }
}
BENCHMARK(writeTheHistory)->Arg(100)->Arg(100000)->Unit(benchmark::kMillisecond)->UseRealTime();

/// What the disk alone takes for a new file brought to it and moved over the old one.
void replaceAFileOfTheSameSize(benchmark::State& state) {
    const TemporaryFolder folder;
    const auto content = historyOf(state.range(0)).dump();
    const UnixFd itself(::open(folder.path().c_str(), O_RDONLY | O_DIRECTORY));
    for (auto unused : state) {
        {
            const UnixFd file(::open((folder / "new").c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600));
            benchmark::DoNotOptimize(::write(file.get(), content.data(), content.size()));
            ::fsync(file.get());
        }
        std::rename((folder / "new").c_str(), (folder / "old").c_str());
        ::fsync(itself.get());
    }
}
BENCHMARK(replaceAFileOfTheSameSize)->Arg(100)->Arg(100000)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace
} // namespace tovik::test

BENCHMARK_MAIN();

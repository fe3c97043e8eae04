// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
//
// tovik-test-engine FOLDER: stands in for tovik-engine, with a decoder that hears how many samples an
// utterance has, such as "32000 samples". It does what a test orders by files in the folder, named
// "<moment>-<deed>": moments are load, begin, sound, finish, learn and after (an answer to finish); each file
// is taken away when it is obeyed, except for those of deeds that last. What it was asked to do, and its
// process, stands in the file "log". See ModelEngineFixture.h.
#include "Engines/Host/DecoderHost.h"
#include "Engines/Host/RecognitionError.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/resource.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <thread>

namespace {

using namespace tovik;

class Script {
public:
    explicit Script(std::string folder) : folder_(std::move(folder)) {}

    void note(const std::string& what, const std::vector<std::string>& words = {}) const {
        auto line = what;
        for (const auto& word : words) {
            line += " " + word;
        }
        line += '\n';
        const int log = ::open((folder_ + "/log").c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0600);
        [[maybe_unused]] const auto written = ::write(log, line.data(), line.size());
        ::close(log);
    }

    [[nodiscard]] bool says(const std::string& moment, const std::string& deed) const {
        return std::filesystem::exists(folder_ + "/" + moment + "-" + deed);
    }
    [[nodiscard]] bool takes(const std::string& moment, const std::string& deed) const {
        return std::filesystem::remove(folder_ + "/" + moment + "-" + deed);
    }

    /// The error that is ordered for the moment; whatever else is ordered is done.
    [[nodiscard]] Result<void> at(const std::string& moment) const {
        if (takes(moment, "crash") || says(moment, "crashes")) {
            ::raise(SIGSEGV);
        }
        if (takes(moment, "exit")) {
            std::exit(0);
        }
        if (takes(moment, "exhaust")) {
            exhaustMemory();
        }
        if (takes(moment, "hang") || says(moment, "hangs")) {
            note(moment + " hangs");
            for (;;) {
                ::pause();
            }
        }
        if (takes(moment, "flood")) {
            flood(STDOUT_FILENO, 100000);
        }
        if (takes(moment, "rave")) {
            raveOverTheAnswers();
        }
        wait(moment);
        return says(moment, "fails") ? recognitionError(RecognitionCode::failed, "script") : Result<void>();
    }

private:
    static void exhaustMemory() {
        const rlimit little{std::size_t{256} << 20, std::size_t{256} << 20};
        ::setrlimit(RLIMIT_AS, &little);
        for (std::vector<std::string> hoard;;) {
            hoard.emplace_back(std::size_t{1} << 20, 'x');
        }
    }

    static void flood(int fd, int lines) {
        constexpr std::string_view line = "LOG (VoskAPI:ReadDataFiles():model.cc:213) much to tell\n";
        for (int i = 0; i < lines; ++i) {
            [[maybe_unused]] const auto written = ::write(fd, line.data(), line.size());
        }
    }

    /// As a library with a wild pointer may, or one that has closed and opened one file too many.
    static void raveOverTheAnswers() {
        for (int fd = STDERR_FILENO + 1; fd < 32; ++fd) {
            flood(fd, 1);
        }
    }

    void wait(const std::string& moment) const {
        if (!says(moment, "waits")) {
            return;
        }
        note(moment + " waits");
        while (says(moment, "waits")) {
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
        }
    }

    const std::string folder_;
};

class ScriptedDecoder : public UtteranceDecoder {
public:
    explicit ScriptedDecoder(const Script& script) : script_(script) {}

    Result<void> prepare(const std::vector<std::string>& contextualStrings) override {
        script_.note("learn", contextualStrings);
        return script_.at("learn");
    }
    Result<void> begin(const std::vector<std::string>& contextualStrings) override {
        script_.note("begin", contextualStrings);
        samples_ = 0;
        return script_.at("begin");
    }
    Result<void> accept(std::span<const std::int16_t> samples) override {
        samples_ += samples.size();
        return script_.at("sound");
    }
    [[nodiscard]] std::string hypothesis() override { return text(); }
    [[nodiscard]] Result<std::string> finish() override {
        script_.note("finish");
        if (auto done = script_.at("finish"); !done) {
            return done.error();
        }
        if (script_.says("after", "crash")) {
            std::thread([this] {
                std::this_thread::sleep_for(std::chrono::milliseconds(20));
                static_cast<void>(script_.at("after"));
            }).detach();
        }
        if (samples_ == 0) {
            return recognitionError(RecognitionCode::noSpeech, "No speech detected");
        }
        return text();
    }

private:
    [[nodiscard]] std::string text() const { return std::to_string(samples_) + " samples"; }

    const Script& script_;
    std::size_t samples_ = 0;
};

} // namespace

int main(int, char** arguments) {
    const Script script(arguments[1]);
    serveDecoder([&]() -> Result<std::unique_ptr<UtteranceDecoder>> {
        script.note("process " + std::to_string(::getpid()));
        if (auto loaded = script.at("load"); !loaded) {
            return recognitionError(RecognitionCode::noModel, "The model is broken.");
        }
        return std::unique_ptr<UtteranceDecoder>(std::make_unique<ScriptedDecoder>(script));
    });
}

// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Engines/Host/Protocol.h"
#include "Platform/MainQueue.h"
#include "Platform/SystemLog.h"

#include <poll.h>

#include <array>
#include <chrono>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tovik {

/// A model on this machine, and what decodes with it.
struct LocalModel {
    /// Tells in a moment whether the files can be used at all. Any thread.
    std::function<Result<void>()> check;
    /// tovik-engine and its arguments.
    std::vector<std::string> command;
    /// Files and folders: another content is another model.
    std::vector<std::filesystem::path> files;
    /// The sentence for the user when a library does not survive the model. how: "the library breaks down
    /// over it".
    std::function<Error(const std::string& how)> unusable;
};

/// The process of a model, through all its lives: tovik-engine is started again when it died, when it hangs
/// and when the files have changed. A model that two of them could not load is broken until its files have
/// changed and settled, since they may have been looked at while they were being unpacked.
///
/// Never blocks. One thread, which outlives it: the process dies with that.
class ModelProcess {
public:
    struct Limits {
        /// How long the process may owe an answer without a sign of life.
        Seconds silence{15};
        /// How long loading the model may take: a cold disk on a busy machine is slow, and a second try would
        /// be no faster.
        Seconds loading{180};
        /// How often that, and the files of a model that cannot be used, are looked at.
        Seconds look{2};
        /// The pause before a process that died while nobody spoke is replaced; it doubles with each.
        Seconds pause{1};
        /// But it is no longer than this, after which a process that could not be had is tried again, too.
        Seconds longestPause{60};
        /// Tells the time that the silence is measured by. Any thread.
        std::function<std::chrono::steady_clock::time_point()> clock = [] {
            return std::chrono::steady_clock::now();
        };
    };

    struct Answer {
        Frame request;
        Result<std::string> text;
    };

    /// How a process with a loaded model was lost.
    enum class Loss { died, hung };

    ModelProcess(SystemLog& log, LocalModel model, Limits limits);
    ~ModelProcess();
    ModelProcess(const ModelProcess&) = delete;
    ModelProcess& operator=(const ModelProcess&) = delete;

    /// Starts it and replaces it where that is due, at once when somebody speaks.
    std::optional<Loss> keep(bool somebodySpeaks);
    /// Sends what the process takes and appends what it has answered since.
    std::optional<Loss> exchange(std::vector<Answer>& answers);
    /// How long keep() has nothing to do; negative while it needs to do nothing before there are news.
    [[nodiscard]] std::chrono::milliseconds idleFor(bool somebodySpeaks) const;
    /// For poll(): ready when exchange() has something to do.
    [[nodiscard]] std::array<pollfd, 2> watched() const;

    /// Whether there is a process with a loaded model, which can be asked.
    [[nodiscard]] bool isLoaded() const;
    void ask(Frame request, std::string_view content);
    /// Whether there is more to send than it has taken.
    [[nodiscard]] bool isBehind() const;

    /// Why the model could not be loaded, until it is: also while it is tried again.
    [[nodiscard]] const std::optional<Error>& failure() const { return failure_; }
    /// Whether there is no such try under way.
    [[nodiscard]] bool isBroken() const { return isBroken_; }

    /// An utterance has come to its end: the process is worth replacing at once, and a better model may be
    /// there.
    void noteAnswer();
    /// Ends the process, until keep().
    void end();

private:
    class Run;
    using SteadyTime = std::chrono::steady_clock::time_point;

    void start();
    void lookAtFiles(bool somebodySpeaks);
    [[nodiscard]] std::optional<Loss> lookForSilence();
    [[nodiscard]] std::optional<Loss> lost(Loss how);
    void loaded(const Result<std::string>& outcome);
    void cannotBeLoaded(const Error& why, bool isWorthAnotherTry);

    SystemLog& log_;
    const LocalModel model_;
    const Limits limits_;
    std::unique_ptr<Run> run_;
    std::optional<Error> failure_;
    bool isBroken_ = false;
    /// Whether a broken model may be loaded from the same files in a while.
    bool isWorthAnotherTry_ = false;
    int loadings_ = 0;
    /// The files at the last start, those that have been loaded once, and those at the last look.
    std::string startedStamp_;
    std::optional<std::string> provenStamp_;
    std::string seenStamp_;
    bool mayHaveChanged_ = false;
    SteadyTime nextLook_{};
    bool isSuspect_ = false;
    SteadyTime nextStart_{};
    Seconds pause_{0};
};

/// Another text after one of the files, or one anywhere in one of the folders, has come, gone or changed.
/// Reads no file.
[[nodiscard]] std::string fileStamp(const std::vector<std::filesystem::path>& filesAndFolders);

} // namespace tovik

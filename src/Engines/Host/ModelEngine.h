// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/MainQueue.h"
#include "Platform/SpeechService.h"
#include "Platform/SystemLog.h"

#include <chrono>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tovik {

/// Recognises with one model of this machine, in a process of its own: tovik-engine.
///
/// The model is loaded in the background from the construction on. A dictation that begins before it is ready
/// waits for it and loses nothing. Utterances are decoded one after the other. The sound of each is kept
/// until its text has come: when the process dies or hangs over it, a fresh one hears it once more, and only
/// after that the answer is an error. A model that could not be loaded, not by a second process either, is
/// loaded again once its files have changed and stay as they are; so is one whose files have changed since.
///
/// One thread of its own looks after the process and calls the handlers, under no lock.
class ModelEngine : public std::enable_shared_from_this<ModelEngine> {
public:
    struct Model {
        /// Tells in a moment whether the files can be used at all. Any thread.
        std::function<Result<void>()> check;
        /// What decodes with it: tovik-engine and its arguments.
        std::vector<std::string> command;
        /// Files and folders: another content is another model.
        std::vector<std::filesystem::path> files;
        /// The sentence for the user when a library does not survive the model. how: "the library breaks down
        /// over it".
        std::function<Error(const std::string& how)> unusable;
    };

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
        /// Tells the time that the silence is measured by. Any thread.
        std::function<std::chrono::steady_clock::time_point()> clock = [] {
            return std::chrono::steady_clock::now();
        };
    };

    /// tovik-engine in the folder of the running program.
    [[nodiscard]] static std::string program();

    ModelEngine(SystemLog& log, Model model, Limits limits);
    /// As end().
    ~ModelEngine();
    ModelEngine(const ModelEngine&) = delete;
    ModelEngine& operator=(const ModelEngine&) = delete;

    /// It keeps the engine, which must be held by a shared pointer.
    [[nodiscard]] std::shared_ptr<SpeechRecognizer> makeRecognizer();

    /// Ends the process and answers every utterance that is under way, and all that come later, with an
    /// error. Writes nothing to the log from then on.
    void end();
    /// As end(), but returns at once; hasEnded() tells when it is done.
    void beginEnd();
    [[nodiscard]] bool hasEnded() const;

    /// Whether no utterance is under way.
    [[nodiscard]] bool isIdle() const;

    /// The words and phrases that the next utterances will favour: they are taught while nobody speaks. Again
    /// is harmless.
    void prepare(const std::vector<std::string>& contextualStrings);

    /// Why no speech can be recognised, and what to install, in a sentence for the user. Nothing while the
    /// model is usable or still being loaded. A model that was missing is looked for again.
    [[nodiscard]] std::optional<std::string> whyUnavailable();

    /// Blocks until the model is loaded and knows the words it was prepared for: for tools, which have
    /// nothing else to do. False when it cannot be, or is not in time.
    [[nodiscard]] bool waitUntilReady(Seconds atMost) const;

private:
    friend class ModelRecognizer;
    class Keeper;

    const std::unique_ptr<Keeper> keeper_;
};

/// Another text after one of the files, or one anywhere in one of the folders, has come, gone or changed.
/// Reads no file.
[[nodiscard]] std::string fileStamp(const std::vector<std::filesystem::path>& filesAndFolders);

} // namespace tovik

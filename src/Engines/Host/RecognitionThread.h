// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Engines/Host/SharedLog.h"
#include "Engines/Host/Utterance.h"
#include "Engines/Host/UtteranceDecoder.h"
#include "Platform/Clock.h"

#include <chrono>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <thread>

namespace tovik {

/// Makes a decoder; runs on the recognition thread and may take long.
using DecoderLoader = std::function<Result<std::unique_ptr<UtteranceDecoder>>()>;

/// The thread that loads a decoder and decodes utterances with it in the order in which they came. An
/// utterance that comes while the decoder loads or decodes waits; its sound waits in its request.
class RecognitionThread {
public:
    /// Tells the time that silentFor() goes by. Any thread.
    using SteadyClock = std::function<std::chrono::steady_clock::time_point()>;

    RecognitionThread(DecoderLoader loader, SteadyClock clock, std::shared_ptr<SharedLog> log);
    /// As leave() with no time.
    ~RecognitionThread();
    RecognitionThread(const RecognitionThread&) = delete;
    RecognitionThread& operator=(const RecognitionThread&) = delete;

    /// Any thread. When the decoder could not be loaded the answer is why.
    void add(std::shared_ptr<Utterance> utterance);

    /// The words and phrases that the next utterances will favour. The decoder learns them when there is
    /// nothing to decode. Any thread.
    void prepare(std::vector<std::string> contextualStrings);

    /// Why the decoder could not be loaded; nothing while it loads and when it works. Any thread.
    [[nodiscard]] std::optional<Error> failure() const;

    /// Blocks until the decoder is loaded and has learned what it was to prepare for. False when it cannot be
    /// loaded, or is not ready in time. Any thread.
    [[nodiscard]] bool waitUntilReady(Seconds atMost) const;

    /// Whether no utterance is being decoded or waits for that. Any thread.
    [[nodiscard]] bool isIdle() const;

    /// Whether the decoder has been loaded. Any thread.
    [[nodiscard]] bool isLoaded() const;

    /// How long the decoder has been at its present task without a sign of life; zero when it has none.
    [[nodiscard]] Seconds silentFor() const;

    struct Unanswered {
        /// The one that is being decoded; nothing when none is.
        std::shared_ptr<Utterance> current;
        /// Those of which nothing has been heard yet, in their order.
        std::deque<std::shared_ptr<Utterance>> waiting;
    };

    /// Ends the thread, or lets go of it when it does not end in time: then it touches nothing any more
    /// whenever it does. Returns the utterances that it has not answered.
    [[nodiscard]] Unanswered leave(Seconds atMost);

private:
    struct State;

    const std::shared_ptr<State> state_;
    std::thread thread_;
};

} // namespace tovik

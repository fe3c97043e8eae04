// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/SpeechService.h"

#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace tovik::test {

/// Listens to what a recognition task answers. Any thread.
class RecognitionAnswers {
public:
    struct Answer {
        std::optional<RecognitionResult> result;
        std::optional<Error> error;
        std::thread::id thread;

        [[nodiscard]] bool endsTheTask() const { return error || (result && result->isFinal); }
    };

    /// What a task is started with; may outlive this object.
    [[nodiscard]] RecognitionHandler handler() const {
        return [state = state_](const auto& result, const auto& error) {
            const std::lock_guard lock(state->mutex);
            state->answers.push_back({result, error, std::this_thread::get_id()});
            state->changed.notify_all();
        };
    }

    /// Waits for the answer that ends the task; nothing when none comes in a minute.
    [[nodiscard]] std::optional<Answer> waitForEnd() const {
        std::unique_lock lock(state_->mutex);
        std::optional<Answer> end;
        state_->changed.wait_for(lock, std::chrono::minutes(1), [&] {
            for (const auto& answer : state_->answers) {
                if (answer.endsTheTask()) {
                    end = answer;
                }
            }
            return end.has_value();
        });
        return end;
    }

    /// The final text; what went wrong instead in angle brackets.
    [[nodiscard]] std::string waitForText() const {
        const auto end = waitForEnd();
        if (!end) {
            return "<no answer>";
        }
        return end->result ? end->result->formattedString : "<" + end->error->description + ">";
    }

    [[nodiscard]] std::vector<Answer> all() const {
        const std::lock_guard lock(state_->mutex);
        return state_->answers;
    }

private:
    struct State {
        std::mutex mutex;
        std::condition_variable changed;
        std::vector<Answer> answers;
    };

    const std::shared_ptr<State> state_ = std::make_shared<State>();
};

} // namespace tovik::test

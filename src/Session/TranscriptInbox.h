// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include <deque>
#include <mutex>
#include <optional>
#include <string>
#include <utility>

namespace tovik {

/// Final texts on their way from the recogniser's thread to the main thread, in their order. Any thread.
class TranscriptInbox {
public:
    void put(std::string text) {
        const std::lock_guard lock(mutex_);
        texts_.push_back(std::move(text));
    }

    /// The oldest one, if there is any.
    [[nodiscard]] std::optional<std::string> take() {
        const std::lock_guard lock(mutex_);
        if (texts_.empty()) {
            return std::nullopt;
        }
        auto text = std::move(texts_.front());
        texts_.pop_front();
        return text;
    }

private:
    std::mutex mutex_;
    std::deque<std::string> texts_;
};

} // namespace tovik

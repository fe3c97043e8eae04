// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <cstdint>
#include <functional>
#include <utility>
#include <vector>

namespace tovik {

/// The keys that this program itself presses, so that it does not take them for the user's. The poster
/// announces each stroke before it is sent; the monitor takes the strokes that it then sees. Assistive
/// programs press keys by the same means as we do, so nothing but the announcement tells them apart.
/// Main thread.
class PostedKeys {
public:
    struct Stroke {
        unsigned keyCode = 0;
        bool press = false;

        bool operator==(const Stroke&) const = default;
    };

    /// Announces strokes that are about to be sent.
    void expect(const std::vector<Stroke>& strokes) {
        expected_.insert(expected_.end(), strokes.begin(), strokes.end());
    }

    /// All announced strokes have passed the server. Without a monitor they are forgotten here.
    void sent() {
        if (onSent_) {
            onSent_();
        } else {
            expected_.clear();
        }
    }

    [[nodiscard]] bool expects(const Stroke& stroke) const {
        return std::find(expected_.begin(), expected_.end(), stroke) != expected_.end();
    }

    /// The stroke was seen; it is no longer expected.
    void take(const Stroke& stroke) {
        const auto found = std::find(expected_.begin(), expected_.end(), stroke);
        if (found != expected_.end()) {
            expected_.erase(found);
            ++taken_;
        }
    }

    /// Everything announced so far, as a number that only grows.
    [[nodiscard]] std::uint64_t announced() const { return taken_ + expected_.size(); }

    /// Of the strokes announced up to that number, those that never came are given up: the server drops a
    /// press of a key that is down already.
    void forget(std::uint64_t announcedThen) {
        while (!expected_.empty() && taken_ < announcedThen) {
            expected_.erase(expected_.begin());
            ++taken_;
        }
    }

    /// For the one monitor; an empty function when it goes.
    void setOnSent(std::function<void()> onSent) { onSent_ = std::move(onSent); }

private:
    std::vector<Stroke> expected_;
    std::uint64_t taken_ = 0;
    std::function<void()> onSent_;
};

} // namespace tovik

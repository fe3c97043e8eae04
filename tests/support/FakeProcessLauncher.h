// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/ProcessLauncher.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace tovik::test {

/// Starts nothing, and remembers what it was asked to start.
class FakeProcessLauncher : public ProcessLauncher {
public:
    struct Launch {
        std::string executable;
        std::vector<std::string> arguments;

        bool operator==(const Launch&) const = default;
    };

    Result<void> launch(const std::string& executable, const std::vector<std::string>& arguments) override {
        launches_.push_back({executable, arguments});
        if (failure_) {
            return *failure_;
        }
        return {};
    }

    /// From now on every launch fails with this error; nullopt ends the failing.
    void fail(std::optional<Error> error) { failure_ = std::move(error); }

    /// Every attempt, also the failed ones, in order.
    [[nodiscard]] const std::vector<Launch>& launches() const { return launches_; }

private:
    std::vector<Launch> launches_;
    std::optional<Error> failure_;
};

} // namespace tovik::test

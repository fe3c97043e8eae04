// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <string>
#include <thread>
#include <vector>

namespace tovik::test {

/// Listens where a sound server would, and is none.
class BrokenServer {
public:
    enum class Manner {
        /// Accepts, and never says a word.
        stalls,
        /// Accepts, and hangs up.
        hangsUp
    };

    explicit BrokenServer(Manner manner);
    ~BrokenServer();
    BrokenServer(const BrokenServer&) = delete;
    BrokenServer& operator=(const BrokenServer&) = delete;

    [[nodiscard]] std::string address() const { return "unix:" + path_; }
    [[nodiscard]] int accepted() const { return accepted_.load(); }

private:
    void run();

    const Manner manner_;
    std::string folder_;
    std::string path_;
    int listening_ = -1;
    std::atomic<int> accepted_ = 0;
    std::vector<int> stalled_;
    std::thread thread_;
};

} // namespace tovik::test

// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "support/TemporaryFolder.h"

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <functional>
#include <sstream>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace tovik::test {

/// Gives orders to the processes of tovik-test-engine (TestEngineMain.cpp), and tells what they were asked to
/// do.
class ScriptedEngine {
public:
    [[nodiscard]] std::vector<std::string> command() const { return {TOVIK_TEST_ENGINE, folder_.path()}; }

    /// Such as "finish-crash"; once, or for good with "finish-crashes".
    void order(const std::string& deed) const { writeFile(folder_ / deed, ""); }
    void takeBack(const std::string& deed) const { std::filesystem::remove(folder_ / deed); }

    /// The lines of its log that begin so: "process 1234", "learn Tovik Zoom", "begin Tovik", "finish".
    [[nodiscard]] std::vector<std::string> did(const std::string& what) const {
        std::istringstream log(readFile(folder_ / "log").value_or(""));
        std::vector<std::string> lines;
        for (std::string line; std::getline(log, line);) {
            if (line.starts_with(what)) {
                lines.push_back(line);
            }
        }
        return lines;
    }
    void waitUntilItDid(const std::string& what, std::size_t times = 1) const {
        waitUntil([&] { return did(what).size() >= times; });
    }
    /// How many processes there were, and the newest.
    [[nodiscard]] std::size_t processes() const { return did("process ").size(); }
    [[nodiscard]] pid_t process() const { return std::stoi(did("process ").back().substr(8)); }

    /// Throws when a test would hang instead.
    static void waitUntil(const std::function<bool()>& condition) {
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(60);
        while (!condition()) {
            if (std::chrono::steady_clock::now() > end) {
                throw std::runtime_error("what was waited for did not come");
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
    }

private:
    const TemporaryFolder folder_;
};

} // namespace tovik::test

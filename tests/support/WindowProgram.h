// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QProcess>

#include <cstdint>
#include <string>
#include <vector>

namespace tovik::test {

/// Another program on the staged desktop, with one window or two (see WindowProgramMain.cpp).
class WindowProgram {
public:
    /// Returns when its windows are shown.
    explicit WindowProgram(const std::string& className, const std::string& instance = {},
                           const std::string& kind = {});
    WindowProgram(const WindowProgram&) = delete;
    WindowProgram& operator=(const WindowProgram&) = delete;
    ~WindowProgram();

    [[nodiscard]] unsigned long window() const { return window_; }
    /// The window or dialog that was shown after the first, where the program has one.
    [[nodiscard]] unsigned long secondWindow() const { return secondWindow_; }
    /// The window inside, where the program has one.
    [[nodiscard]] unsigned long innerWindow() const { return innerWindow_; }
    [[nodiscard]] std::int64_t process() const { return process_.processId(); }

    /// Ends the program; its window goes with it.
    void close();

    /// The keys that the window got, as "press Insert 0x1". Reads what has come so far.
    [[nodiscard]] const std::vector<std::string>& keys();
    void forgetKeys();

    /// What the window has pasted so far, where it is one that pastes.
    [[nodiscard]] const std::vector<std::string>& texts();

private:
    void read();

    QProcess process_;
    unsigned long window_ = 0;
    unsigned long secondWindow_ = 0;
    unsigned long innerWindow_ = 0;
    std::vector<std::string> keys_;
    std::vector<std::string> texts_;
};

} // namespace tovik::test

// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "support/WindowProgram.h"

#include "support/EventLoop.h"

#include <stdexcept>

namespace tovik::test {

WindowProgram::WindowProgram(const std::string& className, const std::string& instance,
                             const std::string& kind) {
    QStringList arguments{QString::fromStdString(className)};
    if (!instance.empty()) {
        arguments << QString::fromStdString(instance);
    }
    if (!kind.empty()) {
        arguments << QString::fromStdString(kind);
    }
    process_.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process_.start(TOVIK_TEST_WINDOW, arguments);
    const bool hasTwo = kind == "second-window" || kind == "dialog";
    const bool shown = runUntil([this, hasTwo] {
        read();
        return window_ != 0 && (secondWindow_ != 0 || !hasTwo);
    });
    if (!shown) {
        throw std::runtime_error("the test window did not appear");
    }
}

WindowProgram::~WindowProgram() {
    close();
}

void WindowProgram::close() {
    process_.closeWriteChannel();
    process_.waitForFinished();
}

const std::vector<std::string>& WindowProgram::keys() {
    read();
    return keys_;
}

void WindowProgram::forgetKeys() {
    read();
    keys_.clear();
}

const std::vector<std::string>& WindowProgram::texts() {
    read();
    return texts_;
}

void WindowProgram::read() {
    while (process_.canReadLine()) {
        const std::string line = process_.readLine().trimmed().toStdString();
        if (line.starts_with("window ")) {
            const auto shown = std::stoul(line.substr(7));
            (window_ == 0 || window_ == shown ? window_ : secondWindow_) = shown;
        } else if (line.starts_with("inner ")) {
            innerWindow_ = std::stoul(line.substr(6));
        } else if (line.starts_with("press ") || line.starts_with("release ")) {
            keys_.push_back(line);
        } else if (line.starts_with("text ")) {
            texts_.push_back(line.substr(5));
        }
    }
}

} // namespace tovik::test

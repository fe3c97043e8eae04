// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/Alert.h"

#include <deque>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace tovik::test {

/// Answers questions as the test planned, or as if they had been closed without an answer.
class FakeAlert : public Alert {
public:
    struct Question {
        std::string message;
        std::string informativeText;
        std::vector<std::string> buttons;

        bool operator==(const Question&) const = default;
    };

    int runModal(const std::string& message, const std::string& informativeText,
                 const std::vector<std::string>& buttons) override {
        questions_.push_back({message, informativeText, buttons});
        if (onShown) {
            onShown();
        }
        if (answers_.empty()) {
            return -1;
        }
        const auto answer = answers_.front();
        answers_.pop_front();
        return answer;
    }

    /// The button for the next question that has no planned answer yet.
    void answerNext(int button) { answers_.push_back(button); }

    [[nodiscard]] const std::vector<Question>& questions() const { return questions_; }

    /// Called while a question is on screen, before it is answered: the world may change meanwhile.
    std::function<void()> onShown;

private:
    std::vector<Question> questions_;
    std::deque<int> answers_;
};

} // namespace tovik::test

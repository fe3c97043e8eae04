// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Engines/Apertium/ModeFile.h"

namespace tovik {

namespace {

constexpr std::string_view kShellOnly = ";&<>`()\"\\";

Error unreadable() {
    return {"Apertium", 2, "An Apertium mode file is not a plain pipeline of programs."};
}

/// Apertium's own program puts its options for generation and tagging here.
void addArgument(Stage& stage, const std::string& argument) {
    if (argument == "$1") {
        stage.emplace_back("-n");
    } else if (argument != "$2") {
        stage.push_back(argument);
    }
    if (stage.size() == 1) {
        stage.emplace_back("-z");
    }
}

/// Reads a mode file character by character.
class ModeReader {
public:
    [[nodiscard]] bool take(char character) {
        if (isQuoted_) {
            if (character == '\'') {
                isQuoted_ = false;
            } else {
                argument_ += character;
            }
            return true;
        }
        if (kShellOnly.find(character) != std::string_view::npos) {
            return false;
        }
        if (character == '\'') {
            isQuoted_ = true;
            hasArgument_ = true;
        } else if (character == '|') {
            return endStage();
        } else if (character == ' ' || character == '\t' || character == '\n' || character == '\r') {
            endArgument();
        } else {
            argument_ += character;
            hasArgument_ = true;
        }
        return true;
    }

    [[nodiscard]] bool end() { return !isQuoted_ && endStage(); }
    [[nodiscard]] std::vector<Stage> stages() && { return std::move(stages_); }

private:
    void endArgument() {
        if (hasArgument_) {
            addArgument(stage_, argument_);
            argument_.clear();
            hasArgument_ = false;
        }
    }

    bool endStage() {
        endArgument();
        if (stage_.empty()) {
            return false;
        }
        stages_.push_back(std::move(stage_));
        stage_ = {};
        return true;
    }

    std::vector<Stage> stages_;
    Stage stage_;
    std::string argument_;
    bool hasArgument_ = false;
    bool isQuoted_ = false;
};

} // namespace

Result<std::vector<Stage>> stagesOfMode(std::string_view content) {
    ModeReader reader;
    for (const char character : content) {
        if (!reader.take(character)) {
            return unreadable();
        }
    }
    if (!reader.end()) {
        return unreadable();
    }
    return std::move(reader).stages();
}

} // namespace tovik

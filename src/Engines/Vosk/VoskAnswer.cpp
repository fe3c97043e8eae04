// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Engines/Vosk/VoskAnswer.h"

#include <nlohmann/json.hpp>

namespace tovik {

namespace {

std::string stringIn(const nlohmann::json& object, const char* name) {
    const auto found = object.find(name);
    return found != object.end() && found->is_string() ? found->get<std::string>() : "";
}

/// How many of the favoured words stand in the text, as whole words.
int favouredIn(const std::string& text, const std::vector<std::string>& favoured) {
    const auto padded = " " + text + " ";
    int count = 0;
    for (const auto& term : favoured) {
        count += padded.find(" " + term + " ") != std::string::npos ? 1 : 0;
    }
    return count;
}

} // namespace

std::string voskText(std::string_view answer, const std::vector<std::string>& favoured) {
    const auto object = nlohmann::json::parse(answer, nullptr, false);
    if (!object.is_object()) {
        return {};
    }
    const auto alternatives = object.find("alternatives");
    if (alternatives == object.end() || !alternatives->is_array()) {
        return stringIn(object, "text");
    }
    std::string best;
    double bestScore = 0;
    bool isFirst = true;
    for (const auto& alternative : *alternatives) {
        if (!alternative.is_object()) {
            continue;
        }
        auto text = stringIn(alternative, "text");
        // Older versions begin with a blank.
        text.erase(0, text.find_first_not_of(' '));
        const auto confidence = alternative.find("confidence");
        const double score =
            (confidence != alternative.end() && confidence->is_number() ? confidence->get<double>() : 0) +
            kFavour * favouredIn(text, favoured);
        if (isFirst || score > bestScore) {
            best = text;
            bestScore = score;
            isFirst = false;
        }
    }
    return best;
}

std::string voskPartial(std::string_view answer) {
    const auto object = nlohmann::json::parse(answer, nullptr, false);
    return object.is_object() ? stringIn(object, "partial") : "";
}

} // namespace tovik

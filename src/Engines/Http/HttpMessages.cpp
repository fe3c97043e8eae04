// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Engines/Http/HttpMessages.h"

#include <nlohmann/json.hpp>
#include <string_view>

namespace tovik {

namespace {

constexpr int kDeepestJson = 64;

/// How deep the brackets of a text are nested that are in no string.
bool isNestedTooDeeply(std::string_view text) {
    int depth = 0;
    bool isInString = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (isInString) {
            i += c == '\\' ? 1 : 0;
            isInString = c != '"';
        } else if (c == '"') {
            isInString = true;
        } else if (c == '[' || c == '{') {
            if (++depth > kDeepestJson) {
                return true;
            }
        } else if (c == ']' || c == '}') {
            --depth;
        }
    }
    return false;
}

} // namespace

std::string HttpResponse::header(const std::string& name) const {
    const auto found = headers.find(name);
    return found == headers.end() ? "" : found->second;
}

nlohmann::json HttpResponse::json() const {
    if (isNestedTooDeeply(body)) {
        return nlohmann::json(nlohmann::json::value_t::discarded);
    }
    return nlohmann::json::parse(body, nullptr, false);
}

} // namespace tovik

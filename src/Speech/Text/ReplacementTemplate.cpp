// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Speech/Text/ReplacementTemplate.h"

namespace tovik {

namespace {

bool isDigit(char16_t unit) {
    return unit >= u'0' && unit <= u'9';
}

} // namespace

ReplacementTemplate::ReplacementTemplate(std::u16string_view text) : literals_(1) {
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool hasNext = i + 1 < text.size();
        if (text[i] == u'\\' && hasNext) {
            literals_.back() += text[++i];
        } else if (text[i] == u'$' && hasNext && isDigit(text[i + 1])) {
            if (text[++i] == u'0') {
                literals_.emplace_back();
            }
        } else {
            literals_.back() += text[i];
        }
    }
}

std::u16string ReplacementTemplate::expanded(std::u16string_view matched) const {
    auto result = literals_.front();
    for (std::size_t i = 1; i < literals_.size(); ++i) {
        result.append(matched).append(literals_[i]);
    }
    return result;
}

} // namespace tovik

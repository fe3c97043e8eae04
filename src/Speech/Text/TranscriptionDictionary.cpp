// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Speech/Text/TranscriptionDictionary.h"

#include "Speech/Text/Unicode.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <utility>
#include <vector>

namespace tovik {

namespace {

// The program's own name and two other products', as recognizers tend to hear them.
const TranscriptionDictionary::Mapping& seedMapping() {
    static const TranscriptionDictionary::Mapping seed{
        {"bot to bot", "Tovik Record"},
        {"quill on a i", "Quillon AI"},
        {"brindle pad", "Brindlepad"},
    };
    return seed;
}

std::optional<TranscriptionDictionary::Mapping> mappingFrom(const PropertyValue& stored) {
    if (!stored.is_object()) {
        return std::nullopt;
    }
    TranscriptionDictionary::Mapping mapping;
    for (const auto& [heard, replacement] : stored.items()) {
        if (!replacement.is_string()) {
            return std::nullopt;
        }
        mapping.emplace(heard, replacement.get<std::string>());
    }
    return mapping;
}

/// The sides of the first separator; nothing unless neither is empty.
std::optional<std::pair<std::u16string_view, std::u16string_view>> sidesOf(std::u16string_view piece) {
    constexpr char16_t kArrow = u'→';
    const auto separator = piece.find(kArrow) != std::u16string_view::npos ? kArrow : u'=';
    const auto place = piece.find(separator);
    if (place == std::u16string_view::npos) {
        return std::nullopt;
    }
    const auto heard = trimmed(piece.substr(0, place));
    const auto replacement = trimmed(piece.substr(place + 1));
    if (heard.empty() || replacement.empty()) {
        return std::nullopt;
    }
    return std::pair(heard, replacement);
}

/// As it is stored: in lower case, and well-formed whoever handed it in.
std::string storedPhrase(std::string_view heard) {
    return toUtf8(lowerCased(toUtf16(heard)));
}

} // namespace

TranscriptionDictionary::TranscriptionDictionary(UserDefaults& defaults, SystemLog& log)
    : defaults_(defaults),
      log_(log) {
    load();
}

void TranscriptionDictionary::load() {
    const auto stored = defaults_.value(dictionaryKey);
    if (auto usable = stored ? mappingFrom(*stored) : std::nullopt) {
        mapping_ = std::move(*usable);
        replacer_.reset();
        return;
    }
    if (stored) {
        defaults_.keepAside(dictionaryKey);
    }
    setDictionary(seedMapping());
}

void TranscriptionDictionary::setCorrection(std::string_view heard, std::string_view replacement) {
    mapping_.insert_or_assign(storedPhrase(heard), toUtf8(toUtf16(replacement)));
    mappingChanged();
}

void TranscriptionDictionary::removeCorrection(std::string_view heard) {
    mapping_.erase(storedPhrase(heard));
    mappingChanged();
}

void TranscriptionDictionary::replaceCorrection(std::string_view stored, std::string_view heard,
                                                std::string_view replacement) {
    mapping_.erase(std::string(stored));
    mapping_.erase(storedPhrase(stored));
    setCorrection(heard, replacement);
}

void TranscriptionDictionary::setDictionary(Mapping mapping) {
    mapping_ = std::move(mapping);
    mappingChanged();
}

void TranscriptionDictionary::updateFromDisplayString(std::string_view text) {
    setDictionary(parseDisplayString(text));
}

TranscriptionDictionary::Mapping TranscriptionDictionary::parseDisplayString(std::string_view text) {
    Mapping mapping;
    const auto utf16 = toUtf16(text);
    for (const auto piece : pieces(utf16, u',')) {
        if (const auto sides = sidesOf(trimmed(piece))) {
            mapping.insert_or_assign(toUtf8(lowerCased(sides->first)), toUtf8(sides->second));
        }
    }
    return mapping;
}

std::string TranscriptionDictionary::apply(std::string_view transcript) {
    if (mapping_.empty()) {
        return std::string(transcript);
    }
    if (!replacer_) {
        std::vector<PhraseReplacer::Rule> rules;
        rules.reserve(mapping_.size());
        for (const auto& [heard, replacement] : mapping_) {
            rules.push_back({toUtf16(heard), toUtf16(replacement)});
        }
        replacer_.emplace(std::move(rules));
    }
    auto text = toUtf16(transcript);
    if (!replacer_->apply(text)) {
        log_.printLine(
            "[TovikVoice] Text rule corrections gave up (the result is too long); the text stays as it was");
    }
    return toUtf8(text);
}

void TranscriptionDictionary::mappingChanged() {
    replacer_.reset();
    defaults_.set(dictionaryKey, PropertyValue(mapping_));
}

} // namespace tovik

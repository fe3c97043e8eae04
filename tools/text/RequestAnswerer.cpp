// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "RequestAnswerer.h"

#include "Audio/DictationLanguage.h"
#include "Audio/RecordingDisplay.h"
#include "Speech/History/TranscriptHistoryStore.h"
#include "Speech/Text/TranscriptionDictionary.h"
#include "Speech/Text/Unicode.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <map>
#include <nlohmann/json.hpp>
#include <stdexcept>

namespace tovik {

namespace {

/// Far deeper than any setting; deeper ones would only wear out the stack.
constexpr int kDeepest = 100;
constexpr std::size_t kBufferFrames = 1024;

/// What is wrong with a request, for its sender.
struct BadRequest : std::runtime_error {
    using std::runtime_error::runtime_error;
};

const PropertyValue& member(const PropertyValue& request, const char* name,
                            bool (PropertyValue::*isOfType)() const noexcept, const char* type) {
    const auto found = request.find(name);
    if (found == request.end() || !((*found).*isOfType)()) {
        throw BadRequest(std::string("\"") + name + "\" must be " + type);
    }
    return *found;
}

const std::string& textOf(const PropertyValue& request) {
    return member(request, "text", &PropertyValue::is_string, "a string").get_ref<const std::string&>();
}

double numberOf(const PropertyValue& request, const char* name) {
    return member(request, name, &PropertyValue::is_number, "a number").get<double>();
}

TranscriptionDictionary::Mapping mappingOf(const PropertyValue& request) {
    const auto& mapping = member(request, "mapping", &PropertyValue::is_object, "a map of strings");
    if (!std::all_of(mapping.begin(), mapping.end(), [](const auto& value) { return value.is_string(); })) {
        throw BadRequest("\"mapping\" must be a map of strings");
    }
    return mapping.get<TranscriptionDictionary::Mapping>();
}

PropertyValue parsed(std::string_view line) {
    const auto checkDepth = [](int depth, PropertyValue::parse_event_t, PropertyValue&) {
        if (depth > kDeepest) {
            throw BadRequest("the request is nested too deeply");
        }
        return true;
    };
    auto request = PropertyValue::parse(line, checkDepth);
    if (!request.is_object()) {
        throw BadRequest("a request is a JSON object");
    }
    return request;
}

PropertyValue textAnswer(std::string text) {
    return {{"text", std::move(text)}};
}

template <typename T>
PropertyValue valueAnswer(T value) {
    return {{"value", value}};
}

} // namespace

RequestAnswerer::RequestAnswerer(SystemLog& log) : log_(log), chain_(settings_, log, "en_US") {}

std::string RequestAnswerer::answer(std::string_view line) {
    PropertyValue answer;
    try {
        const auto request = parsed(line);
        const auto operation =
            operationFor(member(request, "op", &PropertyValue::is_string, "a string").get<std::string>());
        useSettingsOf(request);
        answer = (this->*operation)(request);
    } catch (const PropertyValue::exception& error) {
        answer = {{"error", error.what()}};
    } catch (const BadRequest& error) {
        answer = {{"error", error.what()}};
    }
    // What a message quotes of a line need not be well-formed.
    return answer.dump(-1, ' ', false, PropertyValue::error_handler_t::replace);
}

RequestAnswerer::Operation RequestAnswerer::operationFor(const std::string& name) {
    static const std::map<std::string, Operation> kOperations{
        {"process", &RequestAnswerer::process},
        {"fillers", &RequestAnswerer::fillers},
        {"format", &RequestAnswerer::format},
        {"number", &RequestAnswerer::number},
        {"day", &RequestAnswerer::day},
        {"year", &RequestAnswerer::year},
        {"corrections", &RequestAnswerer::corrections},
        {"parseDisplay", &RequestAnswerer::parseDisplay},
        {"fillerList", &RequestAnswerer::fillerList},
        {"vocabulary", &RequestAnswerer::vocabulary},
        {"menuTitle", &RequestAnswerer::menuTitle},
        {"elapsed", &RequestAnswerer::elapsed},
        {"level", &RequestAnswerer::level},
        {"bar", &RequestAnswerer::bar},
    };
    const auto found = kOperations.find(name);
    if (found == kOperations.end()) {
        throw BadRequest("there is no operation \"" + name + "\"");
    }
    return found->second;
}

void RequestAnswerer::useSettingsOf(const PropertyValue& request) {
    settings_.replaceAll(request.contains("settings")
                             ? member(request, "settings", &PropertyValue::is_object, "a map")
                             : PropertyValue::object());
}

PropertyValue RequestAnswerer::process(const PropertyValue& request) {
    return textAnswer(chain_.processTranscription(textOf(request)));
}

PropertyValue RequestAnswerer::fillers(const PropertyValue& request) {
    return textAnswer(chain_.fillerWords().removeConfiguredFillerWords(textOf(request)));
}

PropertyValue RequestAnswerer::format(const PropertyValue& request) {
    return textAnswer(chain_.formatter().apply(textOf(request)));
}

PropertyValue RequestAnswerer::number(const PropertyValue& request) {
    return valueAnswer(TranscriptionFormatter::parseSpokenNumber(toUtf16(textOf(request))));
}

PropertyValue RequestAnswerer::day(const PropertyValue& request) {
    return valueAnswer(TranscriptionFormatter::parseDayOrdinal(toUtf16(textOf(request))));
}

PropertyValue RequestAnswerer::year(const PropertyValue& request) {
    return valueAnswer(TranscriptionFormatter::parseSpokenYear(toUtf16(textOf(request))));
}

PropertyValue RequestAnswerer::corrections(const PropertyValue& request) {
    settings_.set(TranscriptionDictionary::dictionaryKey, mappingOf(request));
    return textAnswer(TranscriptionDictionary(settings_, log_).apply(textOf(request)));
}

PropertyValue RequestAnswerer::parseDisplay(const PropertyValue& request) {
    TranscriptionDictionary dictionary(settings_, log_);
    dictionary.updateFromDisplayString(textOf(request));
    return {{"mapping", dictionary.getDictionary()}};
}

PropertyValue RequestAnswerer::fillerList(const PropertyValue& /*request*/) {
    auto list = chain_.fillerWords().fillerWords();
    return {{"text", std::move(list)}, {"stored", settings_.value(FillerWords::listKey).value_or(nullptr)}};
}

PropertyValue RequestAnswerer::vocabulary(const PropertyValue& /*request*/) {
    return {{"terms", CustomVocabulary::terms(settings_)}};
}

PropertyValue RequestAnswerer::menuTitle(const PropertyValue& request) {
    return textAnswer(transcriptTitle(textOf(request)));
}

PropertyValue RequestAnswerer::elapsed(const PropertyValue& request) {
    const auto& seconds = member(request, "seconds", &PropertyValue::is_number_integer, "a whole number");
    if (seconds.is_number_unsigned() && seconds.get<std::uint64_t>() > INT64_MAX) {
        throw BadRequest("\"seconds\" is too large");
    }
    return textAnswer(formattedElapsedTime(seconds.get<std::int64_t>()));
}

PropertyValue RequestAnswerer::level(const PropertyValue& request) {
    std::array<float, kBufferFrames> buffer{};
    buffer.fill(static_cast<float>(numberOf(request, "rms")));
    return valueAnswer(LevelMeter::level(buffer));
}

PropertyValue RequestAnswerer::bar(const PropertyValue& request) {
    const auto bar = WaveformBar::forSample(numberOf(request, "sample"));
    return {{"height", bar.height}, {"rgba", {bar.red, bar.green, bar.blue, bar.alpha}}};
}

} // namespace tovik

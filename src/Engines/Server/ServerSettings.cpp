// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Engines/Server/ServerSettings.h"

#include "Audio/DictationLanguage.h"
#include "Engines/Host/LocaleIdentifier.h"
#include "Engines/Host/RecognitionError.h"

#include <nlohmann/json.hpp>

namespace tovik {

namespace {

std::vector<std::string> strings(const UserDefaults& defaults, const char* key) {
    std::vector<std::string> values;
    const auto stored = defaults.value(key);
    if (stored && stored->is_array()) {
        for (const auto& value : *stored) {
            if (value.is_string()) {
                values.push_back(value.get<std::string>());
            }
        }
    }
    return values;
}

void readTimeout(const UserDefaults& defaults, const char* name, Seconds& timeout) {
    const auto stored = defaults.value("platform.speech.serverTimeouts");
    if (stored && stored->is_object() && stored->contains(name) && stored->at(name).is_number() &&
        stored->at(name).get<double>() > 0) {
        timeout = Seconds(stored->at(name).get<double>());
    }
}

std::vector<std::string> localesOf(const UserDefaults& defaults, const std::string& model) {
    std::vector<std::string> locales;
    for (const auto& locale : strings(defaults, "platform.speech.serverLocales")) {
        locales.push_back(canonicalLocaleIdentifier(locale));
    }
    if (!locales.empty()) {
        return locales;
    }
    // Models named so know English only.
    return model.ends_with(".en") ? std::vector<std::string>{"en-US", "en-GB"} : supportedLocales();
}

} // namespace

Result<ServerAddress> ServerAddress::parse(const std::string& text) {
    const auto place = WebAddress::parse(text);
    if (!place) {
        return recognitionError(RecognitionCode::noModel,
                                "The address of the speech server is none: \"platform.speech.serverUrl\" "
                                "needs one like \"http://127.0.0.1:8080\".");
    }
    ServerAddress address{*place, {}, {}};
    auto path = place->path;
    if (path.empty()) {
        path = "/v1";
    }
    if (path.ends_with("/v1")) {
        address.models = path + "/models";
        address.transcriptions = path + "/audio/transcriptions";
    } else {
        const auto end = path.rfind("/audio/transcriptions");
        address.models = end == std::string::npos ? "/" : path.substr(0, end) + "/models";
        address.transcriptions = path;
    }
    return address;
}

std::optional<Result<ServerSettings>> ServerSettings::read(const UserDefaults& defaults) {
    const auto text = defaults.string("platform.speech.serverUrl");
    if (!text || text->empty()) {
        return std::nullopt;
    }
    auto address = ServerAddress::parse(*text);
    if (!address) {
        return Result<ServerSettings>(address.error());
    }
    ServerSettings settings;
    settings.address = address.value();
    settings.model = defaults.string("platform.speech.serverModel").value_or("whisper-1");
    if (defaults.string("platform.speech.serverFormat") == "flac") {
        settings.format = SoundFormat::flac;
    }
    settings.key = defaults.string("platform.speech.serverKey");
    readTimeout(defaults, "connect", settings.connectTimeout);
    readTimeout(defaults, "firstByte", settings.firstByteTimeout);
    readTimeout(defaults, "whole", settings.wholeTimeout);
    settings.keepFailedAudio = defaults.boolean("platform.speech.keepFailedAudio").value_or(true);
    settings.embeddedWhenServerFails =
        defaults.boolean("platform.speech.embeddedWhenServerFails").value_or(false);
    settings.localeIsChosen = defaults.string(kSelectedDictationLocaleKey).has_value();
    settings.locales = localesOf(defaults, settings.model);
    settings.command = strings(defaults, "platform.speech.serverCommand");
    return Result<ServerSettings>(std::move(settings));
}

} // namespace tovik

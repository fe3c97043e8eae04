// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Engines/Server/TranscriptionRequest.h"

#include "Engines/Server/SoundEncoding.h"

#include <array>
#include <nlohmann/json.hpp>
#include <random>
#include <string_view>

namespace tovik {

namespace {

/// Models take in some 200 tokens of a prompt.
constexpr std::size_t kLongestPrompt = 600;
/// What some servers write instead of nothing.
constexpr std::string_view kBlank = "[BLANK_AUDIO]";

std::string boundary() {
    std::random_device random;
    std::string text = "tovik-record-";
    for (int i = 0; i < 24; ++i) {
        text += "0123456789abcdef"[random() % 16];
    }
    return text;
}

class Multipart {
public:
    void addField(const std::string& name, const std::string& value) {
        body_ += "--" + boundary_ + "\r\nContent-Disposition: form-data; name=\"" + name + "\"\r\n\r\n" +
                 value + "\r\n";
    }
    void addFile(const std::string& fileName, const std::string& type, const std::string& content) {
        body_ += "--" + boundary_ + "\r\nContent-Disposition: form-data; name=\"file\"; filename=\"" +
                 fileName + "\"\r\nContent-Type: " + type + "\r\n\r\n" + content + "\r\n";
    }
    [[nodiscard]] std::string finished() const { return body_ + "--" + boundary_ + "--\r\n"; }
    [[nodiscard]] std::string contentType() const { return "multipart/form-data; boundary=" + boundary_; }

private:
    const std::string boundary_ = boundary();
    std::string body_;
};

std::string head(const std::string& method, const std::string& path, const ServerAddress& address,
                 const std::string& key) {
    const bool usualPort = address.port == (address.isEncrypted ? 443 : 80);
    const bool isIpv6 = address.host.find(':') != std::string::npos;
    auto text = method + " " + path +
                " HTTP/1.1\r\nHost: " + (isIpv6 ? "[" + address.host + "]" : address.host) +
                (usualPort ? "" : ":" + std::to_string(address.port)) +
                "\r\nUser-Agent: tovik-record\r\nAccept: application/json\r\nConnection: close\r\n";
    if (!key.empty()) {
        text += "Authorization: Bearer " + key + "\r\n";
    }
    return text;
}

bool isSpace(char c) {
    return c == ' ' || c == '\n' || c == '\r' || c == '\t';
}

/// Servers begin with a blank and put the segments of a longer text on lines of their own.
std::string oneLine(const std::string& text) {
    std::string line;
    bool gap = false;
    for (const auto c : text) {
        if (isSpace(c)) {
            gap = true;
            continue;
        }
        line += gap && !line.empty() ? " " : "";
        line += c;
        gap = false;
    }
    return line;
}

} // namespace

std::string promptOf(const std::vector<std::string>& contextualStrings) {
    std::string prompt;
    for (auto term = contextualStrings.rbegin(); term != contextualStrings.rend(); ++term) {
        if (prompt.size() + term->size() + 2 > kLongestPrompt) {
            break;
        }
        prompt = prompt.empty() ? *term : *term + ", " + prompt;
    }
    return prompt;
}

Result<std::string> transcriptionRequest(const ServerSettings& settings, const std::string& key,
                                         const Transcription& transcription) {
    Multipart multipart;
    multipart.addField("model", settings.model);
    if (transcription.language) {
        multipart.addField("language", *transcription.language);
    }
    if (const auto prompt = promptOf(transcription.contextualStrings); !prompt.empty()) {
        multipart.addField("prompt", prompt);
    }
    multipart.addField("response_format", "json");
    if (settings.format == ServerSettings::Format::flac) {
        auto file = flacFile(transcription.samples, kTranscriptionRate);
        if (!file) {
            return file.error();
        }
        multipart.addFile("dictation.flac", "audio/flac", file.value());
    } else {
        multipart.addFile("dictation.wav", "audio/wav", wavFile(transcription.samples, kTranscriptionRate));
    }
    const auto body = multipart.finished();
    return head("POST", settings.address.transcriptions, settings.address, key) +
           "Content-Type: " + multipart.contentType() + "\r\nContent-Length: " + std::to_string(body.size()) +
           "\r\n\r\n" + body;
}

std::string healthRequest(const ServerSettings& settings, const std::string& key) {
    return head("GET", settings.address.models, settings.address, key) + "\r\n";
}

std::optional<std::string> transcribedText(const HttpResponse& response) {
    const auto answer = nlohmann::json::parse(response.body, nullptr, false);
    if (!answer.is_object() || !answer.contains("text") || !answer.at("text").is_string()) {
        return std::nullopt;
    }
    const auto text = oneLine(answer.at("text").get<std::string>());
    return text == kBlank ? "" : text;
}

} // namespace tovik

// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "support/TranslationServer.h"

#include "Engines/Apertium/ApertiumService.h"
#include "Engines/Apertium/StreamText.h"
#include "support/TemporaryFolder.h"

#include <nlohmann/json.hpp>
#include <stdexcept>

namespace tovik::test {

namespace {

constexpr auto kLanguages = R"([
    {"code": "en", "name": "English", "targets": ["en", "es", "pt-BR"]},
    {"code": "es", "name": "Spanish", "targets": ["en", "es"]},
    {"code": "pt-BR", "name": "Portuguese", "targets": ["en"]}
])";

std::unique_ptr<StageProcesses> startStages() {
    const auto mode = readFile(std::string(ApertiumService::kDebianModes) + "/eng-spa.mode");
    const auto stages = stagesOfMode(mode.value_or(""));
    auto started = stages ? StageProcesses::start(stages.value()) : stages.error();
    if (!started) {
        throw std::runtime_error(started.error().description);
    }
    return std::move(started.value());
}

} // namespace

TranslationServer::TranslationServer()
    : stages_(startStages()),
      http_([this](HttpExchange& exchange) { answer(exchange); }) {}

void TranslationServer::requireKey(const std::string& key) {
    const std::lock_guard lock(mutex_);
    requiredKey_ = key;
}

void TranslationServer::answer(HttpExchange& exchange) {
    const auto& request = exchange.request();
    if (request.method == "GET" && request.target == "/languages") {
        exchange.answerJson(200, kLanguages);
    } else if (request.method == "POST" && request.target == "/translate") {
        answerTranslation(exchange);
    } else {
        exchange.answerJson(404, R"({"error": "Not found"})");
    }
}

void TranslationServer::answerTranslation(HttpExchange& exchange) {
    const auto request = nlohmann::json::parse(exchange.request().body, nullptr, false);
    if (!request.is_object() || !request.contains("q") || request.value("format", "") != "text") {
        exchange.answerJson(400, R"({"error": "Invalid request"})");
        return;
    }
    const std::lock_guard lock(mutex_);
    if (requiredKey_ && request.value("api_key", "") != *requiredKey_) {
        exchange.answerJson(403, R"({"error": "Invalid API key"})");
        return;
    }
    exchange.answerJson(
        200, nlohmann::json{{"translatedText", translate(request["q"].get<std::string>())}}.dump());
}

std::string TranslationServer::translate(const std::string& text) {
    std::string translation;
    for (const auto& piece : piecesOf(text)) {
        if (piece.isToTranslate) {
            const auto answered = stages_->exchange(toStream(piece.text));
            translation += fromStream(answered ? answered.value() : "").value_or("");
        } else {
            translation += piece.text;
        }
    }
    return translation;
}

} // namespace tovik::test

// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Engines/Apertium/WarmPipeline.h"
#include "support/HttpServer.h"

#include <memory>
#include <mutex>
#include <optional>
#include <string>

namespace tovik::test {

/// A server that speaks the LibreTranslate API and really translates from English to Spanish, with the
/// programs of apertium-eng-spa.
class TranslationServer {
public:
    TranslationServer();

    [[nodiscard]] HttpServer& http() { return http_; }
    [[nodiscard]] std::string url() const { return http_.url(); }

    /// From now on answers only requests with this key.
    void requireKey(const std::string& key);
    /// As it answers when nothing is wrong, for handlers of tests that let only some things go wrong.
    void answer(HttpExchange& exchange);

private:
    void answerTranslation(HttpExchange& exchange);
    [[nodiscard]] std::string translate(const std::string& text);

    std::mutex mutex_;
    std::unique_ptr<StageProcesses> stages_;
    std::optional<std::string> requiredKey_;
    HttpServer http_;
};

} // namespace tovik::test

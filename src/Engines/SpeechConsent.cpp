// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Engines/SpeechConsent.h"

#include <utility>

namespace tovik {

namespace {

constexpr auto kKey = "platform.speech.serverConsent";

} // namespace

std::optional<bool> SpeechConsent::answer(const ServerAddress& server) const {
    if (server.isThisMachine()) {
        return true;
    }
    const auto answers = defaults_.value(kKey);
    if (!answers || !answers->is_object()) {
        return std::nullopt;
    }
    const auto found = answers->find(server.origin());
    return found != answers->end() && found->is_boolean() ? std::optional(found->get<bool>()) : std::nullopt;
}

void SpeechConsent::setAnswer(const ServerAddress& server, bool isAllowed) {
    auto answers = defaults_.value(kKey).value_or(PropertyValue::object());
    if (!answers.is_object()) {
        answers = PropertyValue::object();
    }
    answers[server.origin()] = isAllowed;
    defaults_.set(kKey, std::move(answers));
}

std::string SpeechConsent::question(const ServerAddress& server) {
    return "What you dictate would be sent to the speech server " + server.origin() +
           " and recognised there" +
           (server.isEncrypted ? "." : ", over a connection that others may listen to.");
}

} // namespace tovik

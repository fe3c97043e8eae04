// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/TranslationService.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace tovik {

/// One text on its way through a service: turns the sessions that the service hands over, once, several times
/// or never, into a single outcome. Main thread; held by shared pointers.
class TranslationTaskBridge : public std::enable_shared_from_this<TranslationTaskBridge> {
public:
    using Continuation = std::function<void(const Result<std::string>&)>;

    TranslationTaskBridge(std::string text, TranslationPair configuration, Continuation continuation);

    [[nodiscard]] const TranslationPair& configuration() const { return configuration_; }
    [[nodiscard]] bool hasResumed() const { return hasResumed_; }

    /// Has the session translate the text, unless there is an outcome already.
    void receive(const std::shared_ptr<TranslationSession>& session);

    /// The first outcome counts, all later ones are dropped.
    void resume(const Result<std::string>& outcome);

private:
    const std::string text_;
    const TranslationPair configuration_;
    Continuation continuation_;
    std::vector<std::shared_ptr<TranslationSession>> sessions_;
    bool hasResumed_ = false;
};

} // namespace tovik

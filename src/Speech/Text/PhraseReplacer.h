// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/SystemLog.h"
#include "Speech/Text/PhraseIndex.h"
#include "Speech/Text/ReplacementTemplate.h"
#include "Speech/Text/TextPattern.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tovik {

/// Replaces whole phrases, whatever their case, in one pass over the phrases: the longest first (in
/// characters), and each in all of the text that the ones before it have left. Phrases of equal length keep
/// the order in which they are given. A phrase stands between word boundaries.
///
/// Only phrases that can occur in the text cost time, and their patterns are compiled once. One thread at a
/// time.
class PhraseReplacer {
public:
    struct Rule {
        std::u16string phrase;
        ReplacementTemplate replacement;
    };

    /// `name` says in the log whose phrases these are.
    PhraseReplacer(std::string name, std::vector<Rule> rules);

    /// A phrase on which matching gives up leaves the text as it is; a line in the log tells of the first.
    void apply(std::u16string& text, SystemLog& log);

private:
    struct CompiledRule {
        Rule rule;
        /// Compiled at its first use. Still nothing after that: it does not compile.
        std::optional<TextPattern> pattern;
        bool isCompiled = false;
    };

    static Result<bool> applyRule(CompiledRule& rule, std::u16string& text);

    const std::string name_;
    std::vector<CompiledRule> rules_;
    PhraseIndex index_;
};

} // namespace tovik

// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Speech/Text/PhraseReplacer.h"

#include "Speech/Text/TextFault.h"
#include "Speech/Text/UserCharacters.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace tovik {

namespace {

std::vector<PhraseReplacer::Rule> longestFirst(std::vector<PhraseReplacer::Rule> rules) {
    std::vector<std::pair<std::size_t, std::size_t>> order;
    order.reserve(rules.size());
    for (std::size_t i = 0; i < rules.size(); ++i) {
        order.emplace_back(characterCount(rules[i].phrase), i);
    }
    std::stable_sort(order.begin(), order.end(),
                     [](const auto& a, const auto& b) { return a.first > b.first; });
    std::vector<PhraseReplacer::Rule> sorted;
    sorted.reserve(rules.size());
    for (const auto& [length, place] : order) {
        sorted.push_back(std::move(rules[place]));
    }
    return sorted;
}

} // namespace

PhraseReplacer::PhraseReplacer(std::string name, std::vector<Rule> rules) : name_(std::move(name)) {
    rules_.reserve(rules.size());
    for (auto& rule : longestFirst(std::move(rules))) {
        rules_.push_back({std::move(rule), std::nullopt});
    }
    std::vector<std::u16string_view> phrases;
    phrases.reserve(rules_.size());
    for (const auto& compiled : rules_) {
        phrases.emplace_back(compiled.rule.phrase);
    }
    index_ = PhraseIndex(phrases);
}

void PhraseReplacer::apply(std::u16string& text, SystemLog& log) {
    bool reported = false;
    auto waiting = index_.candidates(text, 0);
    for (std::size_t next = 0; next < waiting.size();) {
        const auto number = waiting[next];
        const auto replaced = applyRule(rules_[number], text);
        if (!replaced && !reported) {
            reportTextFault(log, name_, replaced.error().description);
            reported = true;
        }
        if (replaced && replaced.value()) {
            // What was inserted may hold later phrases.
            waiting = index_.candidates(text, number + 1);
            next = 0;
        } else {
            ++next;
        }
    }
}

Result<bool> PhraseReplacer::applyRule(CompiledRule& rule, std::u16string& text) {
    if (!rule.isCompiled) {
        rule.pattern = TextPattern::compile(u"\\b" + TextPattern::escaped(rule.rule.phrase) + u"\\b");
        rule.isCompiled = true;
    }
    if (!rule.pattern) {
        return false;
    }
    return rule.pattern->replaceAll(
        text, [&rule](const TextMatch& match) { return rule.rule.replacement.expanded(match.group(0)); });
}

} // namespace tovik

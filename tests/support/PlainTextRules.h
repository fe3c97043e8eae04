// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

/// The text rules once more, as plainly as they can be said: every pattern is the one that the rule names, it
/// is compiled when it is needed, and it is searched in the whole text by ICU. Slow, without limits on what
/// an input may cost, and sharing no code with the program: what the program's own rules are compared with.
namespace tovik::test::plain {

using Mapping = std::map<std::string, std::string>;

std::string applyCorrections(const std::string& text, const Mapping& mapping);
std::string spacePunctuation(const std::string& text);
/// `list` is the list in effect, comma-separated.
std::string removeFillerWords(const std::string& text, const std::string& list);
/// Numbers are grouped as in US English.
std::string formatSpokenForms(const std::string& text);
/// The chain with both steps switched on.
std::string processTranscription(const std::string& text, const std::string& fillerList);
Mapping parseDisplayString(const std::string& text);

std::int64_t parseSpokenNumber(const std::string& words);
std::int64_t parseDayOrdinal(const std::string& words);
std::int64_t parseSpokenYear(const std::string& words);

} // namespace tovik::test::plain

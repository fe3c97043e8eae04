// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Speech/Text/TranscriptionDictionary.h"
#include "Speech/Text/Unicode.h"
#include "support/MemoryUserDefaults.h"
#include "support/PlainTextRules.h"
#include "support/RecordingLog.h"

#include <cstdlib>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

// The first line is the text; each other line is a heard phrase and its replacement, parted by a tab.

namespace {

std::string nextLine(std::string_view& rest) {
    const auto end = std::min(rest.find('\n'), rest.size());
    const auto line = rest.substr(0, end);
    rest.remove_prefix(std::min(end + 1, rest.size()));
    return tovik::toUtf8(tovik::toUtf16(line));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    std::string_view rest(reinterpret_cast<const char*>(data), size);
    const auto text = nextLine(rest);
    tovik::TranscriptionDictionary::Mapping mapping;
    while (!rest.empty() && mapping.size() < 12) {
        const auto line = nextLine(rest);
        const auto tab = std::min(line.find('\t'), line.size());
        mapping[line.substr(0, tab)] = line.substr(std::min(tab + 1, line.size()));
    }
    tovik::test::MemoryUserDefaults defaults;
    tovik::test::RecordingLog log;
    defaults.set(tovik::TranscriptionDictionary::dictionaryKey, mapping);
    const auto corrected = tovik::TranscriptionDictionary(defaults, log).apply(text);
    // Where a rule gave up for the size of the result, the plain reading has no such limit.
    if (log.printed().empty() && corrected.size() < 100'000 &&
        corrected != tovik::test::plain::applyCorrections(text, mapping)) {
        std::abort();
    }
    return 0;
}

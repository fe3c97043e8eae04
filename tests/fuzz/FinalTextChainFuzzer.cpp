// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Speech/Text/FinalTextChain.h"
#include "support/MemoryUserDefaults.h"
#include "support/RecordingLog.h"

#include <cstdlib>
#include <nlohmann/json.hpp>
#include <string_view>

// The first byte says which steps are switched on; a line feed parts the filler list from the text.

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    static tovik::test::MemoryUserDefaults defaults;
    static tovik::test::RecordingLog log;
    static tovik::FinalTextChain chain(defaults, log, "en_US");
    if (size == 0) {
        return 0;
    }
    const std::string_view input(reinterpret_cast<const char*>(data) + 1, size - 1);
    const auto lineEnd = std::min(input.find('\n'), input.size());
    defaults.set(tovik::FillerWords::removeKey, (data[0] & 1) != 0);
    defaults.set(tovik::TranscriptionFormatter::enabledKey, (data[0] & 2) != 0);
    defaults.set(tovik::FillerWords::listKey, std::string(input.substr(0, lineEnd)));
    const auto text = input.substr(std::min(lineEnd + 1, input.size()));
    const auto cleaned = chain.processTranscription(text);
    // A rule that gives up on so short a text is a fault, and so is text out of nothing.
    if (!log.printed().empty() || (text.empty() && !cleaned.empty())) {
        std::abort();
    }
    return 0;
}

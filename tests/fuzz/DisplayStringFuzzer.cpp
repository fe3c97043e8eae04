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

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    static tovik::test::MemoryUserDefaults defaults;
    static tovik::test::RecordingLog log;
    static tovik::TranscriptionDictionary dictionary(defaults, log);
    const std::string text(reinterpret_cast<const char*>(data), size);
    dictionary.updateFromDisplayString(text);
    const auto wellFormed = tovik::toUtf8(tovik::toUtf16(text));
    if (dictionary.getDictionary() != tovik::test::plain::parseDisplayString(wellFormed) ||
        defaults.value(tovik::TranscriptionDictionary::dictionaryKey) !=
            tovik::PropertyValue(dictionary.getDictionary())) {
        std::abort();
    }
    return 0;
}

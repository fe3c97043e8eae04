// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Session/DebugLog.h"

#include "Session/DateText.h"

#include <unicode/ustring.h>

namespace tovik {

namespace {

bool isUtf8(std::string_view text) {
    UErrorCode status = U_ZERO_ERROR;
    u_strFromUTF8(nullptr, 0, nullptr, text.data(), static_cast<std::int32_t>(text.size()), &status);
    return status != U_INVALID_CHAR_FOUND;
}

} // namespace

DebugLog::DebugLog(Files& files, const Clock& clock, SystemLog& log, std::string path)
    : files_(files),
      clock_(clock),
      log_(log),
      path_(std::move(path)) {}

void DebugLog::debugLog(std::string_view message) {
    log_.logLine("[TovikVoice] " + std::string(message));
    if (!isUtf8(message)) {
        return;
    }
    const auto line = "[" + dateDescription(clock_.now()) + "] " + std::string(message) + "\n";
    if (files_.append(path_, line)) {
        return;
    }
    // Most likely the file does not exist yet.
    if (files_.createFolder(path_.substr(0, path_.rfind('/')))) {
        (void)files_.writeAtomically(path_, line);
    }
}

} // namespace tovik

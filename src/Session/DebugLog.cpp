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

DebugLog::DebugLog(Files& files, const Clock& clock, SystemLog& log, std::string folder)
    : files_(files),
      clock_(clock),
      log_(log),
      folder_(std::move(folder)) {}

void DebugLog::debugLog(std::string_view message) {
    log_.logLine("[TovikVoice] " + std::string(message));
    if (!isUtf8(message)) {
        return;
    }
    const auto path = folder_ + "/tovik_record_debug.log";
    const auto line = "[" + dateDescription(clock_.now()) + "] " + std::string(message) + "\n";
    if (files_.append(path, line)) {
        return;
    }
    // Most likely the file does not exist yet.
    if (files_.createFolder(folder_)) {
        (void)files_.writeAtomically(path, line);
    }
}

} // namespace tovik

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
    unwritten_ += "[" + dateDescription(clock_.now()) + "] " + std::string(message) + "\n";
    if (files_.append(path_, unwritten_) || createFile()) {
        unwritten_.clear();
    }
}

/// Only where there is none: one that cannot be written to for now keeps what it holds.
bool DebugLog::createFile() {
    return !files_.exists(path_) && files_.createFolder(path_.substr(0, path_.rfind('/'))) &&
           files_.writeAtomically(path_, unwritten_);
}

} // namespace tovik

// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Session/SessionFiles.h"

#include <unicode/ustring.h>

#include <array>
#include <ctime>
#include <nlohmann/json.hpp>
#include <utility>

namespace tovik {

namespace {

std::string inUtc(Date date, const char* format) {
    // Rounded down, so that a moment before 1970 with a fraction still names the second it lies in.
    const auto whole = std::chrono::floor<std::chrono::seconds>(date);
    const std::time_t seconds = std::chrono::system_clock::to_time_t(whole);
    std::tm parts{};
    gmtime_r(&seconds, &parts);
    std::array<char, 64> text{};
    return {text.data(), std::strftime(text.data(), text.size(), format, &parts)};
}

/// ISO 8601 internet date-time: UTC, whole seconds, as in 2025-03-01T14:05:09Z.
std::string internetDateTime(Date date) {
    return inUtc(date, "%Y-%m-%dT%H:%M:%SZ");
}

/// As in 2025-03-01 14:05:09 +0000.
std::string dateDescription(Date date) {
    return inUtc(date, "%Y-%m-%d %H:%M:%S +0000");
}

bool isUtf8(std::string_view text) {
    UErrorCode status = U_ZERO_ERROR;
    u_strFromUTF8(nullptr, 0, nullptr, text.data(), static_cast<std::int32_t>(text.size()), &status);
    return status != U_INVALID_CHAR_FOUND;
}

} // namespace

CaptureStateFile::CaptureStateFile(Files& files, const Clock& clock, SystemLog& log,
                                   const std::string& dataFolder, std::int64_t processIdentifier)
    : files_(files),
      clock_(clock),
      log_(log),
      folder_(dataFolder + "/Tovik"),
      path_(folder_ + "/capture-state.json"),
      processIdentifier_(processIdentifier) {}

void CaptureStateFile::writeTovikCaptureState(bool active, std::optional<Date> startedAt) {
    if (const auto created = files_.createFolder(folder_); !created) {
        logFailure(created.error());
        return;
    }
    if (!active) {
        // A file that was never written is no failure, and nobody can act on any other.
        (void)files_.remove(path_);
        return;
    }

    const auto now = clock_.now();
    const nlohmann::json state{{"active", true},
                               {"app", "tovik-record"},
                               {"pid", processIdentifier_},
                               {"startedAt", internetDateTime(startedAt.value_or(now))},
                               {"updatedAt", internetDateTime(now)}};
    if (const auto written = files_.writeAtomically(path_, state.dump(2)); !written) {
        logFailure(written.error());
    }
}

void CaptureStateFile::logFailure(const Error& error) {
    log_.printLine("[TovikVoice] Failed to write capture state: " + error.description);
}

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

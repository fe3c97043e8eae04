// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Session/CaptureStateFile.h"

#include "Session/DateText.h"

#include <nlohmann/json.hpp>

namespace tovik {

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

} // namespace tovik

// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/RecordingOverlay.h"

#include <string>
#include <vector>

namespace tovik::test {

/// Remembers what the pill was asked to show.
class FakeRecordingOverlay : public RecordingOverlay {
public:
    void show(Date startedAt) override {
        calls.emplace_back("show");
        shownSince.push_back(startedAt);
    }
    void hide() override { calls.emplace_back("hide"); }
    void tovik() override { calls.emplace_back("tovik"); }
    void setLevel(float level) override { levels.push_back(level); }

    /// show, hide and tovik calls by name, in order.
    std::vector<std::string> calls;
    std::vector<Date> shownSince;
    std::vector<float> levels;
};

} // namespace tovik::test

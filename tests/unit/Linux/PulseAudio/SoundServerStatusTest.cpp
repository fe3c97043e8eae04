// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Linux/PulseAudio/PulseAudioConnection.h"

#include <gtest/gtest.h>

namespace {

using namespace tovik;
using namespace std::chrono_literals;

TEST(SoundServerStatus, whenTheProgramIsRefused_itIsTurnedAway) {
    SoundServerStatus status;
    status.state = SoundServerStatus::State::refused;
    EXPECT_TRUE(status.turnsAway(status.since + 1h));
}

TEST(SoundServerStatus, whenNothingWasRefused_nobodyIsTurnedAway) {
    SoundServerStatus status;
    status.state = SoundServerStatus::State::ready;
    EXPECT_FALSE(status.turnsAway(status.since));
}

TEST(SoundServerStatus, aRefusedRecordingCountsUntilTheUserMayHaveAllowedIt) {
    SoundServerStatus status;
    status.state = SoundServerStatus::State::ready;
    status.recordingRefused = status.since;
    EXPECT_TRUE(status.turnsAway(status.since));
    EXPECT_TRUE(status.turnsAway(status.since + 9999ms));
    EXPECT_FALSE(status.turnsAway(status.since + 10s));
}

} // namespace

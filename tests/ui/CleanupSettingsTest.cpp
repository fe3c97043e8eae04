// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/Settings/CleanupSettings.h"

#include "support/MemoryUserDefaults.h"
#include "support/RecordingLog.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace tovik {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr auto kDefault = "kind of, sort of, um, uh, erm, hmm";

struct CleanupSettingsTest : testing::Test {
    test::MemoryUserDefaults defaults;
    test::RecordingLog log;
    FillerWords fillerWords{defaults, log};
    std::vector<std::string> toasts;
    CleanupSettings settings{fillerWords, defaults,
                             [this](const std::string& text) { toasts.push_back(text); }};
};

TEST_F(CleanupSettingsTest, atFirst_isOffWithTheDefaultListAndWritesNothing) {
    EXPECT_FALSE(settings.cleanupEnabled());
    EXPECT_EQ(settings.fillerWords(), kDefault);
    EXPECT_THAT(defaults.writes(), IsEmpty());
}

TEST_F(CleanupSettingsTest, theSwitch_isStoredAndSaidAtOnce) {
    settings.cleanupToggled(true);
    EXPECT_EQ(defaults.boolean("TovikVoiceRemoveFillerWords"), true);
    settings.cleanupToggled(false);
    EXPECT_EQ(defaults.boolean("TovikVoiceRemoveFillerWords"), false);
    EXPECT_THAT(toasts, ElementsAre("Cleanup on", "Cleanup off"));
}

TEST_F(CleanupSettingsTest, theList_isStoredWithoutOuterBlanks) {
    EXPECT_EQ(settings.fillerWordsChanged("  um,uh  "), "um,uh");
    EXPECT_EQ(defaults.string("TovikVoiceFillerWords"), "um,uh");
    EXPECT_THAT(toasts, ElementsAre("Filler words saved"));
}

TEST_F(CleanupSettingsTest, aListThatIsCleared_becomesTheDefault) {
    for (const char* nothing : {"", "   ", " \n\t "}) {
        settings.fillerWordsChanged("um");
        EXPECT_EQ(settings.fillerWordsChanged(nothing), kDefault);
        EXPECT_EQ(defaults.string("TovikVoiceFillerWords"), kDefault);
    }
}

TEST_F(CleanupSettingsTest, aDefaultListOfEarlierDays_isShownAsTheDefaultOfToday) {
    EXPECT_EQ(settings.fillerWordsChanged("you know, I mean, kind of, sort of, um, uh, erm, hmm"), kDefault);
    EXPECT_EQ(defaults.string("TovikVoiceFillerWords"), kDefault);
}

} // namespace
} // namespace tovik

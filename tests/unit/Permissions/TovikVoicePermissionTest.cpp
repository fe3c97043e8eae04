// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Permissions/PermissionChecklist.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>

namespace tovik {

void PrintTo(const RgbColor& color, std::ostream* out) {
    *out << color.red << ' ' << color.green << ' ' << color.blue;
}

namespace {

using testing::ElementsAre;
using Permission = TovikVoicePermission;
using State = TovikVoicePermissionState;

TEST(TovikVoicePermission, standInTheOrderMicrophoneSpeechAccessibility) {
    EXPECT_THAT(kAllPermissions,
                ElementsAre(Permission::microphone, Permission::speech, Permission::accessibility));
}

struct PermissionRow {
    Permission permission;
    const char* rawValue;
    const char* title;
    const char* subtitle;
    const char* symbolName;
};

class PermissionTexts : public testing::TestWithParam<PermissionRow> {};

TEST_P(PermissionTexts, nameIt) {
    const auto& row = GetParam();
    EXPECT_EQ(rawValue(row.permission), row.rawValue);
    EXPECT_EQ(title(row.permission), row.title);
    EXPECT_EQ(subtitle(row.permission), row.subtitle);
    EXPECT_EQ(symbolName(row.permission), row.symbolName);
}

INSTANTIATE_TEST_SUITE_P(Rows, PermissionTexts,
                         testing::Values(PermissionRow{Permission::microphone, "microphone", "Microphone",
                                                       "Capture audio for dictation.", "mic.fill"},
                                         PermissionRow{Permission::speech, "speech", "Speech Recognition",
                                                       "Convert speech into text.", "waveform"},
                                         PermissionRow{Permission::accessibility, "accessibility",
                                                       "Accessibility",
                                                       "Paste transcripts into the app you were using.",
                                                       "cursorarrow.motionlines"}),
                         [](const auto& row) { return std::string(row.param.rawValue); });

struct StateRow {
    const char* name;
    State state;
    int value;
    const char* statusText;
    const char* buttonTitle;
    RgbColor tint;
};

class StateLooks : public testing::TestWithParam<StateRow> {};

TEST_P(StateLooks, tellItApart) {
    const auto& row = GetParam();
    EXPECT_EQ(static_cast<int>(row.state), row.value);
    EXPECT_EQ(statusText(row.state), row.statusText);
    EXPECT_EQ(buttonTitle(row.state), row.buttonTitle);
    EXPECT_EQ(tint(row.state), row.tint);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, StateLooks,
    testing::Values(
        StateRow{"granted", State::granted, 0, "Granted", "Refresh", {0.12, 0.55, 0.24}},
        StateRow{"notDetermined", State::notDetermined, 1, "Needs setup", "Grant", {0.95, 0.56, 0.12}},
        StateRow{"needsInstall", State::needsInstall, 2, "Install app", "Fix", {0.95, 0.56, 0.12}},
        StateRow{"denied", State::denied, 3, "Open Settings", "Settings", {0.78, 0.18, 0.16}},
        StateRow{"restricted", State::restricted, 4, "Restricted", "Settings", {0.78, 0.18, 0.16}},
        StateRow{"unknown", State::unknown, 5, "Unknown", "Check", {0.4, 0.4, 0.4}}),
    [](const auto& row) { return std::string(row.param.name); });

// -------------------------------------------------------------------------- status numbers

struct StatusRow {
    const char* name;
    int status;
    State microphone;
    State speech;
};

class StatusNumbers : public testing::TestWithParam<StatusRow> {};

TEST_P(StatusNumbers, meanAState) {
    EXPECT_EQ(microphoneState(MicrophoneStatus{GetParam().status}), GetParam().microphone);
    EXPECT_EQ(speechState(SpeechStatus{GetParam().status}), GetParam().speech);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, StatusNumbers,
    testing::Values(StatusRow{"zeroIsNotDetermined", 0, State::notDetermined, State::notDetermined},
                    StatusRow{"oneIsRestrictedForOneAndDeniedForTheOther", 1, State::restricted,
                              State::denied},
                    StatusRow{"twoIsTheOtherWayRound", 2, State::denied, State::restricted},
                    StatusRow{"threeIsGranted", 3, State::granted, State::granted},
                    StatusRow{"fourIsUnknown", 4, State::unknown, State::unknown},
                    StatusRow{"aHugeNumberIsUnknown", 2147483647, State::unknown, State::unknown},
                    StatusRow{"aNegativeNumberIsUnknown", -1, State::unknown, State::unknown}),
    [](const auto& row) { return std::string(row.param.name); });

// --------------------------------------------------------------------------- detail lines

struct DetailRow {
    const char* name;
    Permission permission;
    State state;
    const char* text;
};

constexpr auto kInstall = "Open installer and drag Tovik Record into Applications.";
constexpr auto kEnable = "Enable in Settings; reopen if needed.";
constexpr auto kCapture = "Capture audio for dictation.";
constexpr auto kConvert = "Convert speech into text.";
constexpr auto kPaste = "Paste transcripts into the app you were using.";

class DetailText : public testing::TestWithParam<DetailRow> {};

TEST_P(DetailText, followsPermissionAndState) {
    EXPECT_EQ(detailText(GetParam().permission, GetParam().state), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, DetailText,
    testing::Values(
        DetailRow{"microphoneGranted", Permission::microphone, State::granted, kCapture},
        DetailRow{"microphoneNotDetermined", Permission::microphone, State::notDetermined, kCapture},
        DetailRow{"microphoneNeedsInstall", Permission::microphone, State::needsInstall, kInstall},
        DetailRow{"microphoneDenied", Permission::microphone, State::denied, kCapture},
        DetailRow{"microphoneRestricted", Permission::microphone, State::restricted, kCapture},
        DetailRow{"microphoneUnknown", Permission::microphone, State::unknown, kCapture},
        DetailRow{"speechGranted", Permission::speech, State::granted, kConvert},
        DetailRow{"speechNotDetermined", Permission::speech, State::notDetermined, kConvert},
        DetailRow{"speechNeedsInstall", Permission::speech, State::needsInstall, kInstall},
        DetailRow{"speechDenied", Permission::speech, State::denied, kConvert},
        DetailRow{"speechRestricted", Permission::speech, State::restricted, kConvert},
        DetailRow{"speechUnknown", Permission::speech, State::unknown, kConvert},
        DetailRow{"accessibilityGranted", Permission::accessibility, State::granted, kPaste},
        DetailRow{"accessibilityNotDetermined", Permission::accessibility, State::notDetermined, kEnable},
        DetailRow{"accessibilityNeedsInstall", Permission::accessibility, State::needsInstall, kInstall},
        DetailRow{"accessibilityDenied", Permission::accessibility, State::denied, kEnable},
        DetailRow{"accessibilityRestricted", Permission::accessibility, State::restricted, kEnable},
        DetailRow{"accessibilityUnknown", Permission::accessibility, State::unknown, kEnable}),
    [](const auto& row) { return std::string(row.param.name); });

// ----------------------------------------------------------------------------- whole rows

TEST(RowContents, whenGranted_dimTheButtonAndOfferARefresh) {
    EXPECT_EQ(rowContents(Permission::microphone, State::granted),
              (PermissionRowContents{
                  .statusText = "Granted",
                  .tint = {0.12, 0.55, 0.24},
                  .detailText = "Capture audio for dictation.",
                  .buttonTitle = "Refresh",
                  .buttonTint = std::nullopt,
                  .buttonAccessibilityLabel = "Microphone permission action",
                  .buttonAccessibilityHelp = "Refresh Microphone permission status",
              }));
}

TEST(RowContents, whenRestricted_offerTheSettings) {
    EXPECT_EQ(rowContents(Permission::speech, State::restricted),
              (PermissionRowContents{
                  .statusText = "Restricted",
                  .tint = {0.78, 0.18, 0.16},
                  .detailText = "Convert speech into text.",
                  .buttonTitle = "Settings",
                  .buttonTint = RgbColor{0.33, 0.3, 0.92},
                  .buttonAccessibilityLabel = "Speech Recognition permission action",
                  .buttonAccessibilityHelp = "Request or open settings for Speech Recognition",
              }));
}

TEST(RowContents, inEveryStateButGranted_theButtonIsInFullColour) {
    for (const auto state :
         {State::notDetermined, State::needsInstall, State::denied, State::restricted, State::unknown}) {
        for (const auto permission : kAllPermissions) {
            EXPECT_EQ(rowContents(permission, state).buttonTint, (RgbColor{0.33, 0.3, 0.92}));
            EXPECT_EQ(rowContents(permission, state).buttonAccessibilityHelp,
                      "Request or open settings for " + title(permission));
        }
    }
}

} // namespace
} // namespace tovik

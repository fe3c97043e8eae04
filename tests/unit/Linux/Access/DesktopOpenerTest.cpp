// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Linux/Desktop/DesktopOpener.h"

#include "support/FakeUserInterface.h"
#include "support/FakeWorkspace.h"
#include "support/ManualTime.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <optional>

namespace tovik {

void PrintTo(const SettingsCommand& command, std::ostream* out) {
    *out << command.program;
    for (const auto& argument : command.arguments) {
        *out << ' ' << argument;
    }
}

} // namespace tovik

namespace tovik::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

using Launch = FakeProcessLauncher::Launch;
using Names = std::vector<std::string>;

const std::string kMicrophonePane =
    "x-apple.systempreferences:com.apple.preference.security?Privacy_Microphone";
const std::string kSpeechPane =
    "x-apple.systempreferences:com.apple.preference.security?Privacy_SpeechRecognition";
const std::string kAccessibilityPane =
    "x-apple.systempreferences:com.apple.preference.security?Privacy_Accessibility";

// ------------------------------------------------------------------------------- the commands

struct CommandRow {
    const char* name;
    std::string address;
    Names desktops;
    Names installed;
    std::optional<SettingsCommand> command;
};

std::ostream& operator<<(std::ostream& out, const CommandRow& row) {
    return out << row.name;
}

class SettingsCommands : public testing::TestWithParam<CommandRow> {};

TEST_P(SettingsCommands, suitTheDesktopAndWhatIsInstalled) {
    const auto& row = GetParam();
    EXPECT_EQ(settingsCommand(row.address, row.desktops,
                              [&](const std::string& program) {
                                  return std::find(row.installed.begin(), row.installed.end(), program) !=
                                         row.installed.end();
                              }),
              row.command);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, SettingsCommands,
    testing::Values(
        CommandRow{"gnomeSound",
                   kMicrophonePane,
                   {"GNOME"},
                   {"gnome-control-center", "pavucontrol"},
                   SettingsCommand{"gnome-control-center", {"sound"}}},
        CommandRow{"gnomeOfADistribution",
                   kMicrophonePane,
                   {"ubuntu", "GNOME"},
                   {"gnome-control-center"},
                   SettingsCommand{"gnome-control-center", {"sound"}}},
        CommandRow{"gnomeWithoutItsSettings",
                   kMicrophonePane,
                   {"GNOME"},
                   {"pavucontrol"},
                   SettingsCommand{"pavucontrol", {}}},
        CommandRow{"kdeSound",
                   kMicrophonePane,
                   {"KDE"},
                   {"systemsettings", "systemsettings5", "pavucontrol"},
                   SettingsCommand{"systemsettings", {"kcm_pulseaudio"}}},
        CommandRow{"olderKdeSound",
                   kMicrophonePane,
                   {"KDE"},
                   {"systemsettings5"},
                   SettingsCommand{"systemsettings5", {"kcm_pulseaudio"}}},
        CommandRow{
            "xfceSound", kMicrophonePane, {"XFCE"}, {"pavucontrol"}, SettingsCommand{"pavucontrol", {}}},
        CommandRow{"cinnamonSound",
                   kMicrophonePane,
                   {"X-Cinnamon"},
                   {"cinnamon-settings"},
                   SettingsCommand{"cinnamon-settings", {"sound"}}},
        CommandRow{"mateSound",
                   kMicrophonePane,
                   {"MATE"},
                   {"mate-volume-control"},
                   SettingsCommand{"mate-volume-control", {}}},
        CommandRow{"lxqtSound",
                   kMicrophonePane,
                   {"LXQt"},
                   {"pavucontrol", "pavucontrol-qt"},
                   SettingsCommand{"pavucontrol-qt", {}}},
        CommandRow{
            "settingsOfAnotherDesktop", kMicrophonePane, {"XFCE"}, {"gnome-control-center"}, std::nullopt},
        CommandRow{"noDesktopNamed",
                   kMicrophonePane,
                   {},
                   {"pavucontrol-qt", "systemsettings"},
                   SettingsCommand{"pavucontrol-qt", {}}},
        CommandRow{"nothingInstalled", kMicrophonePane, {"GNOME"}, {}, std::nullopt},
        CommandRow{"gnomeKeyboard",
                   kAccessibilityPane,
                   {"GNOME"},
                   {"gnome-control-center"},
                   SettingsCommand{"gnome-control-center", {"keyboard"}}},
        CommandRow{"kdeKeyboard",
                   kAccessibilityPane,
                   {"KDE"},
                   {"systemsettings"},
                   SettingsCommand{"systemsettings", {"kcm_keys"}}},
        CommandRow{"xfceKeyboard",
                   kAccessibilityPane,
                   {"XFCE"},
                   {"xfce4-keyboard-settings"},
                   SettingsCommand{"xfce4-keyboard-settings", {}}},
        CommandRow{"speechHasNoPage", kSpeechPane, {"GNOME"}, {"gnome-control-center"}, std::nullopt},
        CommandRow{"noPaneAtAll",
                   "https://tovik.example/",
                   {"GNOME"},
                   {"gnome-control-center", "pavucontrol"},
                   std::nullopt},
        CommandRow{"paneWithoutAnchor",
                   "x-apple.systempreferences:com.apple.preference.security?",
                   {"GNOME"},
                   {"gnome-control-center", "pavucontrol"},
                   std::nullopt}),
    [](const auto& row) { return std::string(row.param.name); });

// ----------------------------------------------------------------------------------- opening

class DesktopOpenerTest : public testing::Test {
protected:
    DesktopOpener& opener() {
        if (!opener_) {
            opener_.emplace(DesktopOpener::Services{
                .queue = time,
                .alert = alert,
                .launcher = launcher,
                .desktops = {"GNOME"},
                .isInstalled = [this](const std::string&) { return installed; },
                .microphoneExplanation = [this] { return explanation; },
                .reconsiderSpeech = [this] { ++reconsidered; },
                .openElse =
                    [this](const std::string& addressOrPath) {
                        elsewhere.push_back(addressOrPath);
                        return openingWorks;
                    },
            });
        }
        return *opener_;
    }
    void destroyOpener() { opener_.reset(); }

    bool installed = true;
    int reconsidered = 0;
    std::string explanation;
    bool openingWorks = true;
    std::vector<std::string> elsewhere;
    ManualTime time;
    FakeAlert alert;
    FakeProcessLauncher launcher;

private:
    std::optional<DesktopOpener> opener_;
};

const Launch kSoundSettings{"gnome-control-center", {"sound"}};

TEST_F(DesktopOpenerTest, forSpeech_asksTheUserAgainOnce) {
    EXPECT_TRUE(opener().open(kSpeechPane));
    EXPECT_TRUE(opener().open(kSpeechPane));
    EXPECT_EQ(reconsidered, 0);
    time.runPending();
    EXPECT_EQ(reconsidered, 1);
    EXPECT_THAT(launcher.launches(), IsEmpty());
    EXPECT_TRUE(opener().open(kSpeechPane));
    time.runPending();
    EXPECT_EQ(reconsidered, 2);
}

TEST_F(DesktopOpenerTest, whenNothingIsWrong_opensTheSettingsAtOnce) {
    EXPECT_TRUE(opener().open(kMicrophonePane));
    EXPECT_THAT(launcher.launches(), ElementsAre(kSoundSettings));
    EXPECT_THAT(alert.questions(), IsEmpty());
}

TEST_F(DesktopOpenerTest, whenTheMicrophoneIsMissing_saysSoAndOpensTheSettingsIfTheUserWants) {
    explanation = "No microphone was found.";
    alert.answerNext(0);
    EXPECT_TRUE(opener().open(kMicrophonePane));
    EXPECT_THAT(launcher.launches(), IsEmpty());
    time.runPending();
    EXPECT_THAT(alert.questions(), ElementsAre(FakeAlert::Question{"Tovik Record cannot hear you",
                                                                   "No microphone was found.",
                                                                   {"Open Settings", "Not Now"}}));
    EXPECT_THAT(launcher.launches(), ElementsAre(kSoundSettings));
}

TEST_F(DesktopOpenerTest, whenTheUserDoesNotWantTheSettings_theyStayClosed) {
    explanation = "No microphone was found.";
    for (const int answer : {1, -1}) {
        alert.answerNext(answer);
        EXPECT_TRUE(opener().open(kMicrophonePane));
        time.runPending();
    }
    EXPECT_THAT(launcher.launches(), IsEmpty());
}

TEST_F(DesktopOpenerTest, whenThereAreNoSettings_stillSaysWhatIsWrong) {
    explanation = "The sound server does not answer.";
    installed = false;
    alert.answerNext(0);
    EXPECT_FALSE(opener().open(kMicrophonePane));
    time.runPending();
    EXPECT_THAT(alert.questions(),
                ElementsAre(FakeAlert::Question{
                    "Tovik Record cannot hear you", "The sound server does not answer.", {"Close"}}));
    EXPECT_THAT(launcher.launches(), IsEmpty());
}

TEST_F(DesktopOpenerTest, whenAskedAgainWhileExplaining_explainsOnceOnly) {
    explanation = "No microphone was found.";
    EXPECT_TRUE(opener().open(kMicrophonePane));
    alert.onShown = [this] { EXPECT_TRUE(opener().open(kMicrophonePane)); };
    EXPECT_TRUE(opener().open(kMicrophonePane));
    time.runPending();
    EXPECT_THAT(alert.questions(), SizeIs(1));
    EXPECT_TRUE(opener().open(kMicrophonePane));
    alert.onShown = nullptr;
    time.runPending();
    EXPECT_THAT(alert.questions(), SizeIs(2));
}

TEST_F(DesktopOpenerTest, whenTheTroubleEndsBeforeTheQuestion_opensTheSettingsWithoutIt) {
    explanation = "No microphone was found.";
    EXPECT_TRUE(opener().open(kMicrophonePane));
    explanation.clear();
    time.runPending();
    EXPECT_THAT(alert.questions(), IsEmpty());
    EXPECT_THAT(launcher.launches(), ElementsAre(kSoundSettings));
}

TEST_F(DesktopOpenerTest, whenTheSettingsDoNotStart_saysWhichProgramItWas) {
    explanation = "No microphone was found.";
    launcher.fail(Error{"POSIX", 2, "No such file"});
    alert.answerNext(0);
    EXPECT_TRUE(opener().open(kMicrophonePane));
    time.runPending();
    ASSERT_THAT(alert.questions(), SizeIs(2));
    EXPECT_EQ(alert.questions()[1].message, "The settings could not be opened");
    EXPECT_EQ(alert.questions()[1].informativeText, "Start gnome-control-center yourself.");
}

TEST_F(DesktopOpenerTest, whenTheSettingsDoNotStartAtOnce_theCallerIsTold) {
    launcher.fail(Error{"POSIX", 2, "No such file"});
    EXPECT_FALSE(opener().open(kMicrophonePane));
}

TEST_F(DesktopOpenerTest, whenAnotherPaneIsOpened_theMicrophoneIsNoSubject) {
    explanation = "No microphone was found.";
    EXPECT_TRUE(opener().open(kAccessibilityPane));
    EXPECT_TRUE(opener().open(kSpeechPane));
    time.runPending();
    EXPECT_THAT(alert.questions(), IsEmpty());
    EXPECT_THAT(launcher.launches(), ElementsAre(Launch{"gnome-control-center", {"keyboard"}}));
}

TEST_F(DesktopOpenerTest, whenTheProgramEndsBeforeTheQuestion_nothingIsShown) {
    explanation = "No microphone was found.";
    EXPECT_TRUE(opener().open(kMicrophonePane));
    destroyOpener();
    time.runPending();
    EXPECT_THAT(alert.questions(), IsEmpty());
}

TEST_F(DesktopOpenerTest, everythingElse_goesToTheDesktop) {
    EXPECT_TRUE(opener().open("https://tovik.example/"));
    EXPECT_TRUE(opener().open("/home/ada/Downloads"));
    EXPECT_THAT(elsewhere, ElementsAre("https://tovik.example/", "/home/ada/Downloads"));
    EXPECT_THAT(launcher.launches(), IsEmpty());
    installed = false;
    EXPECT_FALSE(opener().open(kMicrophonePane));
    openingWorks = false;
    EXPECT_FALSE(opener().open("https://tovik.example/"));
}

} // namespace
} // namespace tovik::test

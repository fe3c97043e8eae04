// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Linux/Desktop/SettingsPanes.h"

#include "Linux/Desktop/SettingsWorkspace.h"
#include "support/FakeAlert.h"
#include "support/FakeProcessLauncher.h"
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

class SettingsPanesTest : public testing::Test {
protected:
    SettingsPanes& panes() {
        if (!panes_) {
            panes_.emplace(SettingsPanes::Services{
                .queue = time,
                .alert = alert,
                .launcher = launcher,
                .desktops = {"GNOME"},
                .isInstalled = [this](const std::string&) { return installed; },
                .microphoneExplanation = [this] { return explanation; },
                .reconsiderSpeech = [this] { ++reconsidered; },
            });
        }
        return *panes_;
    }
    void destroyPanes() { panes_.reset(); }

    bool installed = true;
    int reconsidered = 0;
    std::string explanation;
    ManualTime time;
    FakeAlert alert;
    FakeProcessLauncher launcher;

private:
    std::optional<SettingsPanes> panes_;
};

const Launch kSoundSettings{"gnome-control-center", {"sound"}};

TEST_F(SettingsPanesTest, forSpeech_asksTheUserAgainOnce) {
    EXPECT_TRUE(panes().open(kSpeechPane));
    EXPECT_TRUE(panes().open(kSpeechPane));
    EXPECT_EQ(reconsidered, 0);
    time.runPending();
    EXPECT_EQ(reconsidered, 1);
    EXPECT_THAT(launcher.launches(), IsEmpty());
    EXPECT_TRUE(panes().open(kSpeechPane));
    time.runPending();
    EXPECT_EQ(reconsidered, 2);
}

TEST_F(SettingsPanesTest, whenNothingIsWrong_opensTheSettingsAtOnce) {
    EXPECT_TRUE(panes().open(kMicrophonePane));
    EXPECT_THAT(launcher.launches(), ElementsAre(kSoundSettings));
    EXPECT_THAT(alert.questions(), IsEmpty());
}

TEST_F(SettingsPanesTest, whenTheMicrophoneIsMissing_saysSoAndOpensTheSettingsIfTheUserWants) {
    explanation = "No microphone was found.";
    alert.answerNext(0);
    EXPECT_TRUE(panes().open(kMicrophonePane));
    EXPECT_THAT(launcher.launches(), IsEmpty());
    time.runPending();
    EXPECT_THAT(alert.questions(), ElementsAre(FakeAlert::Question{"Tovik Record cannot hear you",
                                                                   "No microphone was found.",
                                                                   {"Open Settings", "Not Now"}}));
    EXPECT_THAT(launcher.launches(), ElementsAre(kSoundSettings));
}

TEST_F(SettingsPanesTest, whenTheUserDoesNotWantTheSettings_theyStayClosed) {
    explanation = "No microphone was found.";
    for (const int answer : {1, -1}) {
        alert.answerNext(answer);
        EXPECT_TRUE(panes().open(kMicrophonePane));
        time.runPending();
    }
    EXPECT_THAT(launcher.launches(), IsEmpty());
}

TEST_F(SettingsPanesTest, whenThereAreNoSettings_stillSaysWhatIsWrong) {
    explanation = "The sound server does not answer.";
    installed = false;
    alert.answerNext(0);
    EXPECT_FALSE(panes().open(kMicrophonePane));
    time.runPending();
    EXPECT_THAT(alert.questions(),
                ElementsAre(FakeAlert::Question{
                    "Tovik Record cannot hear you", "The sound server does not answer.", {"Close"}}));
    EXPECT_THAT(launcher.launches(), IsEmpty());
}

TEST_F(SettingsPanesTest, whenAskedAgainWhileExplaining_explainsOnceOnly) {
    explanation = "No microphone was found.";
    EXPECT_TRUE(panes().open(kMicrophonePane));
    alert.onShown = [this] { EXPECT_TRUE(panes().open(kMicrophonePane)); };
    EXPECT_TRUE(panes().open(kMicrophonePane));
    time.runPending();
    EXPECT_THAT(alert.questions(), SizeIs(1));
    EXPECT_TRUE(panes().open(kMicrophonePane));
    alert.onShown = nullptr;
    time.runPending();
    EXPECT_THAT(alert.questions(), SizeIs(2));
}

TEST_F(SettingsPanesTest, whenTheTroubleEndsBeforeTheQuestion_opensTheSettingsWithoutIt) {
    explanation = "No microphone was found.";
    EXPECT_TRUE(panes().open(kMicrophonePane));
    explanation.clear();
    time.runPending();
    EXPECT_THAT(alert.questions(), IsEmpty());
    EXPECT_THAT(launcher.launches(), ElementsAre(kSoundSettings));
}

TEST_F(SettingsPanesTest, whenTheSettingsDoNotStart_saysWhichProgramItWas) {
    explanation = "No microphone was found.";
    launcher.fail(Error{"POSIX", 2, "No such file"});
    alert.answerNext(0);
    EXPECT_TRUE(panes().open(kMicrophonePane));
    time.runPending();
    ASSERT_THAT(alert.questions(), SizeIs(2));
    EXPECT_EQ(alert.questions()[1].message, "The settings could not be opened");
    EXPECT_EQ(alert.questions()[1].informativeText, "Start gnome-control-center yourself.");
}

TEST_F(SettingsPanesTest, whenTheSettingsDoNotStartAtOnce_theCallerIsTold) {
    launcher.fail(Error{"POSIX", 2, "No such file"});
    EXPECT_FALSE(panes().open(kMicrophonePane));
}

TEST_F(SettingsPanesTest, whenAnotherPaneIsOpened_theMicrophoneIsNoSubject) {
    explanation = "No microphone was found.";
    EXPECT_TRUE(panes().open(kAccessibilityPane));
    EXPECT_TRUE(panes().open(kSpeechPane));
    time.runPending();
    EXPECT_THAT(alert.questions(), IsEmpty());
    EXPECT_THAT(launcher.launches(), ElementsAre(Launch{"gnome-control-center", {"keyboard"}}));
}

TEST_F(SettingsPanesTest, whenTheProgramEndsBeforeTheQuestion_nothingIsShown) {
    explanation = "No microphone was found.";
    EXPECT_TRUE(panes().open(kMicrophonePane));
    destroyPanes();
    time.runPending();
    EXPECT_THAT(alert.questions(), IsEmpty());
}

// --------------------------------------------------------------------------------- the workspace

TEST_F(SettingsPanesTest, throughTheWorkspace_panesOpenSettingsAndOtherAddressesGoToTheDesktop) {
    FakeWorkspace desktop;
    SettingsWorkspace workspace(desktop, panes());
    EXPECT_TRUE(workspace.openUrl(kMicrophonePane));
    EXPECT_THAT(desktop.openedUrls, IsEmpty());
    EXPECT_THAT(launcher.launches(), ElementsAre(kSoundSettings));
    EXPECT_TRUE(workspace.openUrl("https://tovik.example/"));
    EXPECT_THAT(desktop.openedUrls, ElementsAre("https://tovik.example/"));
    installed = false;
    EXPECT_FALSE(workspace.openUrl(kMicrophonePane));
    desktop.openingWorks = false;
    EXPECT_FALSE(workspace.openUrl("https://tovik.example/"));
}

TEST_F(SettingsPanesTest, throughTheWorkspace_everythingElseIsTheDesktopsOwn) {
    FakeWorkspace desktop;
    SettingsWorkspace workspace(desktop, panes());
    const RunningApplication editor{"editor", 7, "Editor", 70};
    std::vector<std::string> heard;
    const auto activations = workspace.onActivation(
        [&](const RunningApplication& application) { heard.push_back(*application.localizedName); });
    const auto spaces = workspace.onActiveSpaceChanged([&] { heard.emplace_back("space"); });

    EXPECT_EQ(workspace.frontmostApplication(), std::nullopt);
    EXPECT_FALSE(workspace.isRunning(editor));
    EXPECT_FALSE(workspace.activate(editor, kActivateAllWindows));
    desktop.bringToFront(editor);
    desktop.changeSpace();
    EXPECT_EQ(workspace.frontmostApplication(), editor);
    EXPECT_TRUE(workspace.isRunning(editor));
    EXPECT_TRUE(workspace.activate(editor, kActivateIgnoringOtherApps));
    EXPECT_EQ(workspace.currentApplication(), desktop.current);
    workspace.hideSelf();
    workspace.deactivateSelf();
    EXPECT_TRUE(workspace.openFile("/home/ada/Downloads"));

    EXPECT_THAT(heard, ElementsAre("Editor", "space"));
    EXPECT_THAT(desktop.calls, ElementsAre("activate", "activate", "hideSelf", "deactivateSelf"));
    EXPECT_EQ(desktop.activated[1].options, kActivateIgnoringOtherApps);
    EXPECT_THAT(desktop.openedFiles, ElementsAre("/home/ada/Downloads"));
}

} // namespace
} // namespace tovik::test

// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "PermissionsFixture.h"

namespace tovik::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr auto kDownload = "https://tovik.example/downloads/tovik-record/TovikRecord-1.3.6.dmg";

class InstallationTest : public PermissionsFixture {
protected:
    [[nodiscard]] Date hoursAgo(int hours) const { return time.now() - std::chrono::hours(hours); }
};

// --------------------------------------------------------------------------- installer lookup

TEST_F(InstallationTest, whenRunningFromADiskImage_opensItsFolderAndSearchesNothing) {
    authorization.setBundlePath("/Volumes/Tovik Record/Tovik Record.app");
    files.addFile("/Users/ada/Downloads/TovikRecord-1.3.6.dmg", {}, hoursAgo(1));
    EXPECT_TRUE(installation().openTovikRecordInstaller());
    EXPECT_THAT(workspace.openedFiles, ElementsAre("/Volumes/Tovik Record"));
    EXPECT_THAT(workspace.openedUrls, IsEmpty());
}

TEST_F(InstallationTest, whenRunningFromDeepInAVolume_opensTheVolumesFolder) {
    authorization.setBundlePath("/Volumes/Backup/old/apps/Tovik Record.app");
    EXPECT_TRUE(installation().openTovikRecordInstaller());
    EXPECT_THAT(workspace.openedFiles, ElementsAre("/Volumes/Backup"));
}

TEST_F(InstallationTest, whenTheProgramLiesBesideTheVolumes_opensItsOwnPath) {
    authorization.setBundlePath("/Volumes/Tovik Record.app");
    EXPECT_TRUE(installation().openTovikRecordInstaller());
    EXPECT_THAT(workspace.openedFiles, ElementsAre("/Volumes/Tovik Record.app"));
}

TEST_F(InstallationTest, whenThePathNamesNoVolume_searchesTheFolders) {
    authorization.setBundlePath("/Volumes/");
    EXPECT_TRUE(installation().openTovikRecordInstaller());
    EXPECT_THAT(workspace.openedFiles, IsEmpty());
    EXPECT_THAT(workspace.openedUrls, ElementsAre(kDownload));
}

TEST_F(InstallationTest, onLinux_opensTheStickThatTheProgramRunsFrom) {
    locations = linuxInstallLocations("/usr/bin/tovik-record");
    authorization.setBundlePath("/run/media/ada/STICK/tovik/bin");
    EXPECT_TRUE(installation().openTovikRecordInstaller());
    EXPECT_THAT(workspace.openedFiles, ElementsAre("/run/media/ada/STICK"));
}

TEST_F(InstallationTest, whenTwoInstallersLieInDownloads_opensTheNewerWhateverItsCase) {
    files.addFile("/Users/ada/Downloads/TovikRecord-1.3.5.dmg", {}, hoursAgo(48));
    files.addFile("/Users/ada/Downloads/tovikrecord-1.3.6.DMG", {}, hoursAgo(1));
    EXPECT_TRUE(installation().openTovikRecordInstaller());
    EXPECT_THAT(workspace.openedFiles, ElementsAre("/Users/ada/Downloads/tovikrecord-1.3.6.DMG"));
}

TEST_F(InstallationTest, whenTheNewestLiesOnTheDesktop_opensThatOne) {
    files.addFile("/Users/ada/Downloads/TovikRecord-1.3.6.dmg", {}, hoursAgo(2));
    files.addFile("/Users/ada/Desktop/TovikRecord-1.3.5.dmg", {}, hoursAgo(1));
    EXPECT_TRUE(installation().openTovikRecordInstaller());
    EXPECT_THAT(workspace.openedFiles, ElementsAre("/Users/ada/Desktop/TovikRecord-1.3.5.dmg"));
}

TEST_F(InstallationTest, whenInstallersAreEquallyNew_downloadsComeFirstInListingOrder) {
    files.addFile("/Users/ada/Desktop/TovikRecord-0.dmg", {}, hoursAgo(1));
    files.addFile("/Users/ada/Downloads/TovikRecord-1.dmg", {}, hoursAgo(1));
    files.addFile("/Users/ada/Downloads/TovikRecord-2.dmg", {}, hoursAgo(1));
    EXPECT_TRUE(installation().openTovikRecordInstaller());
    EXPECT_THAT(workspace.openedFiles, ElementsAre("/Users/ada/Downloads/TovikRecord-1.dmg"));
}

TEST_F(InstallationTest, whenADateCannotBeRead_thatInstallerIsTheOldest) {
    files.addFile("/Users/ada/Downloads/TovikRecord-1.dmg");
    files.addFile("/Users/ada/Desktop/TovikRecord-2.dmg", {}, hoursAgo(100000));
    EXPECT_TRUE(installation().openTovikRecordInstaller());
    EXPECT_THAT(workspace.openedFiles, ElementsAre("/Users/ada/Desktop/TovikRecord-2.dmg"));
}

TEST_F(InstallationTest, whenNoDateCanBeRead_theFirstListedIsOpened) {
    files.addFile("/Users/ada/Downloads/TovikRecord-1.dmg");
    files.addFile("/Users/ada/Desktop/TovikRecord-0.dmg");
    EXPECT_TRUE(installation().openTovikRecordInstaller());
    EXPECT_THAT(workspace.openedFiles, ElementsAre("/Users/ada/Downloads/TovikRecord-1.dmg"));
}

TEST_F(InstallationTest, whenAFolderCannotBeRead_theOtherIsSearched) {
    files.makeUnreadable("/Users/ada/Downloads");
    files.addFile("/Users/ada/Desktop/TovikRecord-2.dmg", {}, hoursAgo(1));
    EXPECT_TRUE(installation().openTovikRecordInstaller());
    EXPECT_THAT(workspace.openedFiles, ElementsAre("/Users/ada/Desktop/TovikRecord-2.dmg"));
}

struct NameRow {
    const char* label;
    const char* name;
    bool counts;
};

class InstallerName : public InstallationTest, public testing::WithParamInterface<NameRow> {};

TEST_P(InstallerName, decidesWhatIsOpened) {
    const auto path = std::string("/Users/ada/Downloads/") + GetParam().name;
    files.addFile(path, {}, hoursAgo(1));
    EXPECT_TRUE(installation().openTovikRecordInstaller());
    if (GetParam().counts) {
        EXPECT_THAT(workspace.openedFiles, ElementsAre(path));
        EXPECT_THAT(workspace.openedUrls, IsEmpty());
    } else {
        EXPECT_THAT(workspace.openedFiles, IsEmpty());
        EXPECT_THAT(workspace.openedUrls, ElementsAre(kDownload));
    }
}

INSTANTIATE_TEST_SUITE_P(Rows, InstallerName,
                         testing::Values(NameRow{"usual", "TovikRecord-1.3.6.dmg", true},
                                         NameRow{"upperCase", "TOVIKRECORD-1.DMG", true},
                                         NameRow{"nothingBetween", "tovikrecord-.dmg", true},
                                         NameRow{"secondDownload", "TovikRecord-1.3.6 (1).dmg", true},
                                         NameRow{"withoutHyphen", "TovikRecord.dmg", false},
                                         NameRow{"otherEnding", "TovikRecord-1.3.6.zip", false},
                                         NameRow{"unfinished", "TovikRecord-1.3.6.dmg.part", false},
                                         NameRow{"otherBeginning", "MyTovikRecord-1.3.6.dmg", false},
                                         NameRow{"hidden", ".TovikRecord-1.3.6.dmg", false}),
                         [](const auto& row) { return std::string(row.param.label); });

TEST_F(InstallationTest, whenNothingIsAtHand_opensTheDownloadAddress) {
    EXPECT_TRUE(installation().openTovikRecordInstaller());
    EXPECT_THAT(workspace.openedUrls, ElementsAre(kDownload));
}

TEST_F(InstallationTest, whenThereIsNoDownloadAddressEither_saysSo) {
    locations.installerDownload.clear();
    EXPECT_FALSE(installation().openTovikRecordInstaller());
    EXPECT_THAT(workspace.openedUrls, IsEmpty());
}

TEST_F(InstallationTest, whenTheDesktopOpensNothing_theLookupStillCountsAsDone) {
    workspace.openingWorks = false;
    EXPECT_TRUE(installation().openTovikRecordInstaller());
}

// ---------------------------------------------------------------------------------- the alert

TEST_F(InstallationTest, whenGuiding_explainsWhereTheProgramBelongs) {
    installation().showAccessibilityInstallGuidance();
    EXPECT_THAT(alert.questions(),
                ElementsAre(FakeAlert::Question{
                    "Finish installing Tovik Record",
                    "macOS grants Accessibility to the exact app location. Open the installer, drag Tovik "
                    "Record into Applications, then quit this copy and reopen Tovik Record from Applications "
                    "before granting Accessibility.",
                    {"Open Installer", "Quit & Reopen", "Not Now"}}));
}

TEST_F(InstallationTest, whenTheUserOpensTheInstaller_opensItTellsAndRefreshesASecondLater) {
    alert.answerNext(0);
    installation().showAccessibilityInstallGuidance();
    EXPECT_THAT(workspace.openedUrls, ElementsAre(kDownload));
    EXPECT_THAT(window.calls(), ElementsAre("toast: Drag into Applications"));
    time.advance(Seconds(0.9));
    EXPECT_EQ(window.permissionRefreshes(), 0);
    time.advance(Seconds(0.1));
    EXPECT_EQ(window.permissionRefreshes(), 1);
}

TEST_F(InstallationTest, whenThereIsNoInstallerToOpen_saysSoAndRefreshesAllTheSame) {
    locations.installerDownload.clear();
    alert.answerNext(0);
    installation().showAccessibilityInstallGuidance();
    EXPECT_THAT(window.toasts(), ElementsAre("Installer unavailable"));
    time.advance(Seconds(1));
    EXPECT_EQ(window.permissionRefreshes(), 1);
}

TEST_F(InstallationTest, whenTheProgramEndsBeforeTheRefresh_nothingHappens) {
    alert.answerNext(0);
    installation().showAccessibilityInstallGuidance();
    destroyInstallation();
    time.advance(Seconds(2));
    EXPECT_EQ(window.permissionRefreshes(), 0);
}

TEST_F(InstallationTest, whenTheUserQuitsAndReopens_doesSo) {
    files.addFile("/Applications/Tovik Record.app");
    alert.answerNext(1);
    installation().showAccessibilityInstallGuidance();
    EXPECT_THAT(happened, ElementsAre("terminate"));
    EXPECT_THAT(window.calls(), IsEmpty());
}

TEST_F(InstallationTest, whenTheUserPutsItOff_saysWhatIsStillNeeded) {
    for (const int answer : {2, -1, 17}) {
        window.forgetCalls();
        alert.answerNext(answer);
        installation().showAccessibilityInstallGuidance();
        EXPECT_THAT(window.calls(), ElementsAre("toast: Install needed")) << answer;
    }
    EXPECT_THAT(happened, IsEmpty());
    EXPECT_EQ(time.pendingCount(), 0U);
}

// -------------------------------------------------------------------------------- the relaunch

TEST_F(InstallationTest, whenReopening_endsAtOnceAndStartsTheInstalledCopyAQuarterSecondLater) {
    files.addFile("/Applications/Tovik Record.app");
    installation().quitAndReopenInstalledApp();
    EXPECT_THAT(happened, ElementsAre("terminate"));
    EXPECT_THAT(launcher.launches(), IsEmpty());
    time.advance(Seconds(0.24));
    EXPECT_THAT(launcher.launches(), IsEmpty());
    time.advance(Seconds(0.01));
    EXPECT_THAT(launcher.launches(), ElementsAre(FakeProcessLauncher::Launch{
                                         "/usr/bin/open", {"-n", "/Applications/Tovik Record.app"}}));
    EXPECT_THAT(window.calls(), IsEmpty());
}

TEST_F(InstallationTest, whenTheEventLoopEndsBeforeTheDelay_theInstalledCopyStartsAtTheEnd) {
    files.addFile("/Applications/Tovik Record.app");
    installation().quitAndReopenInstalledApp();
    destroyInstallation();
    EXPECT_EQ(launcher.launches().size(), 1U);
    time.advance(Seconds(1));
    EXPECT_EQ(launcher.launches().size(), 1U);
}

TEST_F(InstallationTest, whenTheDelayHasPassed_theEndDoesNotStartASecondCopy) {
    files.addFile("/Applications/Tovik Record.app");
    installation().quitAndReopenInstalledApp();
    time.advance(Seconds(1));
    destroyInstallation();
    EXPECT_EQ(launcher.launches().size(), 1U);
}

TEST_F(InstallationTest, whenNobodyReopens_theEndStartsNothing) {
    installation();
    destroyInstallation();
    EXPECT_THAT(launcher.launches(), IsEmpty());
}

TEST_F(InstallationTest, whenTheRelaunchFails_nothingIsSaid) {
    files.addFile("/Applications/Tovik Record.app");
    launcher.fail(Error{"POSIX", 2, "No such file"});
    installation().quitAndReopenInstalledApp();
    time.advance(Seconds(1));
    EXPECT_EQ(launcher.launches().size(), 1U);
    EXPECT_THAT(window.calls(), IsEmpty());
    EXPECT_THAT(log.printed(), IsEmpty());
}

TEST_F(InstallationTest, whenNothingIsInstalled_saysSoOpensTheInstallerAndStays) {
    installation().quitAndReopenInstalledApp();
    EXPECT_THAT(window.calls(), ElementsAre("toast: Install Tovik Record first"));
    EXPECT_THAT(workspace.openedUrls, ElementsAre(kDownload));
    EXPECT_THAT(happened, IsEmpty());
    time.advance(Seconds(1));
    EXPECT_THAT(launcher.launches(), IsEmpty());
}

TEST_F(InstallationTest, onLinux_startsTheInstalledProgram) {
    locations = linuxInstallLocations("/usr/bin/tovik-record");
    files.addFile("/usr/bin/tovik-record");
    installation().quitAndReopenInstalledApp();
    time.advance(Seconds(1));
    EXPECT_THAT(launcher.launches(), ElementsAre(FakeProcessLauncher::Launch{"/usr/bin/tovik-record", {}}));
}

// ------------------------------------------------------------------- where a program belongs

struct LocationRow {
    const char* name;
    const char* path;
    bool uninstalled;
};

class MacLocation : public testing::TestWithParam<LocationRow> {};

TEST_P(MacLocation, isInstalledOrNot) {
    EXPECT_EQ(isUninstalledLocation(macInstallLocations(), GetParam().path, "/Users/ada"),
              GetParam().uninstalled);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, MacLocation,
    testing::Values(
        LocationRow{"applications", "/Applications/Tovik Record.app", false},
        LocationRow{"ownApplications", "/Users/ada/Applications/Tovik Record.app", false},
        LocationRow{"documents", "/Users/ada/Documents/Tovik Record.app", false},
        LocationRow{"home", "/Users/ada/Tovik Record.app", false},
        LocationRow{"desktop", "/Users/ada/Desktop/Tovik Record.app", true},
        LocationRow{"belowTheDesktop", "/Users/ada/Desktop/new/Tovik Record.app", true},
        LocationRow{"downloads", "/Users/ada/Downloads/Tovik Record.app", true},
        LocationRow{"somebodyElsesDownloads", "/Users/bob/Downloads/Tovik Record.app", false},
        LocationRow{"lowerCaseDesktop", "/Users/ada/desktop/Tovik Record.app", false},
        LocationRow{"folderThatBeginsLikeDownloads", "/Users/ada/Downloads2/Tovik Record.app", false},
        LocationRow{"theDesktopItself", "/Users/ada/Desktop", false},
        LocationRow{"diskImage", "/Volumes/Tovik Record/Tovik Record.app", true},
        LocationRow{"externalDisk", "/Volumes/Backup/Applications/Tovik Record.app", true},
        LocationRow{"lowerCaseVolumes", "/volumes/Backup/Tovik Record.app", false},
        LocationRow{"volumesFurtherDown", "/Users/ada/Volumes/Tovik Record.app", false},
        LocationRow{"translocated", "/private/var/folders/x/AppTranslocation/1/d/Tovik Record.app", true},
        LocationRow{"nameThatOnlyContainsTheWord", "/Users/ada/AppTranslocations/Tovik Record.app", false},
        LocationRow{"emptyPath", "", false}),
    [](const auto& row) { return std::string(row.param.name); });

class LinuxLocation : public testing::TestWithParam<LocationRow> {};

TEST_P(LinuxLocation, isInstalledOrNot) {
    EXPECT_EQ(
        isUninstalledLocation(linuxInstallLocations("/usr/bin/tovik-record"), GetParam().path, "/home/ada"),
        GetParam().uninstalled);
}

INSTANTIATE_TEST_SUITE_P(Rows, LinuxLocation,
                         testing::Values(LocationRow{"installedPrefix", "/usr/bin", false},
                                         LocationRow{"localPrefix", "/usr/local/bin", false},
                                         LocationRow{"opt", "/opt/tovik-record/bin", false},
                                         LocationRow{"ownBin", "/home/ada/.local/bin", false},
                                         LocationRow{"buildFolder",
                                                     "/home/ada/src/tovik-record/build/release/bin", false},
                                         LocationRow{"stickOfDebian", "/media/ada/STICK", true},
                                         LocationRow{"stickOfFedora", "/run/media/ada/STICK/tovik", true},
                                         LocationRow{"downloads", "/home/ada/Downloads/tovik-record", true},
                                         LocationRow{"desktop", "/home/ada/Desktop/tovik-record", true},
                                         LocationRow{"mediaFurtherDown", "/srv/media/tovik-record", false},
                                         LocationRow{"emptyPath", "", false}),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(LinuxLocations, whenReopened_startTheInstalledProgramItself) {
    const auto locations = linuxInstallLocations("/usr/bin/tovik-record");
    EXPECT_EQ(locations.installedApplication, "/usr/bin/tovik-record");
    EXPECT_EQ(locations.relaunchExecutable, "/usr/bin/tovik-record");
    EXPECT_TRUE(locations.relaunchArguments.empty());
}

} // namespace
} // namespace tovik::test

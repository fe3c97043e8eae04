// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Permissions/InstallLocations.h"

#include <gtest/gtest.h>

#include <string>

namespace tovik {
namespace {

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
} // namespace tovik

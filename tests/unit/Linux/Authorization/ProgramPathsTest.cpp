// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Linux/Desktop/ProgramPaths.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

namespace tovik {
namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::IsEmpty;

TEST(RunningExecutable, isThisProgramsFile) {
    const auto path = runningExecutable();
    EXPECT_THAT(path, EndsWith("/linux_authorization_test"));
    EXPECT_TRUE(std::filesystem::is_regular_file(path));
}

TEST(SearchPath, whenAFolderHoldsTheProgram_findsIt) {
    EXPECT_TRUE(isInSearchPath("sh", "/nonexistent:/bin"));
    EXPECT_TRUE(isInSearchPath("sh", "/usr/bin:/bin"));
}

TEST(SearchPath, whenNoFolderHoldsIt_doesNot) {
    EXPECT_FALSE(isInSearchPath("no-such-program-of-any-desktop", "/usr/bin:/bin"));
    EXPECT_FALSE(isInSearchPath("sh", "/nonexistent"));
    EXPECT_FALSE(isInSearchPath("sh", ""));
    EXPECT_FALSE(isInSearchPath("sh", ":::"));
}

TEST(SearchPath, whenTheNameIsAFolderOrNoProgram_doesNotCount) {
    EXPECT_FALSE(isInSearchPath("bin", "/usr"));
    EXPECT_FALSE(isInSearchPath("passwd", "/etc"));
}

TEST(DesktopNames, standBetweenColons) {
    EXPECT_THAT(desktopNames(""), IsEmpty());
    EXPECT_THAT(desktopNames("KDE"), ElementsAre("KDE"));
    EXPECT_THAT(desktopNames("ubuntu:GNOME"), ElementsAre("ubuntu", "GNOME"));
    EXPECT_THAT(desktopNames(":XFCE:"), ElementsAre("XFCE"));
}

} // namespace
} // namespace tovik

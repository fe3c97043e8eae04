// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Linux/Storage/XdgFolders.h"

#include <gtest/gtest.h>
#include <pwd.h>
#include <unistd.h>

#include <map>

namespace tovik::test {
namespace {

XdgFolders foldersIn(const std::map<std::string, std::string>& variables) {
    return XdgFolders([&](const char* name) {
        const auto found = variables.find(name);
        return found == variables.end() ? std::nullopt : std::optional(found->second);
    });
}

TEST(XdgFolders, whenOnlyHomeIsSet_everythingLiesInTheUsualPlacesBelowIt) {
    const auto folders = foldersIn({{"HOME", "/home/ada"}});
    EXPECT_EQ(folders.home(), "/home/ada");
    EXPECT_EQ(folders.applicationSupport(), "/home/ada/.local/share");
    EXPECT_EQ(folders.defaultsFile(), "/home/ada/.config/tovik-record/defaults.json");
    EXPECT_EQ(folders.debugLogFile(), "/home/ada/.local/state/tovik-record/tovik_record_debug.log");
    EXPECT_EQ(folders.runtime(), "/tmp/tovik-record-" + std::to_string(::getuid()));
}

TEST(XdgFolders, whenTheVariablesAreSet_theyHold) {
    const auto folders = foldersIn({{"HOME", "/home/ada"},
                                    {"XDG_CONFIG_HOME", "/c"},
                                    {"XDG_DATA_HOME", "/d/"},
                                    {"XDG_STATE_HOME", "/s"},
                                    {"XDG_RUNTIME_DIR", "/r"}});
    EXPECT_EQ(folders.defaultsFile(), "/c/tovik-record/defaults.json");
    EXPECT_EQ(folders.applicationSupport(), "/d");
    EXPECT_EQ(folders.debugLogFile(), "/s/tovik-record/tovik_record_debug.log");
    EXPECT_EQ(folders.runtime(), "/r");
}

TEST(XdgFolders, whenAVariableIsEmptyOrRelative_itCountsAsMissing) {
    for (const std::string value : {"", "relative/folder", "~/config"}) {
        const auto folders =
            foldersIn({{"HOME", "/home/ada"}, {"XDG_CONFIG_HOME", value}, {"XDG_DATA_HOME", value}});
        EXPECT_EQ(folders.defaultsFile(), "/home/ada/.config/tovik-record/defaults.json") << value;
        EXPECT_EQ(folders.applicationSupport(), "/home/ada/.local/share") << value;
    }
}

TEST(XdgFolders, whenHomeIsMissing_theAccountTells) {
    const auto* const account = ::getpwuid(::getuid());
    ASSERT_NE(account, nullptr);
    EXPECT_EQ(foldersIn({}).home(), account->pw_dir);
    EXPECT_EQ(foldersIn({{"HOME", "relative"}}).home(), account->pw_dir);
}

TEST(XdgFolders, whenHomeIsTheRoot_noPathBeginsWithTwoSlashes) {
    EXPECT_EQ(foldersIn({{"HOME", "/"}}).defaultsFile(), "/.config/tovik-record/defaults.json");
}

} // namespace
} // namespace tovik::test

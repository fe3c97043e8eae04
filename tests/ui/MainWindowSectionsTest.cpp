// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/Window/MainWindowSections.h"

#include <gmock/gmock.h>

#include <iterator>
#include <string>
#include <vector>

namespace tovik {
namespace {

using testing::ElementsAre;

std::vector<std::string> titles(bool pending) {
    std::vector<std::string> result;
    for (const SectionHeader& section : mainWindowSections(pending)) {
        result.push_back(section.title);
    }
    return result;
}

TEST(MainWindowSections, whenAllIsGranted_permissionsComeLast) {
    EXPECT_THAT(titles(false),
                ElementsAre("Corrections", "Cleanup", "Translation", "Transcript History", "Permissions"));
}

TEST(MainWindowSections, whenSomethingIsPending_permissionsComeFirst) {
    EXPECT_THAT(titles(true),
                ElementsAre("Permissions", "Corrections", "Cleanup", "Translation", "Transcript History"));
}

TEST(MainWindowSections, sayWhatTheyAreFor) {
    const auto sections = mainWindowSections(true);
    struct Row {
        const char* subtitle;
        const char* symbol;
    };
    const Row rows[] = {{"Check access and grant what is missing", "checkmark.shield.fill"},
                        {"Review and fix transcript errors", "sparkles"},
                        {"Remove filler words, pauses, and more", "paintbrush.fill"},
                        {"Translate your transcript", "globe"},
                        {"View and manage past transcripts", "doc.text"}};
    ASSERT_EQ(sections.size(), std::size(rows));
    for (std::size_t index = 0; index < sections.size(); ++index) {
        EXPECT_EQ(sections[index].subtitle, rows[index].subtitle);
        EXPECT_EQ(sections[index].symbolName, rows[index].symbol);
    }
}

TEST(MainWindowSections, haveTheirColours) {
    const auto sections = mainWindowSections(true);
    EXPECT_EQ(sections[0].symbolColor, (Rgba{0.37, 0.33, 0.94}));
    EXPECT_EQ(sections[2].symbolColor, (Rgba{0.15, 0.66, 0.28}));
}

} // namespace
} // namespace tovik

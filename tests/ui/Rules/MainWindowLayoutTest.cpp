// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/Window/MainWindowLayout.h"

#include <gmock/gmock.h>

#include <iterator>
#include <string>
#include <vector>

namespace tovik {
namespace {

using testing::ElementsAre;

TEST(FrameWithLockedWidth, whenLocked_keepsTheCentreAndTheRest) {
    EXPECT_EQ(frameWithLockedWidth({100, 50, 900, 700}, 500), (Rect{300, 50, 500, 700}));
    EXPECT_EQ(frameWithLockedWidth({100, 50, 300, 700}, 500), (Rect{0, 50, 500, 700}));
}

TEST(FrameWithLockedWidth, whenNotLocked_changesNothing) {
    EXPECT_EQ(frameWithLockedWidth({100, 50, 900, 700}, {}), (Rect{100, 50, 900, 700}));
}

TEST(DefaultMainWindowFrame, isCentredInTheVisiblePart) {
    EXPECT_EQ(defaultMainWindowFrame({0, 30, 1920, 1050}), (Rect{710, 215, 500, 680}));
}

TEST(FittedMainWindowFrame, addsWhatLiesAboveAndBelowTheStackAndKeepsTheTopEdge) {
    const Rect current{200, 100, 500, 680};
    EXPECT_EQ(fittedMainWindowFrame(current, 520), (Rect{200, 100, 500, 616}));
    EXPECT_EQ(fittedMainWindowFrame(current, 1000), (Rect{200, 100, 500, 760}));
    EXPECT_EQ(fittedMainWindowFrame(current, 100), (Rect{200, 100, 500, 560}));
}

TEST(FittedMainWindowFrame, keepsTheHorizontalCentre) {
    EXPECT_EQ(fittedMainWindowFrame({200, 100, 700, 680}, 520), (Rect{300, 100, 500, 616}));
}

TEST(HeaderFadeAlpha, fadesOutWhileScrollingDown) {
    struct Row {
        double offset;
        double alpha;
    };
    for (const Row& row : {Row{-20, 1}, Row{0, 1}, Row{10, 1}, Row{44, 0.5}, Row{78, 0}, Row{500, 0}}) {
        EXPECT_DOUBLE_EQ(headerFadeAlpha(row.offset), row.alpha) << row.offset;
    }
}

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
    EXPECT_EQ(sections[0].symbolColor, theme::rgb(0.37, 0.33, 0.94));
    EXPECT_EQ(sections[2].symbolColor, theme::rgb(0.15, 0.66, 0.28));
}

} // namespace
} // namespace tovik

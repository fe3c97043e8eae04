// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Session/PushToTalk.h"
#include "support/FakeScreens.h"
#include "support/FakeUserInterface.h"
#include "support/ManualTime.h"

#include <gtest/gtest.h>

namespace tovik {
namespace {

class HandsFreeHintsTest : public testing::Test {
protected:
    [[nodiscard]] std::size_t panelsOnScreen() const {
        return static_cast<std::size_t>(std::count_if(panels.panels.begin(), panels.panels.end(),
                                                      [](const auto& p) { return p->isOnScreen; }));
    }

    test::ManualTime time;
    test::FakeScreens screens;
    test::FakeHintPanels panels;
    test::FakeRecordingOverlay overlay;
    HandsFreeHints hints{time, screens, panels, overlay};
};

TEST_F(HandsFreeHintsTest, tip_saysHowToGoHandsFreeNearTheBottomOfTheMainScreen) {
    screens.setScreens({{Rect{0, 0, 1920, 1080}, Rect{0, 30, 1920, 1000}}});
    hints.showLockTip();
    ASSERT_EQ(panels.panels.size(), 1u);
    EXPECT_EQ(panels.panels[0]->description,
              (HintDescription{"Fn+Shift for hands-free · release Fn to stop", Rect{818, 1000, 284, 28}, 10.5,
                               FontWeight::medium, 0.82}));
    EXPECT_EQ(panels.panels[0]->fadeIns, std::vector{Seconds(0.2)});
}

TEST_F(HandsFreeHintsTest, confirmation_saysHowToFinishNearTheBottomOfTheMainScreen) {
    screens.setScreens({{Rect{0, 0, 1920, 1080}, Rect{0, 30, 1920, 1000}}});
    hints.showLockConfirmation();
    ASSERT_EQ(panels.panels.size(), 1u);
    EXPECT_EQ(panels.panels[0]->description,
              (HintDescription{"Hands-free · Fn+Shift to finish", Rect{852, 1000, 216, 28}, 12,
                               FontWeight::semibold, 0.86}));
    EXPECT_EQ(panels.panels[0]->fadeIns, std::vector{Seconds(0.15)});
    EXPECT_EQ(overlay.calls, std::vector<std::string>{"tovik"});
}

TEST_F(HandsFreeHintsTest, theNoticeOfATextThatWasNotPasted_saysWhereItIsForFiveSeconds) {
    screens.setScreens({{Rect{0, 0, 1920, 1080}, Rect{0, 30, 1920, 1000}}});
    hints.showNotPasted(true);
    ASSERT_EQ(panels.panels.size(), 1u);
    EXPECT_EQ(panels.panels[0]->description,
              (HintDescription{"Not pasted · the text is on the clipboard and in the history",
                               Rect{750, 1000, 420, 28}, 12, FontWeight::semibold, 0.86}));
    EXPECT_TRUE(overlay.calls.empty());
    time.advance(Seconds(4.99));
    EXPECT_TRUE(panels.panels[0]->fadeOuts.empty());
    time.advance(Seconds(0.01));
    EXPECT_EQ(panels.panels[0]->fadeOuts, std::vector{Seconds(0.15)});
}

TEST_F(HandsFreeHintsTest, theNoticeOfATextThatIsNotOnTheClipboard_namesTheHistoryAlone) {
    screens.setScreens({{Rect{0, 0, 1920, 1080}, Rect{0, 30, 1920, 1000}}});
    hints.showNotPasted(false);
    ASSERT_EQ(panels.panels.size(), 1u);
    EXPECT_EQ(panels.panels[0]->description,
              (HintDescription{"Not pasted · the text is in the history", Rect{815, 1000, 290, 28}, 12,
                               FontWeight::semibold, 0.86}));
}

TEST_F(HandsFreeHintsTest, whenTheMainScreenIsNotTheLeftmost_panelsStandOnIt) {
    screens.setScreens({{Rect{1000, 200, 800, 600}, Rect{1000, 200, 800, 600}}});
    hints.showLockTip();
    EXPECT_EQ(panels.panels[0]->description.frame, (Rect{1258, 770, 284, 28}));
}

TEST_F(HandsFreeHintsTest, whenThereIsNoScreen_panelsStandAtTheOrigin) {
    screens.setScreens({});
    hints.showLockTip();
    hints.showLockConfirmation();
    EXPECT_EQ(panels.panels[0]->description.frame, (Rect{0, 0, 284, 28}));
    EXPECT_EQ(panels.panels[1]->description.frame, (Rect{0, 0, 216, 28}));
}

TEST_F(HandsFreeHintsTest, whenTheTipIsShownAlready_noSecondOneAppears) {
    hints.showLockTip();
    hints.showLockTip();
    EXPECT_EQ(panels.panels.size(), 1u);
}

TEST_F(HandsFreeHintsTest, whenTheTipFadesOut_itGoesAtTheEndOfTheFadeAndNoOtherAppearsBefore) {
    hints.showLockTip();
    hints.hideLockTip();
    EXPECT_EQ(panels.panels[0]->fadeOuts, std::vector{Seconds(0.15)});
    EXPECT_EQ(panelsOnScreen(), 1u);

    hints.showLockTip();
    EXPECT_EQ(panels.panels.size(), 1u);

    test::FakeHintPanels::finishFadeOut(*panels.panels[0]);
    EXPECT_EQ(panelsOnScreen(), 0u);
    hints.showLockTip();
    EXPECT_EQ(panels.panels.size(), 2u);
}

TEST_F(HandsFreeHintsTest, whenNoTipIsShown_hidingDoesNothing) {
    hints.hideLockTip();
    EXPECT_TRUE(panels.panels.empty());
}

TEST_F(HandsFreeHintsTest, confirmation_fadesOutAfter1Point6Seconds) {
    hints.showLockConfirmation();
    time.advance(Seconds(1.59));
    EXPECT_TRUE(panels.panels[0]->fadeOuts.empty());
    time.advance(Seconds(0.01));
    EXPECT_EQ(panels.panels[0]->fadeOuts, std::vector{Seconds(0.15)});
    EXPECT_EQ(panelsOnScreen(), 1u);
    test::FakeHintPanels::finishFadeOut(*panels.panels[0]);
    EXPECT_EQ(panelsOnScreen(), 0u);
}

TEST_F(HandsFreeHintsTest, confirmationsInQuickSuccession_eachComeAndGoOnTheirOwn) {
    hints.showLockConfirmation();
    time.advance(Seconds(1));
    hints.showLockConfirmation();
    time.advance(Seconds(0.6));
    EXPECT_EQ(panels.panels[0]->fadeOuts.size(), 1u);
    EXPECT_TRUE(panels.panels[1]->fadeOuts.empty());
    test::FakeHintPanels::finishFadeOut(*panels.panels[0]);
    EXPECT_EQ(panelsOnScreen(), 1u);
    time.advance(Seconds(1));
    test::FakeHintPanels::finishFadeOut(*panels.panels[1]);
    EXPECT_EQ(panelsOnScreen(), 0u);
}

TEST_F(HandsFreeHintsTest, confirmation_doesNotTouchTheTip) {
    hints.showLockTip();
    hints.showLockConfirmation();
    time.advance(Seconds(1.6));
    EXPECT_TRUE(panels.panels[0]->fadeOuts.empty());
    EXPECT_TRUE(panels.panels[0]->isOnScreen);
}

TEST(HandsFreeHintsLifetime, whenTheOwnerIsGone_panelsAreTooAndNothingRunsLater) {
    test::ManualTime time;
    const test::FakeScreens screens;
    test::FakeHintPanels panels;
    test::FakeRecordingOverlay overlay;
    {
        HandsFreeHints hints(time, screens, panels, overlay);
        hints.showLockTip();
        hints.showLockConfirmation();
    }
    EXPECT_FALSE(panels.panels[0]->isOnScreen);
    EXPECT_FALSE(panels.panels[1]->isOnScreen);
    time.advance(Seconds(2));
    EXPECT_TRUE(panels.panels[1]->fadeOuts.empty());
}

} // namespace
} // namespace tovik

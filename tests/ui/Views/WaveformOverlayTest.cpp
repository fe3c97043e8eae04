// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "WaveformOverlay.h"

#include "UserInterface/Overlay/FloatingPanel.h"
#include "support/EventLoop.h"
#include "support/FakeScreens.h"
#include "support/FakeWorkspace.h"
#include "support/ManualTime.h"
#include "support/ProcessorTime.h"
#include "ui/Views/FakeCompositing.h"

#include <QImage>

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <string>
#include <vector>

namespace tovik {
namespace {

struct WaveformOverlayTest : testing::Test {
    test::ManualTime time;
    test::FakeScreens screens;
    test::FakeWorkspace workspace;
    test::FakeCompositing compositing;
    WaveformOverlay overlay{time, time, screens, workspace, compositing};

    void showFully() {
        overlay.show(time.now());
        time.advance(Seconds{0.2});
    }
    [[nodiscard]] QString label() const { return overlay.elapsedLabel()->text(); }
};

TEST_F(WaveformOverlayTest, beforeTheFirstShow_thereIsNothing) {
    EXPECT_EQ(overlay.window(), nullptr);
    overlay.hide();
    overlay.tovik();
    overlay.setLevel(1);
    EXPECT_EQ(time.pendingCount(), 0U);
}

TEST_F(WaveformOverlayTest, whenShown_isAPillAboveThePanelAtTheBottomOfTheScreen) {
    screens.setScreens({{{0, 0, 1920, 1080}, {0, 0, 1920, 1040}}});
    overlay.show(time.now());
    EXPECT_TRUE(overlay.window()->isVisible());
    EXPECT_EQ(overlay.window()->panelFrame(), (Rect{792, 972, 336, 38}));
}

TEST_F(WaveformOverlayTest, whenShown_fadesInWithinItsTime) {
    overlay.show(time.now());
    EXPECT_EQ(overlay.window()->alpha(), 0);
    time.advance(Seconds{0.09});
    EXPECT_GT(overlay.window()->alpha(), 0.5);
    EXPECT_LT(overlay.window()->alpha(), 1);
    time.advance(Seconds{0.09});
    EXPECT_EQ(overlay.window()->alpha(), 1);
}

TEST_F(WaveformOverlayTest, neverTakesFocusOrClicksAndIgnoresTheWindowManager) {
    overlay.show(time.now());
    const auto flags = overlay.window()->windowFlags();
    for (const auto flag : {Qt::FramelessWindowHint, Qt::WindowStaysOnTopHint, Qt::WindowDoesNotAcceptFocus,
                            Qt::WindowTransparentForInput, Qt::X11BypassWindowManagerHint}) {
        EXPECT_TRUE(flags & flag) << flag;
    }
    EXPECT_TRUE(overlay.window()->testAttribute(Qt::WA_ShowWithoutActivating));
    EXPECT_TRUE(overlay.window()->testAttribute(Qt::WA_TranslucentBackground));
    EXPECT_FALSE(overlay.window()->isActiveWindow());
}

TEST_F(WaveformOverlayTest, itsPartsStandWhereTheyBelong) {
    overlay.show(time.now());
    const QRect label = overlay.elapsedLabel()->geometry();
    const QRect bars = overlay.waveformView()->geometry();
    EXPECT_EQ(label.right() + 1, 336 - 16);
    EXPECT_GE(label.width(), 42);
    EXPECT_NEAR(label.center().y(), 18.5, 1);
    EXPECT_EQ(bars.left(), 18);
    EXPECT_EQ(bars.right() + 1, label.left() - 12);
    EXPECT_EQ(bars.top(), 6);
    EXPECT_EQ(bars.bottom() + 1, 38 - 6);
    EXPECT_EQ(overlay.elapsedLabel()->accessibleName(), QStringLiteral("Elapsed recording time"));
    EXPECT_EQ(overlay.elapsedLabel()->font().pixelSize(), 11);
    EXPECT_EQ(overlay.elapsedLabel()->font().weight(), QFont::Medium);
}

TEST_F(WaveformOverlayTest, itsGroundIsNearlyBlackWithRoundCorners) {
    overlay.show(time.now());
    QImage image(overlay.window()->size(), QImage::Format_ARGB32);
    image.fill(Qt::transparent);
    overlay.window()->content().render(&image, QPoint(), QRegion(), QWidget::RenderFlags());
    const QColor ground = image.pixelColor(8, 19);
    EXPECT_NEAR(ground.red(), 5, 1);
    EXPECT_NEAR(ground.alphaF(), 0.98, 0.005);
    EXPECT_EQ(image.pixelColor(0, 0).alpha(), 0);
    EXPECT_EQ(image.pixelColor(335, 37).alpha(), 0);
    // The corner's circle leaves 13 * (1 - 1/sqrt 2) = 3.8 on the diagonal free.
    EXPECT_EQ(image.pixelColor(2, 2).alpha(), 0);
    EXPECT_GT(image.pixelColor(5, 5).alpha(), 240);
}

TEST_F(WaveformOverlayTest, theLabelCountsWholeSeconds) {
    overlay.show(time.now());
    EXPECT_EQ(label(), QStringLiteral("0:00"));
    time.advance(Seconds{0.999});
    EXPECT_EQ(label(), QStringLiteral("0:00"));
    time.advance(Seconds{0.001});
    EXPECT_EQ(label(), QStringLiteral("0:01"));
    time.advance(Seconds{58});
    EXPECT_EQ(label(), QStringLiteral("0:59"));
    time.advance(Seconds{3541});
    EXPECT_EQ(label(), QStringLiteral("1:00:00"));
}

TEST_F(WaveformOverlayTest, whenAnHourHasPassed_theBarsMakeRoomForTheLabel) {
    overlay.show(time.now() - std::chrono::hours(11));
    const QRect label = overlay.elapsedLabel()->geometry();
    EXPECT_EQ(overlay.elapsedLabel()->text(), QStringLiteral("11:00:00"));
    EXPECT_GE(label.width(), overlay.elapsedLabel()->sizeHint().width());
    EXPECT_EQ(label.right() + 1, 336 - 16);
    EXPECT_EQ(overlay.waveformView()->geometry().right() + 1, label.left() - 12);
}

TEST_F(WaveformOverlayTest, whenAStartLiesInTheFuture_showsZero) {
    overlay.show(time.now() + std::chrono::seconds(90));
    EXPECT_EQ(label(), QStringLiteral("0:00"));
}

TEST_F(WaveformOverlayTest, whenShownAgain_keepsItsWindowAndTakesTheNewTimeWithoutAFade) {
    showFully();
    const auto* window = overlay.window();
    time.advance(Seconds{5});
    overlay.show(time.now());
    EXPECT_EQ(overlay.window(), window);
    EXPECT_EQ(overlay.window()->alpha(), 1);
    EXPECT_EQ(label(), QStringLiteral("0:00"));
}

TEST_F(WaveformOverlayTest, whenHidden_fadesOutAndIsGoneWithAllItsTimers) {
    showFully();
    overlay.hide();
    time.advance(Seconds{0.08});
    ASSERT_NE(overlay.window(), nullptr);
    EXPECT_LT(overlay.window()->alpha(), 0.5);
    time.advance(Seconds{0.08});
    EXPECT_EQ(overlay.window(), nullptr);
    EXPECT_EQ(overlay.waveformView(), nullptr);
    EXPECT_EQ(overlay.elapsedLabel(), nullptr);
    EXPECT_EQ(time.pendingCount(), 0U);
}

TEST_F(WaveformOverlayTest, whenHiddenWhileFadingIn_goesOnFromThere) {
    overlay.show(time.now());
    time.advance(Seconds{0.05});
    const double reached = overlay.window()->alpha();
    overlay.hide();
    time.advance(Seconds{0.02});
    EXPECT_LT(overlay.window()->alpha(), reached);
    time.advance(Seconds{0.2});
    EXPECT_EQ(overlay.window(), nullptr);
}

TEST_F(WaveformOverlayTest, whenShownWhileFadingOut_goesAllTheSameAndLeavesNothingRunning) {
    showFully();
    overlay.hide();
    time.advance(Seconds{0.05});
    overlay.show(time.now());
    EXPECT_EQ(label(), QStringLiteral("0:00"));
    time.advance(Seconds{0.2});
    EXPECT_EQ(overlay.window(), nullptr);
    EXPECT_EQ(time.pendingCount(), 0U);

    overlay.show(time.now());
    EXPECT_NE(overlay.window(), nullptr);
}

TEST_F(WaveformOverlayTest, whenThePointerGoesToAnotherScreen_glidesThere) {
    screens.setScreens(
        {{{0, 0, 1920, 1080}, {0, 0, 1920, 1080}}, {{1920, 0, 1280, 800}, {1920, 0, 1280, 760}}});
    screens.setPointerLocation({100, 100});
    showFully();
    screens.setPointerLocation({2000, 100});
    // Seen at 0.35 s, there 0.12 s later.
    time.advance(Seconds{0.21});
    const double x = overlay.window()->panelFrame().x;
    EXPECT_GT(x, 792);
    EXPECT_LT(x, 2392);
    time.advance(Seconds{0.08});
    EXPECT_EQ(overlay.window()->panelFrame(), (Rect{2392, 692, 336, 38}));
}

TEST_F(WaveformOverlayTest, whenTheDesktopChanges_movesWithoutAnimation) {
    showFully();
    screens.setScreens({{{0, 0, 1280, 800}, {0, 0, 1280, 760}}});
    workspace.changeSpace();
    EXPECT_EQ(overlay.window()->panelFrame(), (Rect{472, 692, 336, 38}));
}

TEST_F(WaveformOverlayTest, whenHidden_noLongerFollowsTheDesktop) {
    showFully();
    overlay.hide();
    const Rect before = overlay.window()->panelFrame();
    screens.setScreens({{{0, 0, 1280, 800}, {0, 0, 1280, 760}}});
    workspace.changeSpace();
    EXPECT_EQ(overlay.window()->panelFrame(), before);
}

TEST_F(WaveformOverlayTest, whenThePlaceDiffersByAPoint_staysWhereItIs) {
    showFully();
    const Rect before = overlay.window()->panelFrame();
    screens.setScreens({{{0, 0, 1922, 1081}, {0, 30, 1922, 1051}}});
    time.advance(Seconds{1});
    EXPECT_EQ(overlay.window()->panelFrame(), before);
}

TEST_F(WaveformOverlayTest, aBeat_growsALittleAndComesBack) {
    showFully();
    overlay.tovik();
    time.advance(Seconds{0.08});
    EXPECT_NEAR(overlay.window()->contentScale(), 1.0075, 0.002);
    time.advance(Seconds{0.08});
    EXPECT_NEAR(overlay.window()->contentScale(), 1.015, 1e-9);
    time.advance(Seconds{0.16});
    EXPECT_EQ(overlay.window()->contentScale(), 1);
}

TEST_F(WaveformOverlayTest, whenGoneDuringABeat_nothingRunsAnyMore) {
    showFully();
    overlay.tovik();
    overlay.hide();
    time.advance(Seconds{1});
    EXPECT_EQ(time.pendingCount(), 0U);
}

TEST_F(WaveformOverlayTest, levelsReachTheBarsOnlyWhileShown) {
    showFully();
    overlay.setLevel(0.5F);
    EXPECT_DOUBLE_EQ(overlay.waveformView()->samples().back(), 0.5);
    overlay.hide();
    time.advance(Seconds{1});
    overlay.setLevel(0.7F);
    overlay.show(time.now());
    EXPECT_DOUBLE_EQ(overlay.waveformView()->samples().back(), 0);
}

TEST_F(WaveformOverlayTest, theRedrawOfALevel_takesLessThanAMillisecondWithAllThatLiesBeneath) {
    showFully();
    ASSERT_TRUE(test::runUntil([this] { return overlay.window()->isVisible(); }));
    test::runPendingEvents();
    std::vector<double> milliseconds;
    for (int round = 0; round < 51; ++round) {
        overlay.setLevel(static_cast<float>(round % 10) / 10);
        const double before = test::processorMilliseconds();
        overlay.waveformView()->repaint();
        milliseconds.push_back(test::processorMilliseconds() - before);
    }
    std::nth_element(milliseconds.begin(), milliseconds.begin() + 25, milliseconds.end());
    RecordProperty("median_ms", std::to_string(milliseconds[25]));
    EXPECT_LT(milliseconds[25], 1.0);
}

TEST_F(WaveformOverlayTest, withoutCompositing_isCutToItsShape) {
    compositing.active = false;
    overlay.show(time.now());
    const QRegion mask = overlay.window()->mask();
    EXPECT_FALSE(mask.contains(QPoint(0, 0)));
    EXPECT_FALSE(mask.contains(QPoint(335, 37)));
    EXPECT_TRUE(mask.contains(QPoint(168, 0)));
    EXPECT_TRUE(mask.contains(QPoint(0, 19)));
}

TEST_F(WaveformOverlayTest, withCompositing_isNotCut) {
    overlay.show(time.now());
    EXPECT_TRUE(overlay.window()->mask().isEmpty());
}

TEST_F(WaveformOverlayTest, whenDestroyedWhileShown_leavesNothingRunning) {
    {
        WaveformOverlay other{time, time, screens, workspace, compositing};
        other.show(time.now());
        other.tovik();
    }
    EXPECT_EQ(time.pendingCount(), 0U);
}

TEST(TabularDigitsLabel, givesEveryDigitTheSameRoom) {
    TabularDigitsLabel narrow(QStringLiteral("1:11"));
    TabularDigitsLabel wide(QStringLiteral("0:48"));
    EXPECT_EQ(narrow.characterPositions(), wide.characterPositions());
    EXPECT_EQ(narrow.sizeHint(), wide.sizeHint());
}

} // namespace
} // namespace tovik

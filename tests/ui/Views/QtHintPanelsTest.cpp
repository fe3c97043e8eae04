// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/Overlay/FloatingPanel.h"
#include "support/ManualTime.h"
#include "ui/Views/FakeCompositing.h"

#include <QApplication>
#include <QFontMetricsF>
#include <QLabel>

#include <gtest/gtest.h>

namespace tovik {
namespace {

const HintDescription kTip{.text = "Fn+Shift for hands-free · release Fn to stop",
                           .frame = {818, 1050, 284, 28},
                           .fontSize = 10.5,
                           .weight = FontWeight::medium,
                           .textWhite = 0.82};

FloatingPanel* panelOnScreen() {
    for (QWidget* window : QApplication::topLevelWidgets()) {
        if (window->objectName() == QStringLiteral("hintPanel")) {
            return qobject_cast<FloatingPanel*>(window);
        }
    }
    return nullptr;
}

struct QtHintPanelsTest : testing::Test {
    test::ManualTime time;
    test::FakeCompositing compositing;
    QtHintPanels panels{time, time, compositing};
};

TEST_F(QtHintPanelsTest, whenFadedIn_standsWhereDescribedWithItsText) {
    const auto hint = panels.makePanel(kTip);
    hint->fadeIn(Seconds{0.2});
    FloatingPanel* panel = panelOnScreen();
    ASSERT_NE(panel, nullptr);
    EXPECT_TRUE(panel->isVisible());
    EXPECT_EQ(panel->panelFrame(), kTip.frame);
    EXPECT_EQ(panel->alpha(), 0);

    time.advance(Seconds{0.2});
    EXPECT_EQ(panel->alpha(), 1);
    const auto* label = panel->findChild<QLabel*>();
    ASSERT_NE(label, nullptr);
    EXPECT_EQ(label->text(), QString::fromStdString(kTip.text));
    EXPECT_EQ(label->palette().color(QPalette::WindowText).rgb(), qRgb(209, 209, 209));
    EXPECT_EQ(label->font().weight(), QFont::Medium);
    EXPECT_EQ(time.pendingCount(), 0U);
}

TEST_F(QtHintPanelsTest, whenFadedOut_isGoneAndSaysSo) {
    const auto hint = panels.makePanel(kTip);
    hint->fadeIn(Seconds{0.2});
    time.advance(Seconds{0.2});
    bool gone = false;
    hint->fadeOut(Seconds{0.15}, [&] { gone = true; });
    time.advance(Seconds{0.1});
    EXPECT_FALSE(gone);
    EXPECT_LT(panelOnScreen()->alpha(), 0.5);
    time.advance(Seconds{0.05});
    EXPECT_TRUE(gone);
    EXPECT_FALSE(panelOnScreen()->isVisible());
    EXPECT_EQ(time.pendingCount(), 0U);
}

TEST_F(QtHintPanelsTest, whenDropped_isGoneAtOnce) {
    auto hint = panels.makePanel(kTip);
    hint->fadeIn(Seconds{0.2});
    time.advance(Seconds{0.05});
    hint.reset();
    EXPECT_EQ(panelOnScreen(), nullptr);
    EXPECT_EQ(time.pendingCount(), 0U);
}

TEST_F(QtHintPanelsTest, whenDroppedByItsOwnFadeOut_nothingBreaks) {
    auto hint = panels.makePanel(kTip);
    hint->fadeIn(Seconds{0.2});
    hint->fadeOut(Seconds{0.15}, [&] { hint.reset(); });
    time.advance(Seconds{1});
    EXPECT_EQ(hint, nullptr);
    EXPECT_EQ(panelOnScreen(), nullptr);
}

TEST_F(QtHintPanelsTest, itsTextFitsWithinThePanel) {
    const auto hint = panels.makePanel(kTip);
    const auto* label = panelOnScreen()->findChild<QLabel*>();
    EXPECT_LE(QFontMetricsF(label->font()).horizontalAdvance(label->text()), kTip.frame.width);
}

TEST_F(QtHintPanelsTest, neverTakesFocusOrClicks) {
    const auto hint = panels.makePanel(kTip);
    const auto flags = panelOnScreen()->windowFlags();
    EXPECT_TRUE(flags & Qt::WindowDoesNotAcceptFocus);
    EXPECT_TRUE(flags & Qt::WindowTransparentForInput);
    EXPECT_TRUE(panelOnScreen()->testAttribute(Qt::WA_ShowWithoutActivating));
}

} // namespace
} // namespace tovik

// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/Window/ToastView.h"

#include "UserInterface/Controls/Painting.h"
#include "support/ManualTime.h"

#include <QImage>
#include <QLabel>
#include <QLayout>

#include <gtest/gtest.h>

namespace tovik {
namespace {

struct ToastViewTest : testing::Test {
    test::ManualTime time;
    QWidget host;
    ToastView* toast = nullptr;

    ToastViewTest() {
        host.resize(500, 680);
        host.show();
        toast = new ToastView(time, time, &host);
    }
    [[nodiscard]] QLabel* label() const { return toast->findChild<QLabel*>(QStringLiteral("toastLabel")); }
};

TEST_F(ToastViewTest, atFirst_isHiddenAndSaysSaved) {
    EXPECT_TRUE(toast->isHidden());
    EXPECT_EQ(toast->alpha(), 0);
    EXPECT_EQ(label()->text(), QStringLiteral("Saved"));
    EXPECT_EQ(label()->font().pixelSize(), 11);
    EXPECT_EQ(label()->font().weight(), QFont::DemiBold);
    EXPECT_EQ(time.pendingCount(), 0U);
}

TEST_F(ToastViewTest, whenShown_standsInTheMiddleNearTheTop) {
    toast->showSavedToast(QStringLiteral("Input device saved"));
    toast->layout()->activate();
    EXPECT_EQ(toast->height(), 30);
    EXPECT_EQ(toast->y(), 82);
    EXPECT_NEAR(toast->geometry().center().x(), 249.5, 1);
    const QRect symbol = toast->findChild<SymbolView*>()->geometry();
    EXPECT_EQ(symbol, QRect(12, 8, 14, 14));
    EXPECT_EQ(label()->geometry().left(), 12 + 14 + 7);
    EXPECT_EQ(label()->geometry().right() + 1, toast->width() - 12);
}

TEST_F(ToastViewTest, itsWidthFollowsTheText) {
    toast->showSavedToast(QStringLiteral("Copied"));
    const int narrow = toast->width();
    toast->showSavedToast(QStringLiteral("Dictation language saved"));
    EXPECT_GT(toast->width(), narrow);
    EXPECT_EQ(toast->height(), 30);
}

TEST_F(ToastViewTest, aTextTooLongForOneLine_isShownInSeveralWithinTheHost) {
    toast->showSavedToast(QStringLiteral("No sound server answers. Start PulseAudio or PipeWire in this "
                                         "session, then press Check to see whether it is there."));
    EXPECT_LE(toast->width(), 460);
    EXPECT_GE(toast->x(), 20);
    EXPECT_GT(toast->height(), 40);
    toast->layout()->activate();
    EXPECT_GE(label()->height(), label()->heightForWidth(label()->width()));
}

TEST_F(ToastViewTest, whenShown_fadesInStaysAndFadesOut) {
    toast->showSavedToast(QStringLiteral("Copied"));
    EXPECT_TRUE(toast->isVisible());
    EXPECT_EQ(label()->text(), QStringLiteral("Copied"));
    time.advance(Seconds{0.06});
    EXPECT_GT(toast->alpha(), 0.5);
    EXPECT_LT(toast->alpha(), 1);
    time.advance(Seconds{0.06});
    EXPECT_EQ(toast->alpha(), 1);
    time.advance(Seconds{1.07});
    EXPECT_EQ(toast->alpha(), 1);
    time.advance(Seconds{0.1});
    EXPECT_NEAR(toast->alpha(), 0.5, 0.1);
    EXPECT_TRUE(toast->isVisible());
    time.advance(Seconds{0.1});
    EXPECT_TRUE(toast->isHidden());
    EXPECT_EQ(time.pendingCount(), 0U);
}

TEST_F(ToastViewTest, twoMessagesInARow_showTheSecondForItsFullTime) {
    toast->showSavedToast(QStringLiteral("Cleanup on"));
    time.advance(Seconds{0.5});
    toast->showSavedToast(QStringLiteral("Cleanup off"));
    EXPECT_EQ(label()->text(), QStringLiteral("Cleanup off"));
    time.advance(Seconds{1.15});
    EXPECT_EQ(toast->alpha(), 1);
    time.advance(Seconds{0.3});
    EXPECT_TRUE(toast->isHidden());
}

TEST_F(ToastViewTest, aFadeOutUnderWay_neverHidesANewerMessage) {
    toast->showSavedToast(QStringLiteral("Cleanup on"));
    time.advance(Seconds{1.3});
    ASSERT_LT(toast->alpha(), 1);
    ASSERT_TRUE(toast->isVisible());
    toast->showSavedToast(QStringLiteral("Cleanup off"));
    time.advance(Seconds{0.12});
    EXPECT_EQ(toast->alpha(), 1);
    time.advance(Seconds{1});
    EXPECT_TRUE(toast->isVisible());
    EXPECT_EQ(toast->alpha(), 1);
    time.advance(Seconds{0.4});
    EXPECT_TRUE(toast->isHidden());
}

TEST_F(ToastViewTest, isADarkPillWithRoundEnds) {
    toast->showSavedToast(QStringLiteral("Dictation language saved"));
    time.advance(Seconds{0.2});
    QImage image(toast->size(), QImage::Format_ARGB32);
    image.fill(Qt::transparent);
    toast->render(&image, QPoint(), QRegion(), QWidget::DrawChildren);
    const QColor ground = image.pixelColor(6, 15);
    EXPECT_NEAR(ground.alphaF(), 0.94, 0.005);
    EXPECT_NEAR(ground.red(), 26, 1);
    EXPECT_EQ(image.pixelColor(0, 0).alpha(), 0);
    EXPECT_EQ(image.pixelColor(toast->width() - 1, 29).alpha(), 0);
}

TEST_F(ToastViewTest, takesNoClicks) {
    EXPECT_TRUE(toast->testAttribute(Qt::WA_TransparentForMouseEvents));
}

TEST_F(ToastViewTest, whenTheHostGrows_staysInTheMiddle) {
    toast->showSavedToast(QStringLiteral("Copied"));
    host.resize(700, 680);
    EXPECT_NEAR(toast->geometry().center().x(), 349.5, 1);
}

} // namespace
} // namespace tovik

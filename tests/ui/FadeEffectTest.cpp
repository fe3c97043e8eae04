// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/Controls/FadeEffect.h"

#include "support/EventLoop.h"

#include <QImage>
#include <QPainter>
#include <QScrollArea>
#include <QScrollBar>
#include <QWidget>

#include <gtest/gtest.h>

namespace tovik {
namespace {

/// Black, with a white line across its lower half.
class Sheet : public QWidget {
public:
    using QWidget::QWidget;

protected:
    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter painter(this);
        painter.fillRect(rect(), Qt::black);
        painter.fillRect(QRect(0, height() / 2, width(), height() / 2), QColor(0, 0, 200));
    }
};

struct FadeEffectTest : testing::Test {
    QWidget window;
    QScrollArea scroll{&window};
    Sheet* sheet = new Sheet;
    FadeEffect* effect = nullptr;

    void build(int height) {
        scroll.setFrameShape(QFrame::NoFrame);
        scroll.setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        sheet->resize(100, height);
        scroll.setWidget(sheet);
        effect = new FadeEffect(*sheet);
        sheet->setGraphicsEffect(effect);
        QPalette white = window.palette();
        white.setColor(QPalette::Window, Qt::white);
        window.setPalette(white);
        scroll.resize(100, 100);
        window.resize(100, 100);
        window.show();
        test::runPendingEvents();
    }
    [[nodiscard]] QColor colorAt(int y) {
        const QImage image = window.grab().toImage();
        const auto scale = image.devicePixelRatio();
        return image.pixelColor(static_cast<int>(50 * scale), static_cast<int>(y * scale));
    }
};

TEST_F(FadeEffectTest, atFullOpacity_showsTheViewAsItIs) {
    build(100);
    EXPECT_EQ(colorAt(10), QColor(Qt::black));
    EXPECT_EQ(colorAt(90), QColor(0, 0, 200));
}

TEST_F(FadeEffectTest, inBetween_letsTheGroundShineThrough) {
    build(100);
    effect->setOpacity(0.5);
    EXPECT_NEAR(colorAt(10).red(), 128, 2);
    EXPECT_NEAR(colorAt(90).blue(), 228, 2);
}

TEST_F(FadeEffectTest, atNoOpacity_showsTheGroundAlone) {
    build(100);
    effect->setOpacity(0);
    EXPECT_EQ(colorAt(10), QColor(Qt::white));
}

TEST_F(FadeEffectTest, ofATallView_showsThePartThatIsScrolledTo) {
    build(30000);
    effect->setOpacity(0.5);
    EXPECT_NEAR(colorAt(50).blue(), 128, 2);
    scroll.verticalScrollBar()->setValue(20000);
    test::runPendingEvents();
    EXPECT_NEAR(colorAt(50).blue(), 228, 2);
}

} // namespace
} // namespace tovik

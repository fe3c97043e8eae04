// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "WaveformOverlay.h"
#include "support/EventLoop.h"
#include "support/ProcessorTime.h"

#include <QEvent>
#include <QImage>

#include <gmock/gmock.h>

#include <algorithm>
#include <string>
#include <vector>

namespace tovik {
namespace {

using testing::Each;
using testing::SizeIs;

/// A view in which no bar is cut off, drawn without what lies beneath.
QImage drawn(WaveformView& view) {
    QImage image(view.size(), QImage::Format_ARGB32);
    image.fill(Qt::transparent);
    view.render(&image, QPoint(), QRegion(), QWidget::RenderFlags());
    return image;
}

struct WaveformViewTest : testing::Test {
    WaveformViewTest() {
        // Half a pixel would blur the bars: an odd width puts the first one at a whole pixel.
        view.resize(257, 26);
    }

    WaveformView view;
};

TEST_F(WaveformViewTest, atFirst_holdsFortyZeros) {
    EXPECT_THAT(view.samples(), SizeIs(40));
    EXPECT_THAT(view.samples(), Each(0.0));
    EXPECT_EQ(view.level(), 0.0F);
}

TEST_F(WaveformViewTest, whenALevelComes_itIsTheLastOfForty) {
    view.setLevel(0.5F);
    EXPECT_THAT(view.samples(), SizeIs(40));
    EXPECT_DOUBLE_EQ(view.samples().back(), 0.5);
    EXPECT_DOUBLE_EQ(view.samples()[38], 0);
}

TEST_F(WaveformViewTest, whenLevelsLieOutside_theyAreClamped) {
    view.setLevel(1.7F);
    EXPECT_DOUBLE_EQ(view.samples().back(), 1);
    view.setLevel(-0.2F);
    EXPECT_DOUBLE_EQ(view.samples().back(), 0);
}

TEST_F(WaveformViewTest, whenMoreThanFortyCame_keepsTheNewest) {
    for (int index = 1; index <= 50; ++index) {
        view.setLevel(static_cast<float>(index) / 100);
    }
    EXPECT_THAT(view.samples(), SizeIs(40));
    EXPECT_FLOAT_EQ(static_cast<float>(view.samples().front()), 0.11F);
    EXPECT_FLOAT_EQ(static_cast<float>(view.samples().back()), 0.5F);
}

TEST_F(WaveformViewTest, silence_drawsShortGreyBars) {
    const QImage image = drawn(view);
    // The second bar begins at 6.5; its middle column is whole.
    const QColor bar = image.pixelColor(8, 13);
    EXPECT_NEAR(bar.red(), 0.72 * 255, 2);
    EXPECT_NEAR(bar.alphaF(), 0.76, 0.02);
    // 3.5 high around the middle, which is between rows 12 and 13.
    EXPECT_EQ(image.pixelColor(8, 10).alpha(), 0);
    EXPECT_EQ(image.pixelColor(8, 15).alpha(), 0);
    // Nothing between the bars.
    EXPECT_EQ(image.pixelColor(4, 13).alpha(), 0);
}

TEST_F(WaveformViewTest, loudest_drawsATallWarmBarOnTheRight) {
    view.setLevel(1);
    const QImage image = drawn(view);
    const int column = static_cast<int>(39 * 6.5 + 1.75);
    const QColor bar = image.pixelColor(column, 13);
    EXPECT_NEAR(bar.red(), 0.98 * 255, 1);
    EXPECT_NEAR(bar.green(), 0.56 * 255, 1);
    EXPECT_NEAR(bar.blue(), 0.25 * 255, 1);
    EXPECT_EQ(bar.alpha(), 255);
    EXPECT_GT(image.pixelColor(column, 1).alpha(), 200);
    EXPECT_GT(image.pixelColor(column, 24).alpha(), 200);
}

/// Counts how often a view is painted.
class PaintCounter : public QObject {
public:
    int count = 0;

    bool eventFilter(QObject* watched, QEvent* event) override {
        count += event->type() == QEvent::Paint ? 1 : 0;
        return QObject::eventFilter(watched, event);
    }
};

TEST_F(WaveformViewTest, aLevel_isOneRedrawAndSeveralAtOnceAreOneToo) {
    PaintCounter paints;
    view.installEventFilter(&paints);
    view.show();
    ASSERT_TRUE(test::runUntil([&] { return paints.count > 0; }));
    test::runPendingEvents();
    paints.count = 0;
    for (int level = 1; level <= 10; ++level) {
        view.setLevel(static_cast<float>(level) / 10);
        test::runPendingEvents();
        EXPECT_EQ(paints.count, level);
    }
    paints.count = 0;
    for (int level = 1; level <= 10; ++level) {
        view.setLevel(static_cast<float>(level) / 10);
    }
    test::runPendingEvents();
    EXPECT_EQ(paints.count, 1);
    test::runPendingEvents();
    EXPECT_EQ(paints.count, 1) << "without a level nothing is drawn";
}

TEST_F(WaveformViewTest, oneRedraw_takesLessThanAMillisecond) {
    for (int index = 0; index < 40; ++index) {
        view.setLevel(static_cast<float>(index) / 40);
    }
    QImage image(view.size(), QImage::Format_ARGB32_Premultiplied);
    std::vector<double> milliseconds;
    for (int round = 0; round < 51; ++round) {
        const double before = test::processorMilliseconds();
        view.render(&image, QPoint(), QRegion(), QWidget::RenderFlags());
        milliseconds.push_back(test::processorMilliseconds() - before);
    }
    std::nth_element(milliseconds.begin(), milliseconds.begin() + 25, milliseconds.end());
    RecordProperty("median_ms", std::to_string(milliseconds[25]));
    EXPECT_LT(milliseconds[25], 1.0);
}

} // namespace
} // namespace tovik

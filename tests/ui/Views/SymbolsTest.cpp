// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/Controls/Painting.h"

#include <QImage>

#include <gtest/gtest.h>

#include <algorithm>

namespace tovik {
namespace {

constexpr const char* kNames[] = {"waveform",
                                  "mic.fill",
                                  "lock.open",
                                  "stop.circle",
                                  "checkmark.circle.fill",
                                  "checkmark.shield.fill",
                                  "sparkles",
                                  "paintbrush.fill",
                                  "globe",
                                  "doc.text",
                                  "doc.on.doc",
                                  "chevron.right",
                                  "chevron.down",
                                  "ellipsis.circle",
                                  "cursorarrow.motionlines",
                                  "xmark",
                                  "plus"};

QRect inkOf(const QImage& image) {
    QRect ink;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (image.pixelColor(x, y).alpha() > 40) {
                ink |= QRect(x, y, 1, 1);
            }
        }
    }
    return ink;
}

TEST(Symbols, everyNameInUse_hasADrawing) {
    for (const char* name : kNames) {
        EXPECT_TRUE(symbols::exists(QString::fromLatin1(name))) << name;
    }
    EXPECT_FALSE(symbols::exists(QStringLiteral("no.such.symbol")));
}

TEST(Symbols, atEveryScale_areDrawnAtThatResolution) {
    for (const char* name : kNames) {
        for (const double ratio : {1.0, 1.5, 2.0}) {
            const QPixmap pixmap = symbols::pixmap(QString::fromLatin1(name), {22, 22}, Qt::red, ratio);
            EXPECT_EQ(pixmap.size(), QSize(static_cast<int>(22 * ratio), static_cast<int>(22 * ratio)));
            EXPECT_EQ(pixmap.devicePixelRatio(), ratio);
            const QRect ink = inkOf(pixmap.toImage());
            EXPECT_GT(std::max(ink.width(), ink.height()), 14 * ratio) << name << " at " << ratio;
            EXPECT_TRUE(QRect(QPoint(0, 0), pixmap.size()).contains(ink)) << name;
        }
    }
}

TEST(Symbols, areTintedInOneColour) {
    const QColor tint(94, 84, 240);
    for (const char* name : kNames) {
        const QImage image = symbols::pixmap(QString::fromLatin1(name), {32, 32}, tint, 2).toImage();
        int solid = 0;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                const QColor color = image.pixelColor(x, y);
                if (color.alpha() == 255) {
                    ++solid;
                    EXPECT_EQ(color, tint) << name;
                }
            }
        }
        EXPECT_GT(solid, 30) << name;
    }
}

TEST(Symbols, anUnknownName_givesAnEmptyPictureOfTheSize) {
    const QPixmap pixmap = symbols::pixmap(QStringLiteral("no.such.symbol"), {22, 22}, Qt::red, 1);
    EXPECT_EQ(pixmap.size(), QSize(22, 22));
    EXPECT_TRUE(inkOf(pixmap.toImage()).isNull());
}

TEST(ApplicationIcon, isThereInTheSizesThatDesktopsAskFor) {
    for (const int edge : {16, 18, 22, 48, 256}) {
        const QPixmap pixmap = symbols::applicationIcon().pixmap(QSize(edge, edge), 1.0);
        EXPECT_EQ(pixmap.size(), QSize(edge, edge));
        EXPECT_GT(inkOf(pixmap.toImage()).width(), edge * 8 / 10);
    }
}

} // namespace
} // namespace tovik

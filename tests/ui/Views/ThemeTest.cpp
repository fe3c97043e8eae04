// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/Controls/Theme.h"

#include <QPalette>

#include <gtest/gtest.h>

#include <vector>

namespace tovik {
namespace {

TEST(ContrastRatio, ofBlackAndWhite_isTwentyOneEitherWay) {
    EXPECT_NEAR(contrastRatio(theme::white(0), theme::white(1)), 21, 1e-9);
    EXPECT_NEAR(contrastRatio(theme::white(1), theme::white(0)), 21, 1e-9);
    EXPECT_NEAR(contrastRatio(theme::white(0.5), theme::white(0.5)), 1, 1e-9);
}

TEST(ContrastRatio, ofAKnownGrey_isTheKnownValue) {
    // #767676 on white is the well-known lightest readable grey.
    EXPECT_NEAR(contrastRatio(theme::white(118.0 / 255), theme::white(1)), 4.54, 0.01);
}

TEST(Blended, mixesByAlpha) {
    const QColor pink = blended(theme::rgb(1, 0, 0, 0.5), theme::white(1));
    EXPECT_EQ(pink.redF(), 1);
    EXPECT_NEAR(pink.greenF(), 0.5, 1e-4);
    EXPECT_NEAR(pink.blueF(), 0.5, 1e-4);
    EXPECT_EQ(pink.alphaF(), 1);
    EXPECT_EQ(blended(theme::rgb(1, 0, 0, 0), theme::white(1)), theme::white(1));
}

TEST(ReadableOn, keepsAColourThatReadsWell) {
    const QColor darkBlue = theme::rgb(0.1, 0.1, 0.4);
    EXPECT_EQ(readableOn(theme::white(1), darkBlue), darkBlue);
}

TEST(ReadableOn, replacesAColourThatDoesNot) {
    EXPECT_EQ(readableOn(theme::white(1), theme::white(0.95)), theme::white(0));
    EXPECT_EQ(readableOn(theme::white(0.1), theme::white(0.2)), theme::white(1));
}

QPalette paletteOf(const QColor& text, const QColor& window) {
    QPalette palette(window);
    palette.setColor(QPalette::Window, window);
    palette.setColor(QPalette::WindowText, text);
    return palette;
}

struct NamedPalette {
    const char* name;
    QPalette palette;
};

std::vector<NamedPalette> palettes() {
    return {{"light", paletteOf(Qt::black, QColor(239, 239, 239))},
            {"soft light", paletteOf(QColor(46, 52, 54), QColor(246, 245, 244))},
            {"dark", paletteOf(QColor(235, 235, 238), QColor(32, 32, 35))},
            {"black", paletteOf(Qt::white, Qt::black)},
            {"pale text on light", paletteOf(QColor(190, 190, 190), QColor(250, 250, 250))},
            {"dim text on dark", paletteOf(QColor(90, 90, 90), QColor(20, 20, 20))}};
}

TEST(Theme, labelsOnCards_canBeReadOnEveryDesktop) {
    for (const auto& [name, palette] : palettes()) {
        for (const QColor& ground : {theme::kCardBackground, theme::kRowBackground}) {
            EXPECT_GE(contrastRatio(theme::labelColor(palette, ground), ground), kReadableContrast) << name;
        }
    }
}

TEST(Theme, sectionTitles_canBeReadAtTheirStrength) {
    for (const auto& [name, palette] : palettes()) {
        const QColor title =
            theme::withAlpha(theme::labelColor(palette, theme::kCardBackground), theme::kSectionTitleAlpha);
        EXPECT_GE(contrastRatio(blended(title, theme::kCardBackground), theme::kCardBackground),
                  kReadableContrast)
            << name;
    }
}

TEST(Theme, headerAndFooter_canBeReadOnEveryDesktop) {
    for (const auto& [name, palette] : palettes()) {
        const QColor ground = theme::windowBackground(palette);
        EXPECT_GE(contrastRatio(theme::labelColor(palette, ground), ground), kReadableContrast) << name;
        EXPECT_GE(contrastRatio(theme::accentOn(ground), ground), kReadableContrast) << name;
    }
}

TEST(Theme, darkPanels_canBeRead) {
    const QColor pill = blended(theme::kPillBackground, theme::white(1));
    EXPECT_GE(contrastRatio(blended(theme::kPillText, pill), pill), kReadableContrast);
    const QColor hint = blended(theme::kHintBackground, theme::white(1));
    EXPECT_GE(contrastRatio(theme::white(0.82), hint), kReadableContrast);
    const QColor toast = blended(theme::kToastBackground, theme::white(1));
    EXPECT_GE(contrastRatio(theme::kToastText, toast), kReadableContrast);
}

TEST(Theme, rowTexts_canBeRead) {
    EXPECT_GE(contrastRatio(theme::kRowTitle, theme::kRowBackground), kReadableContrast);
    EXPECT_GE(contrastRatio(theme::kRowDetail, theme::kRowBackground), kReadableContrast);
}

TEST(Theme, onADarkDesktop_theWindowIsDarkAndTheCardsAreNot) {
    const QPalette dark = paletteOf(QColor(235, 235, 238), QColor(32, 32, 35));
    EXPECT_TRUE(theme::isDark(dark));
    EXPECT_EQ(theme::windowBackground(dark), theme::kDarkWindowBackground);
    EXPECT_EQ(theme::labelColor(dark, theme::kCardBackground), theme::white(0));
    const QPalette card = theme::cardPalette(dark);
    EXPECT_FALSE(theme::isDark(card));
    EXPECT_GE(contrastRatio(card.color(QPalette::Text), card.color(QPalette::Base)), kReadableContrast);
}

TEST(Theme, fonts_keepFractionsOfAPixel) {
    EXPECT_EQ(theme::font(14).pixelSize(), 14);
    EXPECT_NEAR(theme::font(10.5).pointSizeF(), 10.5 * 72 / 96, 0.5);
    EXPECT_EQ(theme::font(12, FontWeight::semibold).weight(), QFont::DemiBold);
    EXPECT_EQ(theme::font(12, FontWeight::medium).weight(), QFont::Medium);
    EXPECT_EQ(theme::font(12).weight(), QFont::Normal);
}

} // namespace
} // namespace tovik

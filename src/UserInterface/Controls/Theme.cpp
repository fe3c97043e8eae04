// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/Controls/Theme.h"

#include <QFontDatabase>
#include <QGuiApplication>
#include <QPalette>
#include <QScreen>

#include <algorithm>
#include <cmath>

namespace tovik::theme {

namespace {

QFont::Weight qtWeight(FontWeight weight) {
    switch (weight) {
    case FontWeight::regular:
        return QFont::Normal;
    case FontWeight::medium:
        return QFont::Medium;
    case FontWeight::semibold:
        return QFont::DemiBold;
    }
    return QFont::Normal;
}

} // namespace

QColor color(const Rgba& rgba) {
    return QColor::fromRgbF(static_cast<float>(rgba.red), static_cast<float>(rgba.green),
                            static_cast<float>(rgba.blue), static_cast<float>(rgba.alpha));
}

Rgba rgba(const QColor& color) {
    return {color.redF(), color.greenF(), color.blueF(), color.alphaF()};
}

QFont font(double size, FontWeight weight) {
    QFont result = QFontDatabase::systemFont(QFontDatabase::GeneralFont);
    if (size == std::floor(size)) {
        result.setPixelSize(static_cast<int>(size));
    } else {
        // Pixel sizes are whole numbers; points carry the fraction.
        const QScreen* screen = QGuiApplication::primaryScreen();
        const double dotsPerInch = screen ? screen->logicalDotsPerInchY() : 96;
        result.setPointSizeF(size * 72 / dotsPerInch);
    }
    result.setWeight(qtWeight(weight));
    return result;
}

bool isDark(const QPalette& palette) {
    return palette.color(QPalette::WindowText).lightnessF() > palette.color(QPalette::Window).lightnessF();
}

Rgba windowBackground(const QPalette& palette) {
    return isDark(palette) ? kDarkWindowBackground : kWindowBackground;
}

Rgba labelColor(const QPalette& palette, const Rgba& background) {
    return readableOn(background, rgba(palette.color(QPalette::WindowText)));
}

Rgba readableLabelColor(const QPalette& palette, const Rgba& background, double wantedAlpha) {
    constexpr double kStep = 0.02;
    Rgba label = labelColor(palette, background).withAlpha(wantedAlpha);
    while (label.alpha < 1 && contrastRatio(blended(label, background), background) < kReadableContrast) {
        label.alpha = std::min(label.alpha + kStep, 1.0);
    }
    return label;
}

Rgba accentOn(const Rgba& background) {
    return contrastRatio(kAccent, background) >= kReadableContrast ? kAccent : kAccentOnDark;
}

QPalette cardPalette(const QPalette& desktop) {
    if (!isDark(desktop)) {
        QPalette palette = desktop;
        palette.setColor(QPalette::Window, color(kCardBackground));
        for (const auto role : {QPalette::WindowText, QPalette::Text}) {
            palette.setColor(role, color(labelColor(desktop, kCardBackground)));
        }
        return palette;
    }
    QPalette palette(QColor(239, 239, 239), color(kCardBackground));
    palette.setColor(QPalette::Base, Qt::white);
    palette.setColor(QPalette::Highlight, desktop.color(QPalette::Highlight));
    palette.setColor(QPalette::HighlightedText, desktop.color(QPalette::HighlightedText));
    return palette;
}

} // namespace tovik::theme

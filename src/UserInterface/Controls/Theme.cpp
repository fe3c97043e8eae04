// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/Controls/Theme.h"

#include <QFontDatabase>
#include <QGuiApplication>
#include <QPalette>
#include <QScreen>

#include <algorithm>
#include <cmath>

namespace tovik {

namespace {

double linear(double part) {
    return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
}

double luminance(const QColor& color) {
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
}

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

QColor blended(const QColor& over, const QColor& opaque) {
    const double alpha = over.alphaF();
    const auto part = [alpha](double top, double bottom) { return top * alpha + bottom * (1 - alpha); };
    return theme::rgb(part(over.redF(), opaque.redF()), part(over.greenF(), opaque.greenF()),
                      part(over.blueF(), opaque.blueF()));
}

double contrastRatio(const QColor& one, const QColor& other) {
    const auto [darker, lighter] = std::minmax({luminance(one), luminance(other)});
    return (lighter + 0.05) / (darker + 0.05);
}

QColor readableOn(const QColor& background, const QColor& preferred) {
    if (contrastRatio(preferred, background) >= kReadableContrast) {
        return preferred;
    }
    const QColor black(Qt::black);
    const QColor white(Qt::white);
    return contrastRatio(black, background) >= contrastRatio(white, background) ? black : white;
}

namespace theme {

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

QColor windowBackground(const QPalette& palette) {
    return isDark(palette) ? kDarkWindowBackground : kWindowBackground;
}

QColor labelColor(const QPalette& palette, const QColor& background) {
    return readableOn(background, palette.color(QPalette::WindowText));
}

QColor readableLabelColor(const QPalette& palette, const QColor& background, double wantedAlpha) {
    constexpr double kStep = 0.02;
    const QColor full = labelColor(palette, background);
    double alpha = wantedAlpha;
    while (alpha < 1 &&
           contrastRatio(blended(withAlpha(full, alpha), background), background) < kReadableContrast) {
        alpha = std::min(alpha + kStep, 1.0);
    }
    return withAlpha(full, alpha);
}

QColor accentOn(const QColor& background) {
    return contrastRatio(kAccent, background) >= kReadableContrast ? kAccent : kAccentOnDark;
}

QPalette cardPalette(const QPalette& desktop) {
    if (!isDark(desktop)) {
        QPalette palette = desktop;
        palette.setColor(QPalette::Window, kCardBackground);
        for (const auto role : {QPalette::WindowText, QPalette::Text}) {
            palette.setColor(role, labelColor(desktop, kCardBackground));
        }
        return palette;
    }
    QPalette palette(QColor(239, 239, 239), kCardBackground);
    palette.setColor(QPalette::Base, Qt::white);
    palette.setColor(QPalette::Highlight, desktop.color(QPalette::Highlight));
    palette.setColor(QPalette::HighlightedText, desktop.color(QPalette::HighlightedText));
    return palette;
}

} // namespace theme

} // namespace tovik

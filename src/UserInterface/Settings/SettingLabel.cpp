// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/Settings/SettingLabel.h"

#include "UserInterface/Controls/Theme.h"

#include <QGuiApplication>
#include <QLabel>
#include <QPalette>

namespace tovik {

namespace {

QLabel* makeLabel(const QString& text, const QFont& font, const Rgba& ink) {
    auto* label = new QLabel(text);
    label->setTextFormat(Qt::PlainText);
    label->setFont(font);
    QPalette palette = label->palette();
    palette.setColor(QPalette::WindowText, theme::color(ink));
    label->setPalette(palette);
    return label;
}

} // namespace

QLabel* makeSettingLabel(const QString& text, double size, double alpha) {
    const Rgba ink = theme::labelColor(QGuiApplication::palette(), theme::kCardBackground);
    return makeLabel(text, theme::font(size), ink.withAlpha(alpha));
}

QLabel* makeReadableLabel(const QString& text, double size, double wantedAlpha, FontWeight weight) {
    return makeLabel(
        text, theme::font(size, weight),
        theme::readableLabelColor(QGuiApplication::palette(), theme::kCardBackground, wantedAlpha));
}

} // namespace tovik

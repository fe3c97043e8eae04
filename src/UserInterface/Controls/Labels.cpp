// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/Controls/Labels.h"

#include "UserInterface/Controls/Theme.h"

#include <QGuiApplication>
#include <QLabel>
#include <QPalette>

namespace tovik {

void setInk(QWidget& view, const QColor& ink) {
    QPalette palette = view.palette();
    palette.setColor(QPalette::WindowText, ink);
    view.setPalette(palette);
}

QLabel* makePlainLabel(const QString& text, const QFont& font, const QColor& ink) {
    auto* label = new QLabel(text);
    label->setTextFormat(Qt::PlainText);
    label->setFont(font);
    setInk(*label, ink);
    return label;
}

QLabel* makeSettingLabel(const QString& text, double size, double alpha) {
    const QColor ink = theme::labelColor(QGuiApplication::palette(), theme::kCardBackground);
    return makePlainLabel(text, theme::font(size), theme::withAlpha(ink, alpha));
}

QLabel* makeReadableLabel(const QString& text, double size, double wantedAlpha, FontWeight weight) {
    return makePlainLabel(
        text, theme::font(size, weight),
        theme::readableLabelColor(QGuiApplication::palette(), theme::kCardBackground, wantedAlpha));
}

} // namespace tovik

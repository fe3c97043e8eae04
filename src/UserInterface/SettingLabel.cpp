// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/SettingLabel.h"

#include "UserInterface/Theme.h"

#include <QGuiApplication>
#include <QLabel>
#include <QPalette>

namespace tovik {

QLabel* makeSettingLabel(const QString& text, double size, double alpha, FontWeight weight) {
    auto* label = new QLabel(text);
    label->setTextFormat(Qt::PlainText);
    label->setFont(theme::font(size, weight));
    QPalette palette = label->palette();
    const Rgba ink = theme::labelColor(QGuiApplication::palette(), theme::kCardBackground);
    palette.setColor(QPalette::WindowText, theme::color(ink.withAlpha(alpha)));
    label->setPalette(palette);
    return label;
}

} // namespace tovik

// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/HintPanels.h"

class QColor;
class QFont;
class QLabel;
class QString;
class QWidget;

namespace tovik {

/// Draws the texts of a view in this colour.
void setInk(QWidget& view, const QColor& ink);

/// A line of text that is shown as it is, whatever it holds.
[[nodiscard]] QLabel* makePlainLabel(const QString& text, const QFont& font, const QColor& ink);

/// A line of plain text on a card, in the label colour at exactly this strength.
[[nodiscard]] QLabel* makeSettingLabel(const QString& text, double size, double alpha);

/// The same, but stronger where it could not be read otherwise.
[[nodiscard]] QLabel* makeReadableLabel(const QString& text, double size, double wantedAlpha,
                                        FontWeight weight = FontWeight::regular);

} // namespace tovik

// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/HintPanels.h"

class QLabel;
class QString;

namespace tovik {

/// A line of plain text on a card, in the label colour at exactly this strength.
[[nodiscard]] QLabel* makeSettingLabel(const QString& text, double size, double alpha);

/// The same, but stronger where it could not be read otherwise.
[[nodiscard]] QLabel* makeReadableLabel(const QString& text, double size, double wantedAlpha,
                                        FontWeight weight = FontWeight::regular);

} // namespace tovik

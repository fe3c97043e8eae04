// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "UserInterface/Controls/Theme.h"

class QPainter;
class QRectF;

namespace tovik {

/// Paints a rounded box with a border that lies within its place.
void paintBox(QPainter& painter, const QRectF& place, const QColor& fill, const QColor& border,
              double borderWidth, double cornerRadius);

/// The ground of a field or a pop-up button, with a ring around it while that has the keyboard.
void paintShell(QPainter& painter, const QRectF& place, bool hasFocus);

/// The ring within the place of what has the keyboard. The radius is that of the middle of its line.
void paintFocusRing(QPainter& painter, const QRectF& place, double cornerRadius);

/// Paints the soft black shadow that a rounded shape throws. The shape itself is left to the caller, on top.
void paintShadow(QPainter& painter, const QRectF& shape, double cornerRadius, const theme::Shadow& shadow);

/// How far the shadow reaches beyond the shape, on every side.
[[nodiscard]] int shadowReach(const theme::Shadow& shadow);

} // namespace tovik

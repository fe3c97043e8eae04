// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "UserInterface/Controls/Theme.h"

class QPainter;
class QRectF;

namespace tovik {

/// Paints the soft black shadow that a rounded shape throws. The shape itself is left to the caller, on top.
void paintShadow(QPainter& painter, const QRectF& shape, double cornerRadius, const theme::Shadow& shadow);

/// How far the shadow reaches beyond the shape, on every side.
[[nodiscard]] int shadowReach(const theme::Shadow& shadow);

} // namespace tovik

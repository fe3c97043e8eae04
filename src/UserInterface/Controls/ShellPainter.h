// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

class QPainter;
class QRect;

namespace tovik {

/// The ground of a field or a pop-up button, with a ring around it while that has the keyboard.
void paintShell(QPainter& painter, const QRect& place, bool hasFocus);

} // namespace tovik

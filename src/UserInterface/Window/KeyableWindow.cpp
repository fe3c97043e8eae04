// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/Window/KeyableWindow.h"

namespace tovik {

KeyableWindow::KeyableWindow(Qt::WindowFlags flags)
    : QWidget(nullptr, Qt::Window | Qt::FramelessWindowHint | flags) {}

} // namespace tovik

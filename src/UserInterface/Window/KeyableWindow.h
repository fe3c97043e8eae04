// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>

namespace tovik {

/// A window without a frame that may still take the keyboard and be the main window, where it is shown in a
/// way that offers them.
class KeyableWindow : public QWidget {
    Q_OBJECT

public:
    explicit KeyableWindow(Qt::WindowFlags flags = {});

    [[nodiscard]] bool canBecomeKey() const { return true; }
    [[nodiscard]] bool canBecomeMain() const { return true; }
};

} // namespace tovik

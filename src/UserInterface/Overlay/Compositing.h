// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

namespace tovik {

/// Whether windows can be translucent right now. Main thread.
class Compositing {
public:
    virtual ~Compositing() = default;

    [[nodiscard]] virtual bool isActive() const = 0;
};

/// Asks the X server for a compositing manager. A session of another kind always composites.
class DesktopCompositing : public Compositing {
public:
    [[nodiscard]] bool isActive() const override;
};

} // namespace tovik

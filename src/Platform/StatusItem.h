// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/Menu.h"

#include <memory>
#include <string>

namespace tovik {

/// A picture for the status item.
struct StatusImage {
    /// The program's own icon, or the symbol of this name.
    enum class Kind { applicationIcon, symbol };

    Kind kind = Kind::applicationIcon;
    std::string symbolName;
    std::string accessibilityDescription;
    /// Icons: edge length. Symbols: size of the text, of medium weight, that the symbol goes with.
    double pointSize = 0;

    bool operator==(const StatusImage&) const = default;
};

/// The program's place in the desktop's tray. Main thread. Without a tray all of it is harmless.
class StatusItem {
public:
    virtual ~StatusItem() = default;

    /// False when this desktop shows no tray.
    [[nodiscard]] virtual bool hasButton() const = 0;
    virtual void setImage(const StatusImage& image) = 0;
    virtual void setToolTip(const std::string& text) = 0;
    virtual void setMenu(std::shared_ptr<Menu> menu) = 0;
};

} // namespace tovik

// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/MainQueue.h"
#include "Platform/UserInterface.h"
#include "UserInterface/Controls/WindowSystem.h"

namespace tovik {

/// Hint panels as windows of this desktop.
class QtHintPanels : public HintPanels {
public:
    QtHintPanels(const Clock& clock, MainQueue& queue, const Compositing& compositing);

    [[nodiscard]] std::unique_ptr<HintPanel> makePanel(const HintDescription& description) override;

private:
    const Clock& clock_;
    MainQueue& queue_;
    const Compositing& compositing_;
};

} // namespace tovik

// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/MainQueue.h"
#include "Platform/Screens.h"
#include "Platform/Subscription.h"
#include "Platform/UserInterface.h"

#include <list>
#include <memory>

namespace tovik {

/// The two small panels that speak of hands-free recording: the tip that offers it and the confirmation
/// that it is on. Main thread.
class HandsFreeHints {
public:
    HandsFreeHints(MainQueue& queue, const Screens& screens, HintPanels& panels, RecordingOverlay& overlay);
    ~HandsFreeHints();

    /// Does nothing while a tip is on screen, one that fades out included.
    void showLockTip();
    void hideLockTip();

    /// Every call shows a panel of its own, which goes by itself; the overlay beats once.
    void showLockConfirmation();

private:
    using Panels = std::list<std::unique_ptr<HintPanel>>;

    [[nodiscard]] Rect frameNearBottom(double width) const;
    void fadeOutConfirmation(Panels::iterator panel);

    MainQueue& queue_;
    const Screens& screens_;
    HintPanels& panels_;
    RecordingOverlay& overlay_;
    std::unique_ptr<HintPanel> lockTipWindow_;
    Panels confirmations_;
    Lifetime lifetime_;
};

} // namespace tovik

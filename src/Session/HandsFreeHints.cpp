// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Session/HandsFreeHints.h"

namespace tovik {

namespace {

constexpr double kPanelHeight = 28;
constexpr double kGapBelowPanel = 2;
constexpr double kTipWidth = 284;
constexpr double kConfirmationWidth = 216;

constexpr Seconds kTipFadeIn{0.2};
constexpr Seconds kConfirmationFadeIn{0.15};
constexpr Seconds kFadeOut{0.15};
constexpr Seconds kConfirmationShown{1.6};

} // namespace

HandsFreeHints::HandsFreeHints(MainQueue& queue, const Screens& screens, HintPanels& panels,
                               RecordingOverlay& overlay)
    : queue_(queue),
      screens_(screens),
      panels_(panels),
      overlay_(overlay) {}

HandsFreeHints::~HandsFreeHints() = default;

void HandsFreeHints::showLockTip() {
    if (lockTipWindow_) {
        return;
    }
    lockTipWindow_ = panels_.makePanel({.text = "Fn+Shift for hands-free · release Fn to stop",
                                        .frame = frameNearBottom(kTipWidth),
                                        .fontSize = 10.5,
                                        .weight = FontWeight::medium,
                                        .textWhite = 0.82});
    lockTipWindow_->fadeIn(kTipFadeIn);
}

void HandsFreeHints::hideLockTip() {
    if (!lockTipWindow_) {
        return;
    }
    // The panel stays ours until it is gone, so that no second tip can appear over one that fades.
    lockTipWindow_->fadeOut(kFadeOut, lifetime_.guard([this] { lockTipWindow_.reset(); }));
}

void HandsFreeHints::showLockConfirmation() {
    auto& panel = confirmations_.emplace_back(panels_.makePanel({.text = "Hands-free · Fn+Shift to finish",
                                                                 .frame = frameNearBottom(kConfirmationWidth),
                                                                 .fontSize = 12,
                                                                 .weight = FontWeight::semibold,
                                                                 .textWhite = 0.86}));
    panel->fadeIn(kConfirmationFadeIn);
    overlay_.tovik();
    queue_.asyncAfter(kConfirmationShown, lifetime_.guard([this, position = std::prev(confirmations_.end())] {
        fadeOutConfirmation(position);
    }));
}

void HandsFreeHints::fadeOutConfirmation(Panels::iterator panel) {
    (*panel)->fadeOut(kFadeOut, lifetime_.guard([this, panel] { confirmations_.erase(panel); }));
}

Rect HandsFreeHints::frameNearBottom(double width) const {
    const auto screen = screens_.mainScreen();
    if (!screen) {
        return {0, 0, width, kPanelHeight};
    }
    return {screen->frame.x + (screen->frame.width - width) * 0.5,
            screen->visibleFrame.bottom() - kGapBelowPanel - kPanelHeight, width, kPanelHeight};
}

} // namespace tovik

// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/Window/MainWindowLayout.h"

#include <algorithm>

namespace tovik {

namespace {

constexpr double kAboveStack = 76;
constexpr double kBelowStack = 20;
constexpr double kFadeBegin = 10;
constexpr double kFadeLength = 68;

double clampedHeight(double height) {
    return std::clamp(height, mainWindowMinHeight, mainWindowMaxHeight);
}

} // namespace

Rect frameWithLockedWidth(Rect frame, std::optional<double> lockedFrameWidth) {
    if (lockedFrameWidth) {
        frame.x = frame.midX() - *lockedFrameWidth / 2;
        frame.width = *lockedFrameWidth;
    }
    return frame;
}

Rect defaultMainWindowFrame(const Rect& visibleFrame) {
    return {visibleFrame.midX() - mainWindowWidth / 2, visibleFrame.midY() - mainWindowDefaultHeight / 2,
            mainWindowWidth, mainWindowDefaultHeight};
}

Rect fittedMainWindowFrame(const Rect& current, double stackFittingHeight) {
    return {current.midX() - mainWindowWidth / 2, current.y, mainWindowWidth,
            clampedHeight(stackFittingHeight + kAboveStack + kBelowStack)};
}

double headerFadeAlpha(double scrollOffset) {
    const double t = std::min((scrollOffset - kFadeBegin) / kFadeLength, 1.0);
    return t >= 0 ? 1 - t : 1;
}

std::vector<SectionHeader> mainWindowSections(bool hasPendingPermissions) {
    std::vector<SectionHeader> sections{
        {kCorrectionsSection, "Review and fix transcript errors", "sparkles", theme::kIndigo},
        {kCleanupSection, "Remove filler words, pauses, and more", "paintbrush.fill",
         theme::rgb(0.15, 0.66, 0.28)},
        {kTranslationSection, "Translate your transcript", "globe", theme::rgb(0, 0.478, 1)},
        {kHistorySection, "View and manage past transcripts", "doc.text", theme::rgb(0.93, 0.5, 0.12)},
    };
    sections.insert(hasPendingPermissions ? sections.begin() : sections.end(),
                    {kPermissionsSection, "Check access and grant what is missing", "checkmark.shield.fill",
                     theme::kAccent});
    return sections;
}

} // namespace tovik

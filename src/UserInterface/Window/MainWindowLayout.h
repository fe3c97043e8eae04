// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/MainQueue.h"
#include "Platform/Screens.h"
#include "UserInterface/Controls/FrameAnimation.h"
#include "UserInterface/Controls/Theme.h"

#include <QWidget>

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace tovik {

inline constexpr double mainWindowWidth = 500;
inline constexpr double mainContentWidth = 440;
inline constexpr double mainWindowDefaultHeight = 680;
inline constexpr double mainWindowMinHeight = 560;
inline constexpr double mainWindowMaxHeight = 760;

/// Keeps a frame's centre and gives it the locked width; without one the frame stays as it is.
[[nodiscard]] Rect frameWithLockedWidth(Rect frame, std::optional<double> lockedFrameWidth);

/// The main window's frame whenever it is presented: centred in the screen's visible part.
[[nodiscard]] Rect defaultMainWindowFrame(const Rect& visibleFrame);

/// The frame that fits the stack of cards, with the top edge and the horizontal centre kept.
[[nodiscard]] Rect fittedMainWindowFrame(const Rect& current, double stackFittingHeight);

/// How opaque the band under the header is at this scroll offset.
[[nodiscard]] double headerFadeAlpha(double scrollOffset);

/// What the header of a section of the main window shows.
struct SectionHeader {
    std::string title;
    std::string subtitle;
    std::string symbolName;
    QColor symbolColor;

    bool operator==(const SectionHeader&) const = default;
};

inline constexpr const char* kPermissionsSection = "Permissions";
inline constexpr const char* kCorrectionsSection = "Corrections";
inline constexpr const char* kCleanupSection = "Cleanup";
inline constexpr const char* kTranslationSection = "Translation";
inline constexpr const char* kHistorySection = "Transcript History";

/// The sections from top to bottom. While a permission is missing, the permissions come first.
[[nodiscard]] std::vector<SectionHeader> mainWindowSections(bool hasPendingPermissions);

/// A window whose width can be locked: whatever asks for another width, the window keeps its own and its
/// centre. Frames are those of the window's inside, without the window manager's decoration.
class FixedWidthWindow : public QWidget {
    Q_OBJECT

public:
    FixedWidthWindow(const Clock& clock, MainQueue& queue);

    /// Nothing unlocks it.
    void setLockedFrameWidth(std::optional<double> width);
    [[nodiscard]] std::optional<double> lockedFrameWidth() const { return lockedFrameWidth_; }

    void setFrame(const Rect& frame);
    void setFrameAnimated(const Rect& frame, Seconds duration, const QEasingCurve& curve);
    [[nodiscard]] Rect frame() const;

    /// What a frame becomes so that it can be seen on this part of the screen: never with its top edge above
    /// it.
    [[nodiscard]] Rect constrainFrameRect(const Rect& frame, const Rect& visibleFrame) const;

    /// Asked before the window closes; answers whether it may. Without one it may.
    void setShouldClose(std::function<bool()> shouldClose) { shouldClose_ = std::move(shouldClose); }

protected:
    void closeEvent(QCloseEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void place(const Rect& frame);

    std::optional<double> lockedFrameWidth_;
    FrameAnimation animation_;
    MainQueue& queue_;
    Subscription correction_;
    int refusedCorrections_ = 0;
    std::function<bool()> shouldClose_;
};

} // namespace tovik

// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/MainQueue.h"
#include "Platform/UserInterface.h"
#include "UserInterface/Controls/FrameAnimation.h"

#include <QColor>
#include <QFont>

class QPalette;

namespace tovik {

/// The colour that shows when one lies on an opaque other.
[[nodiscard]] QColor blended(const QColor& over, const QColor& opaque);

/// How well one opaque colour can be told from another, 1...21, after the rule for readable text on the web.
[[nodiscard]] double contrastRatio(const QColor& one, const QColor& other);

/// What text needs to be read well.
inline constexpr double kReadableContrast = 4.5;

/// The first colour where it can be read on the background, else black or white, whichever reads better.
[[nodiscard]] QColor readableOn(const QColor& background, const QColor& preferred);

/// The colours and measures of the whole user interface, by name. Lengths are device-independent pixels.
namespace theme {

/// A colour by its parts, each 0...1.
[[nodiscard]] inline QColor rgb(double red, double green, double blue, double alpha = 1) {
    return QColor::fromRgbF(static_cast<float>(red), static_cast<float>(green), static_cast<float>(blue),
                            static_cast<float>(alpha));
}
[[nodiscard]] inline QColor white(double brightness, double alpha = 1) {
    return rgb(brightness, brightness, brightness, alpha);
}
/// The same colour at another strength.
[[nodiscard]] inline QColor withAlpha(QColor color, double alpha) {
    color.setAlphaF(static_cast<float>(alpha));
    return color;
}

struct Shadow {
    double opacity;
    double blurRadius;
    /// Downwards.
    double offsetY;
};

// Floating panels: the recording pill and the hands-free hints.
inline constexpr double kPillWidth = 336;
inline constexpr double kPillHeight = 38;
inline constexpr double kPanelCornerRadius = 13;
inline constexpr double kPillBorderWidth = 0.5;
inline const QColor kPillBackground = white(0.018, 0.98);
inline const QColor kPillBorder = white(1, 0.05);
inline const QColor kPillText = white(0.84, 0.86);
inline constexpr double kPillTextSize = 11;
inline constexpr int kPillBarsLeading = 18;
inline constexpr int kPillBarsToText = 12;
inline constexpr int kPillBarsInset = 6;
inline constexpr int kPillTextTrailing = 16;
inline constexpr int kPillTextMinWidth = 42;
inline constexpr Seconds kPillFadeIn{0.18};
inline constexpr Seconds kPillFadeOut{0.16};
inline constexpr Seconds kPillMove{0.12};
inline constexpr Seconds kPillBeat{0.16};
inline constexpr double kPillBeatScale = 1.015;
inline constexpr Seconds kPillFollowInterval{0.35};
inline constexpr Seconds kPillElapsedInterval{1.0};
inline const QColor kHintBackground = white(0.03, 0.94);
inline constexpr Shadow kPanelShadow{0.4, 12, 4};

// The main window around its cards.
inline const QColor kAccent = rgb(0.37, 0.33, 0.94);
inline const QColor kWindowBackground = rgb(0.965, 0.963, 0.985);
inline const QColor kDarkWindowBackground = rgb(0.125, 0.122, 0.145);
inline const QColor kAccentOnDark = rgb(0.69, 0.66, 1.0);
inline constexpr double kFocusRingWidth = 2;
inline constexpr int kHeaderHeight = 236;
inline constexpr int kHeaderFadeHeight = 18;
inline constexpr int kStackTop = 76;

// Accordion cards.
inline const QColor kCardBackground = white(1);
inline const QColor kCardBorder = rgb(0.89, 0.88, 0.97);
inline constexpr double kCardBorderWidth = 1;
inline constexpr double kCardCornerRadius = 10;
inline constexpr Shadow kCardShadow{0.07, 18, 7};
inline constexpr int kCardHeaderHeight = 62;
inline constexpr int kCardHeaderCentre = 31;
inline constexpr int kCardSpacing = 10;
inline constexpr int kBadgeSize = 32;
inline constexpr int kBadgeLeading = 16;
inline constexpr int kBadgeSymbolSize = 22;
inline constexpr double kBadgeCornerRadius = 8;
inline constexpr double kBadgeBackgroundAlpha = 0.12;
inline constexpr int kBadgeToText = 14;
inline constexpr int kTextToChevron = 12;
inline constexpr int kChevronSize = 18;
inline constexpr double kChevronSymbolSize = 14;
inline constexpr int kChevronTrailing = 20;
inline constexpr int kContentTop = 14;
inline constexpr int kContentSide = 20;
inline constexpr int kContentBottom = 12;
inline constexpr double kSectionTitleSize = 14;
inline constexpr double kSectionSubtitleSize = 10.5;
inline constexpr double kSectionTitleAlpha = 0.92;
inline constexpr double kSectionSubtitleAlpha = 0.5;
inline constexpr double kChevronAlpha = 0.66;
inline constexpr Seconds kAccordionDuration{0.2};
inline const QEasingCurve kAccordionCurve = curve::cubic(0.2, 0, 0.2, 1);

// Toasts.
inline const QColor kToastBackground = white(0.1, 0.94);
inline const QColor kToastSymbol = rgb(0.45, 0.4, 1.0);
inline const QColor kToastEdgeOnDark = white(1, 0.18);
inline const QColor kToastText = white(1);
inline constexpr Shadow kToastShadow{0.18, 18, 6};
inline constexpr double kToastCornerRadius = 13;
inline constexpr int kToastHeight = 30;
inline constexpr int kToastTop = 82;
inline constexpr int kToastSide = 12;
inline constexpr int kToastSymbolSize = 14;
inline constexpr int kToastSymbolToText = 7;
inline constexpr double kToastTextSize = 11;
inline constexpr Seconds kToastFadeIn{0.12};
inline constexpr Seconds kToastFadeOut{0.18};
inline constexpr Seconds kToastShown{1.2};

// Permission rows.
inline const QColor kRowBackground = white(0.985);
inline const QColor kRowBorder = rgb(0.9, 0.89, 0.98);
inline const QColor kRowTitle = white(0.1);
inline const QColor kRowDetail = white(0.43);
inline constexpr double kRowDimmedActionAlpha = 0.5;
inline constexpr double kRowBorderWidth = 1;
inline constexpr double kRowCornerRadius = 9;
inline constexpr int kRowHeight = 54;
inline constexpr int kRowSpacing = 8;
inline constexpr int kRowSide = 12;
inline constexpr int kRowIconSize = 18;
inline constexpr int kRowGap = 10;
inline constexpr int kRowStatusSpacing = 5;
inline constexpr int kRowDotSize = 6;
inline constexpr int kRowButtonWidth = 66;
inline constexpr int kRowButtonHeight = 24;
inline constexpr double kRowTitleSize = 12;
inline constexpr double kRowTextSize = 10;
inline constexpr double kHintTextSize = 10;
inline constexpr double kHintTextAlpha = 0.52;
inline constexpr int kHintMaxLines = 3;

// Transcript history.
inline const QColor kHistoryHighlight = rgb(0.94, 0.92, 1.0);
inline constexpr double kHistoryHighlightAlpha = 0.82;
inline constexpr double kHistoryHighlightRadius = 10;
inline constexpr int kHistoryHighlightSideInset = 2;
inline constexpr int kHistoryHighlightEndInset = 3;
inline constexpr Seconds kHistoryFlashIn{0.18};
inline constexpr Seconds kHistoryFlashShown{0.68};
inline constexpr Seconds kHistoryFlashOut{0.48};
inline constexpr double kHistoryTextSize = 12;
inline constexpr double kHistoryDateSize = 10;
inline constexpr int kHistoryTextLines = 2;
inline constexpr int kHistoryTextToDate = 2;
inline constexpr int kHistoryTextToButton = 5;
inline constexpr int kHistoryRowHeight = 60;
inline constexpr int kHistoryRowSide = 12;
inline constexpr int kHistoryTableHeight = 270;
inline constexpr int kHistoryButtonSize = 24;
inline constexpr double kHistoryButtonSymbolSize = 15;
inline constexpr int kHistorySpacing = 8;
inline constexpr double kHistorySelectionAlpha = 0.08;
inline const QColor kHistoryDeleteGround = rgb(0.85, 0.16, 0.16);
inline const QColor kHistoryDeleteText = white(1);

// Fields to type in.
inline const QColor kFieldBackground = white(1);
inline const QColor kFieldBorder = rgb(0.82, 0.81, 0.9);
inline constexpr double kFieldCornerRadius = 7;
inline constexpr int kFieldHeight = 28;
inline constexpr double kFieldTextSize = 12;
// Settings: fields, switches and pop-ups.
inline const QColor kSeparator = rgb(0.62, 0.61, 0.7);
inline const QColor kShellBackground = white(1);
inline constexpr double kShellBorderWidth = 0.5;
inline constexpr double kShellCornerRadius = 6;
inline constexpr int kShellHeight = 28;
inline constexpr int kShellSide = 8;
inline constexpr int kShellEnd = 4;
inline constexpr double kSettingTextSize = 12;
inline constexpr double kSettingTextAlpha = 0.92;
inline constexpr double kSettingDisabledAlpha = 0.4;
inline constexpr double kSettingNoteSize = 10;
inline constexpr double kSettingNoteAlpha = 0.5;
inline constexpr double kExplanationAlpha = 0.72;
inline constexpr int kCleanupSpacing = 10;
inline constexpr int kCheckBoxSize = 14;
inline constexpr double kCheckBoxRadius = 4;
inline constexpr int kCheckBoxToText = 7;
inline constexpr int kPopUpWidth = 120;
inline constexpr int kPopUpSymbolSize = 10;
inline constexpr int kLanguageRowHeight = 28;
inline constexpr int kLanguageRowSpacing = 8;
inline constexpr int kLanguageLabelWidth = 44;
inline constexpr double kLanguageLabelAlpha = 0.68;

// Corrections.
inline const QColor kIndigo = rgb(0.345, 0.337, 0.839);
inline constexpr double kAddCorrectionAlpha = 0.92;
inline constexpr double kCaptionTextSize = 10;
inline constexpr double kCaptionAlpha = 0.6;
inline constexpr int kCaptionHeight = 16;
inline constexpr int kCorrectionsSpacing = 6;
inline constexpr int kCorrectionGap = 32;
inline constexpr int kVariationSpacing = 4;
inline constexpr int kGroupSpacing = 8;
inline constexpr int kCorrectionButtonSize = 18;
inline constexpr double kCorrectionSymbolSize = 10;
inline constexpr double kCorrectionSymbolAlpha = 0.5;

/// The desktop's interface font in this size, fractions included.
[[nodiscard]] QFont font(double size, FontWeight weight = FontWeight::regular);

/// Whether the desktop asks for light text on dark ground.
[[nodiscard]] bool isDark(const QPalette& palette);

/// The ground of the main window on this desktop.
[[nodiscard]] QColor windowBackground(const QPalette& palette);

/// The desktop's text colour where it can be read on the background, else black or white.
[[nodiscard]] QColor labelColor(const QPalette& palette, const QColor& background);

/// The same colour as faint as is wanted, but not fainter than can be read.
[[nodiscard]] QColor readableLabelColor(const QPalette& palette, const QColor& background,
                                        double wantedAlpha);

/// The accent colour, lightened where the background is dark.
[[nodiscard]] QColor accentOn(const QColor& background);

/// What controls on a card are painted with: dark on white, whatever the desktop prefers.
[[nodiscard]] QPalette cardPalette(const QPalette& desktop);

} // namespace theme

} // namespace tovik

// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/Window/MainWindowSections.h"

namespace tovik {

namespace {

constexpr Rgba kAccent{0.37, 0.33, 0.94};
constexpr Rgba kIndigo{0.345, 0.337, 0.839};
constexpr Rgba kGreen{0.15, 0.66, 0.28};
constexpr Rgba kBlue{0.0, 0.478, 1.0};
constexpr Rgba kOrange{0.93, 0.5, 0.12};

} // namespace

std::vector<SectionHeader> mainWindowSections(bool hasPendingPermissions) {
    std::vector<SectionHeader> sections{
        {kCorrectionsSection, "Review and fix transcript errors", "sparkles", kIndigo},
        {kCleanupSection, "Remove filler words, pauses, and more", "paintbrush.fill", kGreen},
        {kTranslationSection, "Translate your transcript", "globe", kBlue},
        {kHistorySection, "View and manage past transcripts", "doc.text", kOrange},
    };
    sections.insert(
        hasPendingPermissions ? sections.begin() : sections.end(),
        {kPermissionsSection, "Check access and grant what is missing", "checkmark.shield.fill", kAccent});
    return sections;
}

} // namespace tovik

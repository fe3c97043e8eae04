// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include <string>

class QWidget;

namespace tovik {

/// Says in a sentence or two what a section's matter does today and where its settings are kept. For sections
/// that have no controls yet. An unknown title gives an empty note.
[[nodiscard]] QWidget* makeSectionNote(const std::string& sectionTitle);

} // namespace tovik

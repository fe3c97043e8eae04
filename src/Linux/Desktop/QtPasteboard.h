// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/Workspace.h"

namespace tovik {

/// Holds the text in the clipboard and, where there is one, in the primary selection: some programs paste
/// from the one and some from the other. After the QGuiApplication.
class QtPasteboard : public Pasteboard {
public:
    void replaceContents(std::string_view text) override;
};

} // namespace tovik

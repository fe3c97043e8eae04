// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/Workspace.h"

#include <memory>

namespace tovik {

/// Holds the text in the clipboard and, where there is one, in the primary selection: some programs paste
/// from the one and some from the other. Should another program have copied in the same moment, ours follows
/// within the next rounds of the event loop. After the QGuiApplication.
class QtPasteboard : public Pasteboard {
public:
    QtPasteboard();
    ~QtPasteboard() override;

    void replaceContents(std::string_view text) override;

private:
    class ServerTime;

    /// None where the window system is not X.
    std::unique_ptr<ServerTime> serverTime_;
};

} // namespace tovik

// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/UserInterface.h"
#include "Platform/Workspace.h"

#include <optional>
#include <string>
#include <string_view>

namespace tovik {

/// The ways to the maker's web site. Main thread.
class MakerLinks {
public:
    static constexpr std::string_view kWebHost = "tovik.example";

    MakerLinks(Workspace& workspace, MainWindow& mainWindow, std::string_view webHost = kWebHost);

    void openTovikVoiceUpdates();
    /// Tells the user nothing, whether it works or not.
    void openTovikAIWebsite();

private:
    /// Nothing when the host is none that an address can name.
    [[nodiscard]] std::optional<std::string> url(std::string_view pathAndFragment) const;

    Workspace& workspace_;
    MainWindow& mainWindow_;
    const std::string webHost_;
};

} // namespace tovik

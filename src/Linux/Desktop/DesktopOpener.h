// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/MainQueue.h"
#include "Platform/Subscription.h"
#include "Platform/UserInterface.h"
#include "Platform/Workspace.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tovik {

/// Gives an address or a path to the desktop's opener, which goes on by itself. False when there is no
/// opener, or when the text is empty or would be an option to it.
///
/// QDesktopServices knows no "gio open", looks for browsers instead of failing, and lets what it starts write
/// into our output.
bool openOnDesktop(const std::string& addressOrPath);

/// A program with what it is told.
struct SettingsCommand {
    std::string program;
    std::vector<std::string> arguments;

    bool operator==(const SettingsCommand&) const = default;
};

/// The page of a desktop's own settings that stands for a privacy pane; nothing for an address that is none,
/// or where no fitting program is installed. desktops: the names in XDG_CURRENT_DESKTOP.
[[nodiscard]] std::optional<SettingsCommand>
settingsCommand(std::string_view paneAddress, const std::vector<std::string>& desktops,
                const std::function<bool(const std::string& program)>& isInstalled);

/// Opens what the program wants opened: for the addresses of privacy panes, which no Linux desktop knows, the
/// desktop's settings, after telling what is wrong; for everything else the desktop's opener. Main thread.
class DesktopOpener {
public:
    struct Services {
        MainQueue& queue;
        Alert& alert;
        ProcessLauncher& launcher;
        std::vector<std::string> desktops;
        std::function<bool(const std::string& program)> isInstalled;
        /// What is wrong with the microphone and how to mend it; empty when nothing is.
        std::function<std::string()> microphoneExplanation;
        /// Stands for the page on speech recognition, which no desktop has: asks the user again what he did
        /// not allow. May be none.
        std::function<void()> reconsiderSpeech = nullptr;
        /// Takes everything that is no pane.
        std::function<bool(const std::string& addressOrPath)> openElse = openOnDesktop;
    };

    /// The services outlive the opener.
    explicit DesktopOpener(Services services);

    /// When there is something to explain, a question on the main queue comes first and the settings open if
    /// the user wants them. False when nothing on this desktop takes it.
    bool open(const std::string& addressOrPath);

private:
    bool openPane(std::string_view address);
    void reconsiderSpeech();
    void explainThenOpen(const std::optional<SettingsCommand>& command);
    [[nodiscard]] bool launch(const SettingsCommand& command);

    const Services services_;
    bool isExplaining_ = false;
    Lifetime lifetime_;
};

} // namespace tovik

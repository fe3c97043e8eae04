// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/Alert.h"
#include "Platform/Lifetime.h"
#include "Platform/MainQueue.h"
#include "Platform/ProcessLauncher.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tovik {

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

/// Opens the desktop's settings for the addresses of privacy panes, and tells what is wrong before. Main
/// thread.
class SettingsPanes {
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
    };

    /// The services outlive the panes.
    explicit SettingsPanes(Services services);

    [[nodiscard]] static bool isPaneAddress(std::string_view address);

    /// When there is something to explain, a question on the main queue comes first and the settings open if
    /// the user wants them. False when this desktop has no settings to open.
    bool open(const std::string& paneAddress);

private:
    void reconsiderSpeech();
    void explainThenOpen(const std::optional<SettingsCommand>& command);
    [[nodiscard]] bool launch(const SettingsCommand& command);

    const Services services_;
    bool isExplaining_ = false;
    Lifetime lifetime_;
};

} // namespace tovik

// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Linux/Desktop/DesktopOpener.h"

#include <QProcess>
#include <QStandardPaths>

#include <algorithm>
#include <array>
#include <utility>

namespace tovik {

namespace {

struct Opener {
    const char* program;
    QStringList leadingArguments;
};

constexpr std::string_view kPanePrefix = "x-apple.systempreferences:com.apple.preference.security?";
constexpr std::string_view kMicrophoneAnchor = "Privacy_Microphone";
constexpr std::string_view kSpeechAnchor = "Privacy_SpeechRecognition";
constexpr std::string_view kAccessibilityAnchor = "Privacy_Accessibility";
constexpr int kOpenSettingsButton = 0;

struct Page {
    std::string_view anchor;
    /// Empty for programs that feel at home on every desktop.
    std::string_view desktop;
    const char* program;
    const char* argument;
};

// In the order of preference. Speech recognition has no page on any desktop.
constexpr Page kPages[] = {
    {kMicrophoneAnchor, "GNOME", "gnome-control-center", "sound"},
    {kMicrophoneAnchor, "KDE", "systemsettings", "kcm_pulseaudio"},
    {kMicrophoneAnchor, "KDE", "systemsettings5", "kcm_pulseaudio"},
    {kMicrophoneAnchor, "X-Cinnamon", "cinnamon-settings", "sound"},
    {kMicrophoneAnchor, "MATE", "mate-volume-control", nullptr},
    {kMicrophoneAnchor, "LXQt", "pavucontrol-qt", nullptr},
    {kMicrophoneAnchor, "", "pavucontrol", nullptr},
    {kMicrophoneAnchor, "", "pavucontrol-qt", nullptr},
    {kAccessibilityAnchor, "GNOME", "gnome-control-center", "keyboard"},
    {kAccessibilityAnchor, "KDE", "systemsettings", "kcm_keys"},
    {kAccessibilityAnchor, "KDE", "systemsettings5", "kcm_keys"},
    {kAccessibilityAnchor, "XFCE", "xfce4-keyboard-settings", nullptr},
    {kAccessibilityAnchor, "X-Cinnamon", "cinnamon-settings", "keyboard"},
    {kAccessibilityAnchor, "MATE", "mate-keyboard-properties", nullptr},
    {kAccessibilityAnchor, "LXQt", "lxqt-config-input", nullptr},
};

bool isPaneAddress(std::string_view address) {
    return address.starts_with(kPanePrefix);
}

std::string_view anchorOf(std::string_view address) {
    return isPaneAddress(address) ? address.substr(kPanePrefix.size()) : std::string_view();
}

} // namespace

bool openOnDesktop(const std::string& addressOrPath) {
    // An opener would take a leading dash for an option.
    if (addressOrPath.empty() || addressOrPath.front() == '-') {
        return false;
    }
    const std::array openers{Opener{"xdg-open", {}}, Opener{"gio", {"open"}}};
    for (const auto& opener : openers) {
        const auto program = QStandardPaths::findExecutable(opener.program);
        if (program.isEmpty()) {
            continue;
        }
        QProcess process;
        process.setProgram(program);
        process.setArguments(opener.leadingArguments + QStringList{QString::fromStdString(addressOrPath)});
        process.setStandardOutputFile(QProcess::nullDevice());
        process.setStandardErrorFile(QProcess::nullDevice());
        if (process.startDetached()) {
            return true;
        }
    }
    return false;
}

std::optional<SettingsCommand>
settingsCommand(std::string_view paneAddress, const std::vector<std::string>& desktops,
                const std::function<bool(const std::string& program)>& isInstalled) {
    const auto anchor = anchorOf(paneAddress);
    const auto fits = [&](const Page& page) {
        return page.anchor == anchor &&
               (page.desktop.empty() ||
                std::find(desktops.begin(), desktops.end(), page.desktop) != desktops.end()) &&
               isInstalled(page.program);
    };
    const auto* const page = std::find_if(std::begin(kPages), std::end(kPages), fits);
    if (page == std::end(kPages)) {
        return std::nullopt;
    }
    SettingsCommand command{page->program, {}};
    if (page->argument != nullptr) {
        command.arguments.emplace_back(page->argument);
    }
    return command;
}

DesktopOpener::DesktopOpener(Services services) : services_(std::move(services)) {}

bool DesktopOpener::launch(const SettingsCommand& command) {
    return services_.launcher.launch(command.program, command.arguments).ok();
}

bool DesktopOpener::open(const std::string& addressOrPath) {
    return isPaneAddress(addressOrPath) ? openPane(addressOrPath) : services_.openElse(addressOrPath);
}

bool DesktopOpener::openPane(std::string_view address) {
    if (anchorOf(address) == kSpeechAnchor && services_.reconsiderSpeech) {
        if (!std::exchange(isExplaining_, true)) {
            services_.queue.async(lifetime_.guard([this] { reconsiderSpeech(); }));
        }
        return true;
    }
    const auto command = settingsCommand(address, services_.desktops, services_.isInstalled);
    if (anchorOf(address) == kMicrophoneAnchor && !services_.microphoneExplanation().empty()) {
        // One question is enough, however often the talk key is pressed meanwhile.
        if (!std::exchange(isExplaining_, true)) {
            services_.queue.async(lifetime_.guard([this, command] { explainThenOpen(command); }));
        }
        return command.has_value();
    }
    return command && launch(*command);
}

void DesktopOpener::reconsiderSpeech() {
    services_.reconsiderSpeech();
    isExplaining_ = false;
}

void DesktopOpener::explainThenOpen(const std::optional<SettingsCommand>& command) {
    const auto wrong = services_.microphoneExplanation();
    const auto buttons =
        command ? std::vector<std::string>{"Open Settings", "Not Now"} : std::vector<std::string>{"Close"};
    const bool wanted = wrong.empty() || services_.alert.runModal("Tovik Record cannot hear you", wrong,
                                                                  buttons) == kOpenSettingsButton;
    isExplaining_ = false;
    if (command && wanted && !launch(*command)) {
        static_cast<void>(services_.alert.runModal("The settings could not be opened",
                                                   "Start " + command->program + " yourself.", {"Close"}));
    }
}

} // namespace tovik

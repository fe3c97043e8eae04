// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Linux/Desktop/SettingsWorkspace.h"

#include <utility>

namespace tovik {

SettingsWorkspace::SettingsWorkspace(Workspace& workspace, SettingsPanes& panes)
    : workspace_(workspace),
      panes_(panes) {}

std::optional<RunningApplication> SettingsWorkspace::frontmostApplication() const {
    return workspace_.frontmostApplication();
}

RunningApplication SettingsWorkspace::currentApplication() const {
    return workspace_.currentApplication();
}

bool SettingsWorkspace::isRunning(const RunningApplication& application) const {
    return workspace_.isRunning(application);
}

Subscription SettingsWorkspace::onActivation(std::function<void(const RunningApplication&)> handler) {
    return workspace_.onActivation(std::move(handler));
}

Subscription SettingsWorkspace::onActiveSpaceChanged(std::function<void()> handler) {
    return workspace_.onActiveSpaceChanged(std::move(handler));
}

void SettingsWorkspace::hideSelf() {
    workspace_.hideSelf();
}

void SettingsWorkspace::deactivateSelf() {
    workspace_.deactivateSelf();
}

bool SettingsWorkspace::activate(const RunningApplication& application, unsigned options) {
    return workspace_.activate(application, options);
}

bool SettingsWorkspace::openUrl(const std::string& address) {
    return SettingsPanes::isPaneAddress(address) ? panes_.open(address) : workspace_.openUrl(address);
}

bool SettingsWorkspace::openFile(const std::string& path) {
    return workspace_.openFile(path);
}

} // namespace tovik

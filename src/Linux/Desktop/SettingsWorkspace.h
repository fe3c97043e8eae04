// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Linux/Desktop/SettingsPanes.h"
#include "Platform/Workspace.h"

namespace tovik {

/// A workspace that knows the addresses of privacy panes, which no Linux desktop does by itself. Everything
/// else goes to the real one.
class SettingsWorkspace : public Workspace {
public:
    /// Both outlive it.
    SettingsWorkspace(Workspace& workspace, SettingsPanes& panes);

    [[nodiscard]] std::optional<RunningApplication> frontmostApplication() const override;
    [[nodiscard]] RunningApplication currentApplication() const override;
    [[nodiscard]] bool isRunning(const RunningApplication& application) const override;
    [[nodiscard]] Subscription onActivation(std::function<void(const RunningApplication&)> handler) override;
    [[nodiscard]] Subscription onActiveSpaceChanged(std::function<void()> handler) override;
    void hideSelf() override;
    void deactivateSelf() override;
    bool activate(const RunningApplication& application, unsigned options) override;
    bool openUrl(const std::string& address) override;
    bool openFile(const std::string& path) override;

private:
    Workspace& workspace_;
    SettingsPanes& panes_;
};

} // namespace tovik

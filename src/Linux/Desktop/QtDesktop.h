// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/Screens.h"
#include "Platform/UserInterface.h"
#include "Platform/Workspace.h"

#include <optional>
#include <string>
#include <vector>

// The smaller ports that Qt answers by itself.

namespace tovik {

/// The monitors as Qt knows them. After the QGuiApplication.
class QtScreens : public Screens {
public:
    /// The primary monitor.
    [[nodiscard]] std::optional<Screen> mainScreen() const override;
    [[nodiscard]] std::vector<Screen> screens() const override;
    [[nodiscard]] Point pointerLocation() const override;
};

/// Questions as message boxes. The first button is the default one. After the QApplication; when that quits
/// while a question is open, the question counts as closed without an answer.
class QtAlert : public Alert {
public:
    int runModal(const std::string& message, const std::string& informativeText,
                 const std::vector<std::string>& buttons) override;
};

/// Starts programs in a session of their own, under the name given or found in PATH. They inherit standard
/// output and error, no other file, and no signal that is blocked here.
class QtProcessLauncher : public ProcessLauncher {
public:
    /// Fails when the program cannot be started, also when that shows only at the very start.
    Result<void> launch(const std::string& executable, const std::vector<std::string>& arguments) override;
};

} // namespace tovik

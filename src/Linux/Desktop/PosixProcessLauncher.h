// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/Workspace.h"

namespace tovik {

/// Starts programs in a session of their own, under the name given or found in PATH. They inherit standard
/// output and error, no other file, and no signal setting of this program.
///
/// QProcess::startDetached would hand down every open file, and cannot say why a program did not start.
class PosixProcessLauncher : public ProcessLauncher {
public:
    /// Fails when the program cannot be started, also when that shows only at the very start.
    Result<void> launch(const std::string& executable, const std::vector<std::string>& arguments) override;
};

} // namespace tovik

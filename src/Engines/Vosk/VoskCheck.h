// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/Result.h"

#include <string>

namespace tovik {

/// Whether a Vosk model can be used, found out by another program that loads it and has it hear a second of
/// sound: over some broken models the library ends its process, and from others it never comes back.
class VoskCheck {
public:
    /// program: the tovik-check-vosk to run.
    explicit VoskCheck(std::string program) : program_(std::move(program)) {}

    /// The one in the folder of the running program.
    [[nodiscard]] static std::string besideThisProgram();

    /// Takes as long as loading the model and a little more, and an end even when the library hangs. The
    /// error is a sentence for the user. Any thread, which must outlive the call: the other program ends with
    /// it.
    [[nodiscard]] Result<void> run(const std::string& library, const std::string& modelFolder) const;

private:
    std::string program_;
};

} // namespace tovik

// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>

namespace tovik {

/// Whether the model definition, the file that names the sounds of an acoustic model, is whole: the library
/// believes every number in it, and ends the process or never ends when one is wrong.
[[nodiscard]] bool isWholeModelDefinition(const std::filesystem::path& file);

} // namespace tovik

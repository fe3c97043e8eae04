// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Engines/Host/UtteranceDecoder.h"

#include <functional>
#include <memory>

namespace tovik {

/// Loads a decoder and has it do what comes in on standard input, as Protocol.h says, until that ends; the
/// whole life of tovik-engine and of programs that stand in for it in tests. Ends the process at the end,
/// without any clearing up, since nobody knows what a library would do on its way out.
///
/// Loading is done at a lower priority, so that a big model does not hold up the desktop; decoding is not.
/// What a library writes to standard output goes to standard error. The process dies with the thread that has
/// started it.
[[noreturn]] void serveDecoder(const std::function<Result<std::unique_ptr<UtteranceDecoder>>()>& load);

} // namespace tovik

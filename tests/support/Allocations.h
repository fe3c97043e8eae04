// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

namespace tovik::test {

/// How often the calling thread has allocated memory so far. A program that asks this has every one of its
/// allocations counted.
[[nodiscard]] long allocationsOfThisThread();

} // namespace tovik::test

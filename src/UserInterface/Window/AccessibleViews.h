// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

namespace tovik {

/// Tells assistive programs what kind of thing this program's own views are: pictures, and buttons that open
/// and close something. Once, before the first of them is looked at; again is harmless.
void installAccessibleViews();

} // namespace tovik

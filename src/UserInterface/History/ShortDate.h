// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/Clock.h"

#include <QString>

namespace tovik {

/// Day and time in the short style of the user's locale and in the user's time zone.
[[nodiscard]] QString shortDateAndTime(Date date);

} // namespace tovik

// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/Clock.h"

namespace tovik {

/// The machine's own clock. Any thread.
class SystemClock : public Clock {
public:
    [[nodiscard]] Date now() const override;
    void pause(Seconds duration) override;
};

} // namespace tovik

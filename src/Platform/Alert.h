// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

namespace tovik {

/// A modal question with buttons. Main thread.
class Alert {
public:
    virtual ~Alert() = default;

    /// Returns the index of the button chosen, or -1 when the alert was closed without one.
    virtual int runModal(const std::string& message, const std::string& informativeText,
                         const std::vector<std::string>& buttons) = 0;
};

} // namespace tovik

// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "support/SessionBus.h"

#include <QProcess>

#include <string>

namespace tovik::test {

/// A real, unlocked key ring on a session bus of a test's own, in a temporary folder; the user's own key ring
/// is never touched. Needs what the bus needs, and gnome-keyring.
class KeyRing {
public:
    /// Returns when it answers. Throws when it does not.
    KeyRing();
    ~KeyRing();
    KeyRing(const KeyRing&) = delete;
    KeyRing& operator=(const KeyRing&) = delete;

    /// Ends the key ring, and leaves the bus without one.
    void kill();
    void start();
    /// It neither answers nor ends until thaw().
    void freeze();
    void thaw();

    /// Runs the desktop's own tool for secrets with this input and gives its output. Throws when it fails.
    std::string secretTool(const std::vector<std::string>& arguments, const std::string& input = {}) const;

private:
    [[nodiscard]] bool answers() const;

    SessionBus bus_;
    QProcess keyRing_;
};

} // namespace tovik::test

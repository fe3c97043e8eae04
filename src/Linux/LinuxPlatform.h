// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/Platform.h"
#include "Platform/Subscription.h"
#include "Platform/SystemLog.h"

#include <functional>
#include <memory>

namespace tovik {

/// The Linux desktop: every port of the program with its real adapter, made and joined here, once. Main
/// thread, after the QApplication.
class LinuxPlatform {
public:
    /// terminate asks the program to end. The log outlives the platform.
    LinuxPlatform(SystemLog& log, std::function<void()> terminate);
    ~LinuxPlatform();
    LinuxPlatform(const LinuxPlatform&) = delete;
    LinuxPlatform& operator=(const LinuxPlatform&) = delete;

    /// The ports; they go with this object.
    [[nodiscard]] const Platform& ports() const;

    /// Calls back once, on the main queue, when the sound server has told its devices and the desktop's
    /// portal who decides about the microphone, or when they take longer than a user should wait for the
    /// program.
    void whenSoundIsKnown(std::function<void()> callback);

    /// Tells whenever a permission has changed by itself.
    [[nodiscard]] Subscription onPermissionsChanged(std::function<void()> handler);

private:
    struct Adapters;

    std::unique_ptr<Adapters> adapters_;
};

} // namespace tovik

// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/Subscription.h"
#include "Platform/SystemLog.h"
#include "Platform/UserDefaults.h"

#include <memory>
#include <string>

class QSocketNotifier;

namespace tovik {

class FileWatch;

/// Watches the file of the settings. Where that cannot be, a line of the log says so, and changes by other
/// processes are seen when a setting is used or its section opened next.
///
/// On inotify itself, since QFileSystemWatcher tells of every single write, at which half of the file may be
/// there, of every other file in the folder, and not of a folder that another one has taken the place of.
class QtUserDefaultsChanges : public UserDefaultsChanges {
public:
    QtUserDefaultsChanges(const std::string& path, SystemLog& log);
    ~QtUserDefaultsChanges() override;
    QtUserDefaultsChanges(const QtUserDefaultsChanges&) = delete;
    QtUserDefaultsChanges& operator=(const QtUserDefaultsChanges&) = delete;

    [[nodiscard]] Subscription observe(std::function<void()> handler) override {
        return changed_.add(std::move(handler));
    }

private:
    std::unique_ptr<FileWatch> watch_;
    std::unique_ptr<QSocketNotifier> notifier_;
    Observers<> changed_;
};

} // namespace tovik

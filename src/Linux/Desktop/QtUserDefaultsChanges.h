// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/Posix.h"
#include "Platform/Result.h"
#include "Platform/Subscription.h"
#include "Platform/SystemLog.h"
#include "Platform/UserDefaults.h"

#include <memory>
#include <string>
#include <vector>

class QSocketNotifier;

namespace tovik {

/// Watches the file of the settings, by whatever way it changes: written in place, replaced, removed, or
/// reached through a link that leads elsewhere. Where it cannot be watched, a line of the log says so, and
/// changes by other processes are seen when a setting is used or its section opened next.
///
/// On inotify itself, since QFileSystemWatcher tells of every single write, at which half of the file may be
/// there, of every other file in the folder, and not of a folder that another one has taken the place of.
class QtUserDefaultsChanges : public UserDefaultsChanges {
public:
    /// Creates the file's folder when it is missing.
    QtUserDefaultsChanges(std::string path, SystemLog& log);
    ~QtUserDefaultsChanges() override;
    QtUserDefaultsChanges(const QtUserDefaultsChanges&) = delete;
    QtUserDefaultsChanges& operator=(const QtUserDefaultsChanges&) = delete;

    [[nodiscard]] Subscription observe(std::function<void()> handler) override {
        return changed_.add(std::move(handler));
    }

private:
    /// A file by its name in a watched folder, which stays when the file is replaced.
    struct Place {
        int watch;
        std::string name;
    };

    [[nodiscard]] Result<void> start();
    [[nodiscard]] Result<void> watchPlaces();
    [[nodiscard]] Result<void> watchFile(const std::string& file);
    void takeNotices();

    const std::string path_;
    UnixFd inotify_;
    /// The path itself and, when that is a link, where it leads.
    std::vector<Place> places_;
    std::unique_ptr<QSocketNotifier> notifier_;
    Observers<> changed_;
};

} // namespace tovik

// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Linux/Storage/FileWatch.h"
#include "Platform/SystemLog.h"
#include "Platform/UserDefaultsChanges.h"

#include <map>
#include <memory>
#include <optional>
#include <string>

class QSocketNotifier;

namespace tovik {

/// Watches the file of the settings. Where that cannot be, a line of the log says so, and changes by other
/// processes are seen when a setting is used or its section opened next.
class QtUserDefaultsChanges : public UserDefaultsChanges {
public:
    QtUserDefaultsChanges(const std::string& path, SystemLog& log);
    ~QtUserDefaultsChanges() override;
    QtUserDefaultsChanges(const QtUserDefaultsChanges&) = delete;
    QtUserDefaultsChanges& operator=(const QtUserDefaultsChanges&) = delete;

    [[nodiscard]] Subscription observe(std::function<void()> handler) override;

private:
    using Handlers = std::map<int, std::function<void()>>;

    void takeChanges();

    std::optional<FileWatch> watch_;
    std::unique_ptr<QSocketNotifier> notifier_;
    /// Shared with the tokens, which may outlive this.
    std::shared_ptr<Handlers> handlers_ = std::make_shared<Handlers>();
    int lastHandler_ = 0;
};

} // namespace tovik

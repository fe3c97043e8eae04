// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/MainQueue.h"
#include "Platform/UserDefaults.h"

#include <memory>

namespace tovik {

/// The desktop's secret service, which GNOME's and KDE's key rings offer. Each secret carries the attributes
/// "application" ("tovik-record") and "name", by which `secret-tool` finds it as well.
///
/// Asked on a thread: the library's asynchronous calls need GLib's event loop, and Qt's is another one where
/// Qt was built or told to do without.
class LibsecretStore : public SecretStore {
public:
    explicit LibsecretStore(MainQueue& queue);
    /// Gives up what is still asked for.
    ~LibsecretStore() override;

    void lookUp(const std::string& name,
                std::function<void(const Result<std::optional<std::string>>&)> completion) override;

private:
    class Worker;

    std::unique_ptr<Worker> worker_;
};

} // namespace tovik

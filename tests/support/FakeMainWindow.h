// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/MainWindow.h"

#include <functional>
#include <string>
#include <vector>

namespace tovik::test {

/// Remembers what the settings window was asked to do.
class FakeMainWindow : public MainWindow {
public:
    ~FakeMainWindow() override {
        if (onEnd) {
            onEnd();
        }
    }

    void present() override;
    void showSavedToast(const std::string& text) override;
    void reloadHistoryTable() override;
    void refreshPermissions() override;

    /// "present", "toast: <text>", "reloadHistoryTable", "refreshPermissions", in the order of the calls.
    [[nodiscard]] const std::vector<std::string>& calls() const { return calls_; }
    void forgetCalls();
    [[nodiscard]] const std::vector<std::string>& toasts() const { return toasts_; }
    [[nodiscard]] int presented() const { return presented_; }
    [[nodiscard]] int historyReloads() const { return historyReloads_; }
    [[nodiscard]] int permissionRefreshes() const { return permissionRefreshes_; }

    /// Called with the same texts as they come, to join them with other calls in one record.
    void onCall(std::function<void(const std::string&)> observer) { observer_ = std::move(observer); }

    /// Called when the window ends.
    std::function<void()> onEnd;

private:
    void note(std::string call);

    std::vector<std::string> calls_;
    std::vector<std::string> toasts_;
    int presented_ = 0;
    int historyReloads_ = 0;
    int permissionRefreshes_ = 0;
    std::function<void(const std::string&)> observer_;
};

} // namespace tovik::test

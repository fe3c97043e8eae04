// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/MainWindow.h"

#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace tovik::test {

/// Remembers what the main window is asked to do: by the requests that it was made for, or by its own.
class FakeMainWindow : public MainWindow, public MainWindowOnScreen {
public:
    FakeMainWindow() { follow(*this); }
    explicit FakeMainWindow(MainWindow& requests) { follow(requests); }
    ~FakeMainWindow() override {
        if (onEnd) {
            onEnd();
        }
    }

    /// "present", "toast: <text>", "reloadHistoryTable", "refreshPermissions", in the order of the calls.
    [[nodiscard]] const std::vector<std::string>& calls() const { return calls_; }
    void forgetCalls() {
        calls_.clear();
        toasts_.clear();
        presented_ = 0;
        historyReloads_ = 0;
        permissionRefreshes_ = 0;
    }
    [[nodiscard]] const std::vector<std::string>& toasts() const { return toasts_; }
    [[nodiscard]] int presented() const { return presented_; }
    [[nodiscard]] int historyReloads() const { return historyReloads_; }
    [[nodiscard]] int permissionRefreshes() const { return permissionRefreshes_; }

    /// Called with the same texts as they come, to join them with other calls in one record.
    void onCall(std::function<void(const std::string&)> observer) { observer_ = std::move(observer); }

    /// Called when the window ends.
    std::function<void()> onEnd;

private:
    void follow(MainWindow& requests) {
        subscriptions_.push_back(requests.present.add([this] {
            ++presented_;
            note("present");
        }));
        subscriptions_.push_back(requests.showSavedToast.add([this](const std::string& text) {
            toasts_.push_back(text);
            note("toast: " + text);
        }));
        subscriptions_.push_back(requests.reloadHistoryTable.add([this] {
            ++historyReloads_;
            note("reloadHistoryTable");
        }));
        subscriptions_.push_back(requests.refreshPermissions.add([this] {
            ++permissionRefreshes_;
            note("refreshPermissions");
        }));
    }

    void note(std::string call) {
        calls_.push_back(std::move(call));
        if (observer_) {
            observer_(calls_.back());
        }
    }

    std::vector<std::string> calls_;
    std::vector<std::string> toasts_;
    int presented_ = 0;
    int historyReloads_ = 0;
    int permissionRefreshes_ = 0;
    std::function<void(const std::string&)> observer_;
    std::vector<Subscription> subscriptions_;
};

} // namespace tovik::test

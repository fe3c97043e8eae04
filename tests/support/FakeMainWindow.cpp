// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "support/FakeMainWindow.h"

namespace tovik::test {

void FakeMainWindow::note(std::string call) {
    calls_.push_back(std::move(call));
    if (observer_) {
        observer_(calls_.back());
    }
}

void FakeMainWindow::present() {
    ++presented_;
    note("present");
}

void FakeMainWindow::showSavedToast(const std::string& text) {
    toasts_.push_back(text);
    note("toast: " + text);
}

void FakeMainWindow::reloadHistoryTable() {
    ++historyReloads_;
    note("reloadHistoryTable");
}

void FakeMainWindow::refreshPermissions() {
    ++permissionRefreshes_;
    note("refreshPermissions");
}

void FakeMainWindow::forgetCalls() {
    calls_.clear();
    toasts_.clear();
    presented_ = 0;
    historyReloads_ = 0;
    permissionRefreshes_ = 0;
}

} // namespace tovik::test

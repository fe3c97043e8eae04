// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/MainWindow.h"

#include <memory>

namespace tovik {

/// Stands for the main window before it is built: until then every request does nothing.
class MainWindowSlot : public MainWindow {
public:
    void fill(std::unique_ptr<MainWindow> window) { window_ = std::move(window); }

    void present() override {
        if (window_) {
            window_->present();
        }
    }
    void showSavedToast(const std::string& text) override {
        if (window_) {
            window_->showSavedToast(text);
        }
    }
    void reloadHistoryTable() override {
        if (window_) {
            window_->reloadHistoryTable();
        }
    }
    void refreshPermissions() override {
        if (window_) {
            window_->refreshPermissions();
        }
    }

private:
    std::unique_ptr<MainWindow> window_;
};

} // namespace tovik

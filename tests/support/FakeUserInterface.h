// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/UserInterface.h"
#include "support/FakeHintPanels.h"
#include "support/FakeMainWindow.h"
#include "support/FakeRecordingOverlay.h"
#include "support/FakeStatusItem.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tovik::test {

/// Hands out fakes and keeps sight of them. They live as long as the program that asked for them.
class FakeUserInterface : public UserInterface {
public:
    [[nodiscard]] std::unique_ptr<StatusItem> makeStatusItem() override {
        note("makeStatusItem");
        auto made = std::make_unique<FakeStatusItem>(hasTray);
        statusItem = made.get();
        return made;
    }
    [[nodiscard]] std::unique_ptr<RecordingOverlay> makeRecordingOverlay() override {
        note("makeRecordingOverlay");
        auto made = std::make_unique<FakeRecordingOverlay>();
        overlay = made.get();
        return made;
    }
    [[nodiscard]] std::unique_ptr<HintPanels> makeHintPanels() override {
        note("makeHintPanels");
        auto made = std::make_unique<FakeHintPanels>();
        hintPanels = made.get();
        return made;
    }
    [[nodiscard]] std::unique_ptr<MainWindowOnScreen>
    makeMainWindow(const MainWindowContents& contents) override {
        note("makeMainWindow");
        windowContents.emplace(contents);
        auto made = std::make_unique<FakeMainWindow>(contents.requests);
        mainWindow = made.get();
        return made;
    }

    bool hasTray = true;
    FakeStatusItem* statusItem = nullptr;
    FakeRecordingOverlay* overlay = nullptr;
    FakeHintPanels* hintPanels = nullptr;
    FakeMainWindow* mainWindow = nullptr;
    std::optional<MainWindowContents> windowContents;
    /// Called with the name of each operation.
    std::function<void(const std::string&)> onCall;

private:
    void note(const std::string& call) const {
        if (onCall) {
            onCall(call);
        }
    }
};

} // namespace tovik::test

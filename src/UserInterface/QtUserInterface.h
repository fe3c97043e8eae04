// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/MainQueue.h"
#include "Platform/Screens.h"
#include "Platform/SystemLog.h"
#include "Platform/UserInterface.h"
#include "Platform/Workspace.h"
#include "UserInterface/Controls/WindowSystem.h"

#include <memory>

namespace tovik {

class QtStatusItem;

/// The program's windows and tray icon in Qt. After the QApplication; outlives what it makes.
class QtUserInterface : public UserInterface {
public:
    QtUserInterface(const Clock& clock, MainQueue& queue, const Screens& screens, Workspace& workspace,
                    SystemLog& log);

    [[nodiscard]] std::unique_ptr<StatusItem> makeStatusItem() override;
    [[nodiscard]] std::unique_ptr<RecordingOverlay> makeRecordingOverlay() override;
    [[nodiscard]] std::unique_ptr<HintPanels> makeHintPanels() override;
    [[nodiscard]] std::unique_ptr<MainWindowOnScreen>
    makeMainWindow(const MainWindowContents& contents) override;

private:
    const Clock& clock_;
    MainQueue& queue_;
    const Screens& screens_;
    Workspace& workspace_;
    SystemLog& log_;
    std::unique_ptr<Compositing> compositing_;
    /// The one made last; owned by whoever asked for it.
    QtStatusItem* statusItem_ = nullptr;
};

} // namespace tovik

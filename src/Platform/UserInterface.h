// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/HintPanels.h"
#include "Platform/MainWindow.h"
#include "Platform/Menu.h"
#include "Platform/RecordingOverlay.h"
#include "Platform/StatusItem.h"

#include <memory>

namespace tovik {

class FillerWords;
class MakerLinks;
class PermissionChecklist;
class PermissionRequests;
class TranscriptHistoryBrowser;
class TextTranslator;
class TranscriptionDictionary;
class UserDefaults;
class UserDefaultsChanges;

/// What the main window shows and leads to. All of it outlives the window.
struct MainWindowContents {
    /// What the window is asked to do while it is there.
    MainWindow& requests;
    PermissionChecklist& permissions;
    PermissionRequests& permissionRequests;
    TranscriptHistoryBrowser& history;
    UserDefaults& defaults;
    UserDefaultsChanges& defaultsChanges;
    TranscriptionDictionary& dictionary;
    FillerWords& fillerWords;
    const TextTranslator& translator;
    std::shared_ptr<Menu> statusMenu;
    MakerLinks& links;
};

/// Makes the program's windows. Main thread.
class UserInterface {
public:
    virtual ~UserInterface() = default;

    [[nodiscard]] virtual std::unique_ptr<StatusItem> makeStatusItem() = 0;
    [[nodiscard]] virtual std::unique_ptr<RecordingOverlay> makeRecordingOverlay() = 0;
    [[nodiscard]] virtual std::unique_ptr<HintPanels> makeHintPanels() = 0;
    /// Builds and shows the main window.
    [[nodiscard]] virtual std::unique_ptr<MainWindowOnScreen>
    makeMainWindow(const MainWindowContents& contents) = 0;
};

} // namespace tovik

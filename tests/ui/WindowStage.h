// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Permissions/PermissionChecklist.h"
#include "Permissions/PermissionRequests.h"
#include "Session/StatusMenu.h"
#include "Speech/History/TranscriptHistoryBrowser.h"
#include "Speech/History/TranscriptHistoryStore.h"
#include "Speech/Text/FinalTextChain.h"
#include "Speech/Text/TranscriptionDictionary.h"
#include "UserInterface/Window/MainWindowController.h"
#include "support/FakePlatform.h"
#include "support/FakeTextTranslator.h"

#include <QPoint>

#include <memory>
#include <vector>

namespace tovik::test {

/// A main window with the real permission logic on a desktop of fakes.
struct WindowStage : FakePlatform {
    TranscriptionDictionary dictionary{defaults, log};
    FillerWords fillerWords{defaults};
    FakeTextTranslator translator;
    /// What the program asks of the window.
    MainWindow mainWindow;
    /// How often the status menu, and the window, were to show the history anew.
    int historyReloads = 0;
    std::vector<QPoint> menuPopUps;

    PermissionChecklist checklist{authorization, platform.installLocations};
    PermissionRequests requests{platform, mainWindow, checklist};
    TranscriptHistoryStore history{defaults, time};
    TranscriptHistoryBrowser historyBrowser{history, pasteboard, mainWindow};
    MakerLinks links{workspace, mainWindow};
    Subscription countingReloads = mainWindow.reloadHistoryTable.add([this] { ++historyReloads; });
    std::unique_ptr<MainWindowController> controller;

    /// The desktop that the window asks for the front: the fake one, unless a test brings another.
    Workspace& desktop;

    explicit WindowStage(Workspace* realDesktop = nullptr)
        : desktop(realDesktop ? *realDesktop : workspace) {}

    /// Once the fakes stand as the test wants them.
    void build() {
        controller = std::make_unique<MainWindowController>(
            MainWindowController::Collaborators{time, time, screens, desktop,
                                                [this](const QPoint& at) { menuPopUps.push_back(at); }},
            MainWindowContents{.requests = mainWindow,
                               .permissions = checklist,
                               .permissionRequests = requests,
                               .history = historyBrowser,
                               .defaults = defaults,
                               .defaultsChanges = defaultsChanges,
                               .dictionary = dictionary,
                               .fillerWords = fillerWords,
                               .translator = translator,
                               .statusMenu = nullptr,
                               .links = links});
    }

    void leavePermissionsPending() {
        authorization.setMicrophoneStatus(2);
        authorization.setSpeechStatus(0);
        authorization.setTrusted(false);
    }
};

} // namespace tovik::test

// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Permissions/Installation.h"
#include "Permissions/PermissionChecklist.h"
#include "Permissions/PermissionRequests.h"
#include "Speech/History/TranscriptHistoryBrowser.h"
#include "Speech/History/TranscriptHistoryStore.h"
#include "Speech/Text/FillerWords.h"
#include "Speech/Text/TranscriptionDictionary.h"
#include "UserInterface/Window/MainWindowController.h"
#include "support/FakeAlert.h"
#include "support/FakeAuthorization.h"
#include "support/FakeFiles.h"
#include "support/FakePasteboard.h"
#include "support/FakeProcessLauncher.h"
#include "support/FakeScreens.h"
#include "support/FakeTextTranslator.h"
#include "support/FakeUserDefaultsChanges.h"
#include "support/FakeWorkspace.h"
#include "support/ManualTime.h"
#include "support/MemoryUserDefaults.h"
#include "support/RecordingLog.h"

#include <QPoint>

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace tovik::test {

/// A main window with the real permission logic on a desktop of fakes.
struct WindowStage {
    /// Lets the permission logic speak to a window that is made after it.
    struct Forward : MainWindow {
        void present() override { target->present(); }
        void showSavedToast(const std::string& text) override { target->showSavedToast(text); }
        void reloadHistoryTable() override { target->reloadHistoryTable(); }
        void refreshPermissions() override { target->refreshPermissions(); }
        MainWindow* target = nullptr;
    };

    ManualTime time;
    FakeScreens screens;
    FakeWorkspace workspace;
    FakeAuthorization authorization;
    FakeFiles files;
    FakeProcessLauncher launcher;
    FakeAlert alert;
    RecordingLog log;
    MemoryUserDefaults defaults;
    FakeUserDefaultsChanges defaultsChanges;
    FakePasteboard pasteboard;
    TranscriptionDictionary dictionary{defaults, log};
    FillerWords fillerWords{defaults};
    FakeTextTranslator translator;
    Forward forward;
    int historyMenuReloads = 0;
    /// What the status menu does when the history has changed, if there is one.
    std::function<void()> reloadHistoryMenu;
    std::vector<QPoint> menuPopUps;
    std::vector<std::string> openedLinks;

    PermissionChecklist checklist{authorization, macInstallLocations()};
    Installation installation{{authorization, files, workspace, launcher, alert, time, forward, [] {}},
                              macInstallLocations()};
    PermissionRequests requests{{authorization, time, log, workspace, forward, checklist, installation}};
    TranscriptHistoryStore history{defaults, time};
    TranscriptHistoryBrowser historyBrowser{history, pasteboard, forward};
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
            MainWindowContents{.permissions = checklist,
                               .permissionRequests = requests,
                               .history = historyBrowser,
                               .reloadTranscriptHistoryMenu =
                                   [this] {
                                       ++historyMenuReloads;
                                       if (reloadHistoryMenu) {
                                           reloadHistoryMenu();
                                       }
                                   },
                               .defaults = defaults,
                               .defaultsChanges = defaultsChanges,
                               .dictionary = dictionary,
                               .fillerWords = fillerWords,
                               .translator = translator,
                               .statusMenu = nullptr,
                               .openTovikVoiceUpdates = [this] { openedLinks.emplace_back("updates"); },
                               .openTovikAIWebsite = [this] { openedLinks.emplace_back("website"); }});
        forward.target = controller.get();
    }

    void leavePermissionsPending() {
        authorization.setMicrophoneStatus(2);
        authorization.setSpeechStatus(0);
        authorization.setTrusted(false);
    }
};

} // namespace tovik::test

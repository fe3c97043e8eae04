// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Permissions/Installation.h"
#include "Permissions/PermissionChecklist.h"
#include "Permissions/PermissionRequests.h"
#include "Session/TargetTracker.h"
#include "support/FakeAlert.h"
#include "support/FakeAuthorization.h"
#include "support/FakeFiles.h"
#include "support/FakeHintPanels.h"
#include "support/FakeKeyEventPoster.h"
#include "support/FakeMainWindow.h"
#include "support/FakePasteboard.h"
#include "support/FakeProcessLauncher.h"
#include "support/FakeRecorder.h"
#include "support/FakeRecordingOverlay.h"
#include "support/FakeScreens.h"
#include "support/FakeStatusItem.h"
#include "support/FakeWorkspace.h"
#include "support/ManualTime.h"
#include "support/MemoryUserDefaults.h"
#include "support/RecordingLog.h"

#include <gtest/gtest.h>

namespace tovik::test {

/// A desktop of fakes on which everything is granted, with an editor running.
class SessionFixture : public testing::Test {
protected:
    SessionFixture() { workspace.launch(editor); }

    const RunningApplication editor{"org.editor", 100, "Editor", 7};

    ManualTime time;
    RecordingLog log;
    MemoryUserDefaults defaults;
    FakeFiles files;
    FakeWorkspace workspace;
    FakeScreens screens;
    FakeAuthorization authorization;
    FakeMainWindow mainWindow;
    FakeStatusItem statusItem;
    FakeRecordingOverlay overlay;
    FakeHintPanels hintPanels;
    FakeRecorder recorder;
    FakePasteboard pasteboard;
    FakeKeyEventPoster poster;
    FakeAlert alert;
    FakeProcessLauncher launcher;

    TargetTracker targets{workspace};
    PermissionChecklist permissions{authorization, macInstallLocations()};
    Installation installation{{authorization, files, workspace, launcher, alert, time, mainWindow, [] {}},
                              macInstallLocations()};
    PermissionRequests permissionRequests{
        {authorization, time, log, workspace, mainWindow, permissions, installation}};
};

} // namespace tovik::test

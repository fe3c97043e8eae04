// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Permissions/PermissionChecklist.h"
#include "Permissions/PermissionRequests.h"
#include "Session/TranscriptDelivery.h"
#include "Speech/History/TranscriptHistoryStore.h"
#include "Speech/Text/TranscriptionDictionary.h"
#include "support/FakePlatform.h"
#include "support/FakeRecorder.h"
#include "support/FakeTextTranslator.h"

#include <gtest/gtest.h>

namespace tovik::test {

/// A desktop of fakes on which everything is granted, with an editor running.
class SessionFixture : public testing::Test, protected FakePlatform {
protected:
    SessionFixture() { workspace.launch(editor); }

    const RunningApplication editor{"org.editor", 100, "Editor", 7};

    FakeMainWindow mainWindow;
    FakeStatusItem statusItem;
    FakeRecordingOverlay overlay;
    FakeRecorder recorder;

    TargetTracker targets{workspace};
    PermissionChecklist permissions{authorization, platform.installLocations};
    PermissionRequests permissionRequests{platform, mainWindow, permissions};
};

/// A delivery with its real dictionary and history.
class DeliveryFixture : public SessionFixture {
protected:
    TranscriptionDictionary dictionary{defaults, log};
    TranscriptHistoryStore history{defaults, time};
    FakeTextTranslator translator;
    TranscriptDelivery delivery{platform,   mainWindow, permissionRequests, targets,
                                dictionary, history,    translator};
};

} // namespace tovik::test

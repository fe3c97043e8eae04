// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Audio/MacAudioManager.h"
#include "Session/PushToTalk.h"
#include "Session/StatusMenu.h"
#include "Session/TranscriptDelivery.h"
#include "UserInterface/StatusItem/QtMenu.h"
#include "ui/WindowStage.h"

#include <memory>
#include <vector>

namespace tovik::test {

/// The real status menu beside a staged main window, which has to be built first.
struct StatusMenuStage {
    explicit StatusMenuStage(WindowStage& windowStage) : window(windowStage) {}

    /// The first one is in use.
    void plugIn(const std::vector<CaptureDevice>& microphones) {
        window.devices.setDevices(microphones);
        window.devices.setDefaultDeviceId(microphones.front().uniqueId);
        recorder.refreshAudioDevices();
        window.time.runPending();
    }

    WindowStage& window;
    TargetTracker targets{window.workspace};
    TranscriptDelivery delivery{window.platform,   window.mainWindow, window.requests,  targets,
                                window.dictionary, window.history,    window.translator};
    FakeStatusItem statusItem;
    FakeRecordingOverlay overlay;
    MacAudioManager recorder{MacAudioManager::Ports{window.time, window.time, window.log, window.defaults,
                                                    window.engine, window.devices, window.hardware,
                                                    window.speech},
                             MacAudioManager::Callbacks{}};
    PushToTalk pushToTalk{window.platform, window.requests, targets, recorder, statusItem, overlay};
    StatusMenu menu{window.platform, window.mainWindow, recorder, pushToTalk,
                    delivery,        window.history,    [] {}};
    QtMenu shown{menu.menu()};
};

} // namespace tovik::test

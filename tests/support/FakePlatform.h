// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Permissions/Installation.h"
#include "Platform/Platform.h"
#include "support/FakeAudioEngine.h"
#include "support/FakeAuthorization.h"
#include "support/FakeFiles.h"
#include "support/FakeKeyEventPoster.h"
#include "support/FakeKeyMonitor.h"
#include "support/FakeScreens.h"
#include "support/FakeSoundDevices.h"
#include "support/FakeSpeechService.h"
#include "support/FakeTranslationService.h"
#include "support/FakeUserDefaultsChanges.h"
#include "support/FakeUserInterface.h"
#include "support/FakeWorkspace.h"
#include "support/ManualTime.h"
#include "support/MemoryUserDefaults.h"
#include "support/RecordingLog.h"

#include <functional>

namespace tovik::test {

/// A whole desktop of fakes, on which everything is granted.
struct FakePlatform {
    FakePlatform() = default;
    FakePlatform(const FakePlatform&) = delete;
    FakePlatform& operator=(const FakePlatform&) = delete;

    ManualTime time;
    RecordingLog log;
    MemoryUserDefaults defaults;
    FakeUserDefaultsChanges defaultsChanges;
    FakeFiles files;
    FakeWorkspace workspace;
    FakeKeyMonitor keyMonitor;
    FakeKeyEventPoster poster;
    FakePasteboard pasteboard;
    FakeAudioEngine engine;
    FakeCaptureDevices devices;
    FakeAudioHardware hardware;
    FakeSpeechService speech;
    FakeAuthorization authorization;
    FakeTranslationService translation{time};
    FakeScreens screens;
    FakeAlert alert;
    FakeProcessLauncher launcher;
    FakeUserInterface userInterface;

    /// How often the program was asked to end, and what else happens then.
    int terminations = 0;
    std::function<void()> onTerminate;

    Platform platform{
        .clock = time,
        .mainQueue = time,
        .log = log,
        .defaults = defaults,
        .defaultsChanges = defaultsChanges,
        .files = files,
        .workspace = workspace,
        .keyMonitor = keyMonitor,
        .keyEventPoster = poster,
        .pasteboard = pasteboard,
        .audioEngine = engine,
        .captureDevices = devices,
        .audioHardware = hardware,
        .speechService = speech,
        .authorization = authorization,
        .translationService = translation,
        .screens = screens,
        .alert = alert,
        .processLauncher = launcher,
        .userInterface = userInterface,
        .terminate =
            [this] {
                ++terminations;
                if (onTerminate) {
                    onTerminate();
                }
            },
        .dataFolder = "/home/ada/.local/share",
        .debugLogFile = "/home/ada/.local/state/tovik-record/tovik_record_debug.log",
        .processIdentifier = 4711,
        .installLocations = macInstallLocations(),
    };
};

} // namespace tovik::test

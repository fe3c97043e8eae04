// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/AudioEngine.h"
#include "Platform/Authorization.h"
#include "Platform/Files.h"
#include "Platform/Keyboard.h"
#include "Platform/MainQueue.h"
#include "Platform/Screens.h"
#include "Platform/SpeechService.h"
#include "Platform/SystemLog.h"
#include "Platform/TranslationService.h"
#include "Platform/UserDefaults.h"
#include "Platform/UserInterface.h"
#include "Platform/Workspace.h"

#include <cstdint>
#include <functional>
#include <string>

namespace tovik {

/// The desktop, as the program is given it. All of it outlives what works with it.
struct Platform {
    Clock& clock;
    MainQueue& mainQueue;
    SystemLog& log;
    UserDefaults& defaults;
    UserDefaultsChanges& defaultsChanges;
    Files& files;
    Workspace& workspace;
    KeyMonitor& keyMonitor;
    KeyEventPoster& keyEventPoster;
    Pasteboard& pasteboard;
    AudioEngine& audioEngine;
    CaptureDevices& captureDevices;
    AudioHardware& audioHardware;
    SpeechService& speechService;
    Authorization& authorization;
    TranslationService& translationService;
    Screens& screens;
    Alert& alert;
    ProcessLauncher& processLauncher;
    UserInterface& userInterface;
    std::function<void()> terminate;
    /// Where programs of this user keep their data, and the trace of this one's launches.
    std::string dataFolder;
    std::string debugLogFile;
    std::int64_t processIdentifier = 0;
    InstallLocations installLocations;
};

} // namespace tovik

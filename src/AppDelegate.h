// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Permissions/InstallLocations.h"
#include "Platform/Alert.h"
#include "Platform/AudioEngine.h"
#include "Platform/AudioHardware.h"
#include "Platform/Authorization.h"
#include "Platform/CaptureDevices.h"
#include "Platform/Clock.h"
#include "Platform/Files.h"
#include "Platform/KeyEventPoster.h"
#include "Platform/KeyMonitor.h"
#include "Platform/Lifetime.h"
#include "Platform/MainQueue.h"
#include "Platform/Pasteboard.h"
#include "Platform/ProcessLauncher.h"
#include "Platform/Screens.h"
#include "Platform/SpeechService.h"
#include "Platform/SystemLog.h"
#include "Platform/TranslationService.h"
#include "Platform/UserDefaults.h"
#include "Platform/UserDefaultsChanges.h"
#include "Platform/UserInterface.h"
#include "Platform/Workspace.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace tovik {

/// The desktop, as the program is given it. All of it outlives the AppDelegate.
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
    /// Whether any window of the program is on the screen.
    std::function<bool()> hasVisibleWindow;
    /// Where programs of this user keep their data, and the trace of this one's launches.
    std::string dataFolder;
    std::string debugLogFile;
    std::int64_t processIdentifier = 0;
    InstallLocations installLocations;
};

/// Owns the parts of the program and joins them; the rules are theirs. Main thread.
class AppDelegate {
public:
    explicit AppDelegate(const Platform& platform);
    ~AppDelegate();
    AppDelegate(const AppDelegate&) = delete;
    AppDelegate& operator=(const AppDelegate&) = delete;

    /// The launch: once, when the event loop runs.
    void applicationDidFinishLaunching();
    /// The program came to the front: the user may have changed a permission meanwhile.
    void applicationDidBecomeActive();
    /// The program was started again, or its icon clicked. True: it is to be shown.
    bool applicationShouldHandleReopen(bool hasVisibleWindows);
    [[nodiscard]] bool applicationShouldTerminateAfterLastWindowClosed() const { return false; }

    void openMainWindowFromMenu();
    /// Ends the program, after a text that is still on its way has been delivered; asked again, at once.
    void quitApp();
    /// The same, when it is not the user who waits: in less time.
    void sessionWillEnd();
    /// The process ends because its windows have lost the desktop: saves what was being recognised.
    void displayLost();

private:
    struct Parts;

    void createStatusItem();
    void createRecorder();
    void createSession();
    void createMenuAndWindow();
    void startKeyMonitor();
    void sayFarewell(Seconds patience);

    Platform platform_;
    std::unique_ptr<Parts> parts_;
    Lifetime lifetime_;
};

} // namespace tovik

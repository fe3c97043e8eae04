// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Engines/Apertium/ApertiumService.h"
#include "Engines/LibreTranslate/LibreTranslateService.h"
#include "Engines/SpeechEngines.h"
#include "Engines/TranslationChoice.h"
#include "Linux/DBus/DBusMicrophonePortal.h"
#include "Linux/DBus/LibsecretStore.h"
#include "Linux/Desktop/LinuxAuthorization.h"
#include "Linux/Desktop/QtAlert.h"
#include "Linux/Desktop/QtMainQueue.h"
#include "Linux/Desktop/QtPasteboard.h"
#include "Linux/Desktop/QtScreens.h"
#include "Linux/Desktop/QtUserDefaultsChanges.h"
#include "Linux/Desktop/SandboxedMicrophone.h"
#include "Linux/Desktop/SettingsPanes.h"
#include "Linux/Desktop/SettingsWorkspace.h"
#include "Linux/Desktop/TimedPorts.h"
#include "Linux/PulseAudio/PulseAudioDevices.h"
#include "Linux/PulseAudio/PulseAudioEngine.h"
#include "Linux/PulseAudio/PulseAudioMicrophoneAccess.h"
#include "Linux/Storage/JsonUserDefaults.h"
#include "Linux/Storage/LocalFiles.h"
#include "Linux/Storage/PosixProcessLauncher.h"
#include "Linux/Storage/StandardLog.h"
#include "Linux/Storage/SystemClock.h"
#include "Linux/Storage/XdgFolders.h"
#include "Linux/X11/PostedKeys.h"
#include "Linux/X11/X11KeyEventPoster.h"
#include "Linux/X11/X11KeyMonitor.h"
#include "Linux/X11/X11Session.h"
#include "Linux/X11/X11Workspace.h"
#include "Platform/Platform.h"

#include <functional>
#include <memory>
#include <utility>

namespace tovik {

/// The Linux desktop: every port of the program but its windows, each with its real adapter. Main thread,
/// after the QApplication.
class LinuxPlatform {
public:
    LinuxPlatform();
    ~LinuxPlatform();
    LinuxPlatform(const LinuxPlatform&) = delete;
    LinuxPlatform& operator=(const LinuxPlatform&) = delete;

    /// The ports, joined with the program's windows. terminate asks the program to end.
    [[nodiscard]] Platform describe(UserInterface& userInterface, std::function<void()> terminate);

    /// Calls back on the main queue when the sound server has told its devices, and the desktop's portal who
    /// decides about the microphone, or when they are taking longer than a user should wait for the program.
    void whenSoundIsKnown(std::function<void()> callback);

    /// Calls back whenever a permission has changed by itself, from the next change on.
    void onPermissionsChanged(std::function<void()> callback) { permissionsChanged_ = std::move(callback); }

    [[nodiscard]] SystemLog& log() { return *usedLog_; }
    [[nodiscard]] Clock& clock() { return clock_; }
    [[nodiscard]] MainQueue& mainQueue() { return queue_; }
    [[nodiscard]] Screens& screens() { return screens_; }
    [[nodiscard]] Workspace& workspace() { return settingsWorkspace_; }

private:
    [[nodiscard]] LinuxAuthorization::Answers authorizationAnswers();
    void wrapForTimings(const std::string& path);
    void saveSettingsAgainLater();

    XdgFolders folders_;
    SystemClock clock_;
    StandardLog log_;
    QtMainQueue queue_;
    LocalFiles files_;
    Subscription savingSettingsAgain_;
    JsonUserDefaults defaults_;
    QtUserDefaultsChanges defaultsChanges_;
    PosixProcessLauncher launcher_;
    QtScreens screens_;
    QtAlert alert_;
    QtPasteboard pasteboard_;

    X11Workspace workspace_;
    PostedKeys postedKeys_;
    X11KeyEventPoster poster_;
    X11KeyMonitor keyMonitor_;

    PulseAudioConnection soundServer_;
    PulseAudioDevices devices_;
    PulseAudioEngine engine_;
    PulseAudioMicrophoneAccess microphoneAccess_;
    std::function<void()> permissionsChanged_;
    DBusMicrophonePortal microphonePortal_;
    SandboxedMicrophone microphone_;
    LibsecretStore secrets_;
    SpeechEngines speech_;
    LibreTranslateService translationServer_;
    ApertiumService apertium_;
    TranslationChoice translation_;
    const X11Session session_;
    LinuxAuthorization authorization_;
    SettingsPanes settingsPanes_;
    SettingsWorkspace settingsWorkspace_;

    std::unique_ptr<TimingMarks> marks_;
    std::unique_ptr<TimedLog> timedLog_;
    std::unique_ptr<TimedKeyMonitor> timedKeyMonitor_;
    std::unique_ptr<TimedAudioEngine> timedEngine_;
    /// The adapters above, or their timed wrappers.
    SystemLog* usedLog_;
    KeyMonitor* usedKeyMonitor_;
    AudioEngine* usedEngine_;
};

} // namespace tovik

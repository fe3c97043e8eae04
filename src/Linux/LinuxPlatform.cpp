// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Linux/LinuxPlatform.h"

#include "Linux/Desktop/ProgramPaths.h"
#include "Permissions/InstallLocations.h"

#include <QApplication>
#include <QWidget>

#include <unistd.h>

#include <cstdlib>
#include <memory>
#include <utility>

namespace tovik {

namespace {

constexpr auto kBundleIdentifier = "tovik-record";
constexpr auto kInstalledExecutable = "/usr/bin/tovik-record";
constexpr Seconds kLongestWaitForSound{0.15};
constexpr Seconds kLongestWaitForPortal{1.0};
constexpr Seconds kSavingAgainInterval{5};

std::string environment(const char* variable) {
    const char* value = std::getenv(variable);
    return value == nullptr ? "" : value;
}

/// Whether the user works in it. The pill and the hints take no input and fade on their own, and Qt shows the
/// icon of a tray that takes windows in a window that the window manager does not know.
bool isVisibleToWorkIn(const QWidget* window) {
    constexpr auto kMereDisplay = Qt::WindowTransparentForInput | Qt::BypassWindowManagerHint;
    return window->isVisible() && (window->windowFlags() & kMereDisplay) == 0;
}

/// Hiding a question or a menu would answer it on the user's behalf.
void hideOwnWindows() {
    for (auto* window : QApplication::topLevelWidgets()) {
        const bool asks = window->windowType() == Qt::Dialog || window->windowType() == Qt::Popup;
        if (isVisibleToWorkIn(window) && !asks) {
            window->hide();
        }
    }
}

} // namespace

LinuxPlatform::LinuxPlatform()
    : defaults_(folders_.defaultsFile(), log_, [this] { saveSettingsAgainLater(); }),
      defaultsChanges_(folders_.defaultsFile(), log_),
      workspace_({.queue = queue_,
                  .ownBundleIdentifier = kBundleIdentifier,
                  .ownLocalizedName = "Tovik Record",
                  .hideOwnWindows = hideOwnWindows}),
      poster_({.queue = queue_,
               .defaults = defaults_,
               .log = log_,
               .posted = postedKeys_,
               .isTargetInFront = [this] { return workspace_.isActivatedInFront(); },
               .bringTargetToFront = [this] { workspace_.activateAgain(); }}),
      keyMonitor_({.queue = queue_,
                   .defaults = defaults_,
                   .log = log_,
                   .posted = postedKeys_,
                   .ownProgramIsFrontmost = [this] { return workspace_.isOwnProgramInFront(); }}),
      soundServer_(log_),
      devices_(soundServer_, queue_, defaults_),
      engine_(soundServer_, devices_.directory()),
      microphoneAccess_(soundServer_, devices_.directory()),
      microphonePortal_([] { return QDBusConnection::sessionBus(); }),
      microphone_(Sandbox::recognise(SandboxSigns::ofThisProcess()),
                  {.log = log_,
                   .portal = microphonePortal_,
                   .serverStatus = [this] { return static_cast<int>(microphoneAccess_.status()); },
                   .serverExplanation = [this] { return microphoneAccess_.explanation(); },
                   .changed =
                       [this] {
                           if (permissionsChanged_) {
                               permissionsChanged_();
                           }
                       }}),
      secrets_(queue_),
      speech_({.log = log_,
               .defaults = defaults_,
               .queue = queue_,
               .secrets = &secrets_,
               .dataFolder = folders_.applicationSupport()}),
      translationServer_({.queue = queue_, .log = log_, .defaults = defaults_, .secrets = secrets_}),
      apertium_(queue_),
      translation_(translationServer_, apertium_, [this] { return translationServer_.isChosen(); }),
      session_(X11Session::examine()),
      authorization_(queue_, alert_, authorizationAnswers()),
      settingsPanes_(
          {.queue = queue_,
           .alert = alert_,
           .launcher = launcher_,
           .desktops = desktopNames(environment("XDG_CURRENT_DESKTOP")),
           .isInstalled =
               [](const std::string& program) { return isInSearchPath(program, environment("PATH")); },
           .microphoneExplanation = [this] { return microphone_.explanation(); },
           .reconsiderSpeech = [this] { authorization_.askSpeechConsent(); }}),
      settingsWorkspace_(workspace_, settingsPanes_),
      usedLog_(&log_),
      usedKeyMonitor_(&keyMonitor_),
      usedEngine_(&engine_) {
    if (!session_.sentence.empty()) {
        log_.printLine("[TovikVoice] " + session_.sentence);
    }
    if (const auto path = environment("TOVIK_TIMINGS"); !path.empty()) {
        wrapForTimings(path);
    }
}

LinuxAuthorization::Answers LinuxPlatform::authorizationAnswers() {
    return {.microphoneStatus = [this] { return microphone_.status(); },
            .microphoneExplanation = [this] { return microphone_.explanation(); },
            .askForMicrophone =
                [this](std::function<void(bool)> answered) { microphone_.ask(std::move(answered)); },
            .speechExplanation = [this] { return speech_.whyUnavailable().value_or(""); },
            .needsSpeechConsent = [this] { return speech_.needsConsent(); },
            .speechConsentText = [this] { return speech_.consentText(); },
            .answerSpeechConsent = [this](bool isAllowed) { speech_.answerConsent(isAllowed); },
            .isSpeechRefused = [this] { return speech_.isRefused(); },
            .isKeyboardUsable = [this] { return session_.usable(); },
            .keyboardExplanation = [this] { return session_.sentence; },
            .executablePath = runningExecutable(),
            .homeDirectory = folders_.home()};
}

void LinuxPlatform::whenSoundIsKnown(std::function<void()> callback) {
    const auto once = [called = std::make_shared<bool>(false), callback = std::move(callback)] {
        if (!std::exchange(*called, true)) {
            callback();
        }
    };
    const auto onceKnown = [this, once] {
        if (devices_.directory()->listing().known && microphone_.isKnown()) {
            once();
        }
    };
    devices_.directory()->observe(soundServer_, [this, onceKnown] { queue_.async(onceKnown); });
    permissionsChanged_ = [this, onceKnown] { queue_.async(onceKnown); };
    queue_.async(onceKnown);
    queue_.asyncAfter(microphone_.isKnown() ? kLongestWaitForSound : kLongestWaitForPortal, once);
}

LinuxPlatform::~LinuxPlatform() = default;

void LinuxPlatform::saveSettingsAgainLater() {
    savingSettingsAgain_ = queue_.after(kSavingAgainInterval, [this] {
        if (!defaults_.saveAgain()) {
            saveSettingsAgainLater();
        }
    });
}

void LinuxPlatform::wrapForTimings(const std::string& path) {
    marks_ = std::make_unique<TimingMarks>(path);
    timedLog_ = std::make_unique<TimedLog>(log_, *marks_);
    timedKeyMonitor_ = std::make_unique<TimedKeyMonitor>(keyMonitor_, *marks_);
    timedEngine_ = std::make_unique<TimedAudioEngine>(engine_, *marks_);
    usedLog_ = timedLog_.get();
    usedKeyMonitor_ = timedKeyMonitor_.get();
    usedEngine_ = timedEngine_.get();
}

Platform LinuxPlatform::describe(UserInterface& userInterface, std::function<void()> terminate) {
    return {
        .clock = clock_,
        .mainQueue = queue_,
        .log = *usedLog_,
        .defaults = defaults_,
        .defaultsChanges = defaultsChanges_,
        .files = files_,
        .workspace = settingsWorkspace_,
        .keyMonitor = *usedKeyMonitor_,
        .keyEventPoster = poster_,
        .pasteboard = pasteboard_,
        .audioEngine = *usedEngine_,
        .captureDevices = devices_,
        .audioHardware = devices_,
        .speechService = speech_,
        .authorization = authorization_,
        .translationService = translation_,
        .screens = screens_,
        .alert = alert_,
        .processLauncher = launcher_,
        .userInterface = userInterface,
        .terminate = std::move(terminate),
        .dataFolder = folders_.applicationSupport(),
        .debugLogFile = folders_.debugLogFile(),
        .processIdentifier = getpid(),
        .installLocations = linuxInstallLocations(kInstalledExecutable),
    };
}

} // namespace tovik

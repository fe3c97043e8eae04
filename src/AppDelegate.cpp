// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "AppDelegate.h"

#include "Audio/MacAudioManager.h"
#include "Permissions/PermissionChecklist.h"
#include "Permissions/PermissionRequests.h"
#include "Platform/Subscription.h"
#include "Session/PushToTalk.h"
#include "Session/SessionFiles.h"
#include "Session/Shutdown.h"
#include "Session/StatusMenu.h"
#include "Session/TranscriptDelivery.h"
#include "Speech/History/TranscriptHistoryBrowser.h"
#include "Speech/History/TranscriptHistoryStore.h"
#include "Speech/Text/FinalTextChain.h"
#include "Speech/Text/TranscriptionDictionary.h"
#include "Speech/Translation/TranslationManager.h"

#include <functional>
#include <utility>

namespace tovik {

namespace {

DebugLog openDebugLog(const Platform& platform) {
    DebugLog log(platform.files, platform.clock, platform.log, platform.debugLogFile);
    log.debugLog("applicationDidFinishLaunching started");
    return log;
}

std::unique_ptr<StatusItem> makeStatusItem(const Platform& platform, DebugLog& debugLog) {
    auto item = platform.userInterface.makeStatusItem();
    // Set also without a tray, for the day on which one appears.
    item->setImage(statusBarAppIcon("Tovik Record"));
    item->setToolTip("Tovik Record");
    debugLog.debugLog(item->hasButton() ? "Status item created" : "FAILED to get status item button");
    return item;
}

} // namespace

/// Everything the program is made of, in the order in which one part stands on another. What comes last goes
/// first: the keys before what they start, the window before what it shows, the recorder before whoever takes
/// its texts.
struct AppDelegate::Program {
    Program(const Platform& platform, std::function<void()> quitApp);

    DebugLog debugLog;
    MainWindow mainWindow;
    std::unique_ptr<StatusItem> statusItem;
    std::unique_ptr<RecordingOverlay> overlay;
    Lifetime overlayLifetime;

    TranscriptionDictionary dictionary;
    TranscriptHistoryStore history;
    TranscriptHistoryBrowser historyBrowser;
    FinalTextChain chain;
    TranslationManager translation;
    PermissionChecklist permissions;
    PermissionRequests permissionRequests;
    MakerLinks links;

    TargetTracker targets;
    TranscriptDelivery delivery;
    MacAudioManager recorder;
    PushToTalk pushToTalk;
    Shutdown shutdown;
    StatusMenu menu;
    std::unique_ptr<MainWindowOnScreen> window;
    Subscription defaultsChanges;
    Lifetime lifetime;

private:
    [[nodiscard]] MacAudioManager::Callbacks recorderCallbacks(const Platform& platform);
    [[nodiscard]] MainWindowContents windowContents(const Platform& platform);
    void startKeyMonitor(const Platform& platform);
};

AppDelegate::Program::Program(const Platform& p, std::function<void()> quitApp)
    : debugLog(openDebugLog(p)),
      statusItem(makeStatusItem(p, debugLog)),
      overlay(p.userInterface.makeRecordingOverlay()),
      dictionary(p.defaults, p.log),
      history(p.defaults, p.clock),
      historyBrowser(history, p.pasteboard, mainWindow),
      chain(p.defaults, p.log),
      translation({p.mainQueue, p.log, p.defaults, p.translationService}),
      permissions(p.authorization, p.installLocations),
      permissionRequests(p, mainWindow, permissions),
      links(p.workspace, mainWindow),
      targets(p.workspace),
      delivery(p, mainWindow, permissionRequests, targets, dictionary, history, translation),
      recorder({p.clock, p.mainQueue, p.log, p.defaults, p.audioEngine, p.captureDevices, p.audioHardware,
                p.speechService},
               recorderCallbacks(p)),
      pushToTalk(p, permissionRequests, targets, recorder, *statusItem, *overlay),
      shutdown(p, recorder, delivery),
      menu(p, mainWindow, recorder, pushToTalk, delivery, history, std::move(quitApp)) {
    statusItem->setImage(statusBarAppIcon("Tovik Record"));
    targets.startFollowing();
    statusItem->setMenu(menu.menu());
    window = p.userInterface.makeMainWindow(windowContents(p));
    defaultsChanges = p.defaultsChanges.observe([this] {
        menu.showStoredChoices();
        if (history.loadIfChanged()) {
            mainWindow.reloadHistoryTable();
        }
    });
    startKeyMonitor(p);
    debugLog.debugLog("applicationDidFinishLaunching finished successfully");
}

MacAudioManager::Callbacks AppDelegate::Program::recorderCallbacks(const Platform& platform) {
    return {
        .processTranscription = [this](const std::string& text) { return chain.processTranscription(text); },
        .onTranscription = [this](const std::string& text) { delivery.receive(text); },
        .onPartialUpdate = nullptr,
        // Comes on the microphone's thread; the overlay may be gone when the main queue gets to it.
        .onLevel = [&queue = platform.mainQueue, show = overlayLifetime.guard([this](float level) {
            overlay->setLevel(level);
        })](float level) { queue.async([show, level]() mutable { show(level); }); },
    };
}

MainWindowContents AppDelegate::Program::windowContents(const Platform& platform) {
    return {.requests = mainWindow,
            .permissions = permissions,
            .permissionRequests = permissionRequests,
            .history = historyBrowser,
            .defaults = platform.defaults,
            .defaultsChanges = platform.defaultsChanges,
            .dictionary = dictionary,
            .fillerWords = chain.fillerWords(),
            .translator = translation,
            .statusMenu = menu.menu(),
            .links = links};
}

void AppDelegate::Program::startKeyMonitor(const Platform& platform) {
    const auto started = platform.keyMonitor.start({
        .flagsChanged =
            lifetime.guard([this](const FlagsChangedEvent& event) { pushToTalk.handleFlagsChanged(event); }),
        .talkKeyTouched = lifetime.guard([this](Seconds ago) { pushToTalk.talkKeyTouched(ago); }),
        .talkKeyDismissed = lifetime.guard([this] { pushToTalk.talkKeyDismissed(); }),
    });
    if (!started) {
        platform.log.printLine("[TovikVoice] Talk key unavailable: " + started.error().description);
    }
}

AppDelegate::AppDelegate(const Platform& platform) : platform_(platform) {
    platform_.log.logLine("[TovikVoice] AppDelegate.init() called");
}

AppDelegate::~AppDelegate() = default;

void AppDelegate::applicationDidFinishLaunching() {
    // It may have been asked to end before it has begun.
    if (!isQuitting_) {
        program_ = std::make_unique<Program>(platform_, [this] { quitApp(); });
    }
}

void AppDelegate::applicationDidBecomeActive() {
    if (program_) {
        program_->mainWindow.refreshPermissions();
    }
}

bool AppDelegate::applicationShouldHandleReopen(bool /*hasVisibleWindows*/) {
    if (program_) {
        program_->mainWindow.present();
    }
    return true;
}

void AppDelegate::quitApp() {
    quit(Shutdown::patienceOfUser);
}

void AppDelegate::sessionWillEnd() {
    quit(Shutdown::patienceOfSession);
}

void AppDelegate::quit(Seconds patience) {
    isQuitting_ = true;
    if (!program_) {
        platform_.terminate();
        return;
    }
    program_->pushToTalk.close();
    program_->shutdown.quit(patience);
}

void AppDelegate::displayLost() {
    if (program_) {
        program_->shutdown.keepLastWords();
    }
}

} // namespace tovik

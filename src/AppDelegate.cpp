// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "AppDelegate.h"

#include "Audio/MacAudioManager.h"
#include "Permissions/Installation.h"
#include "Permissions/PermissionChecklist.h"
#include "Permissions/PermissionRequests.h"
#include "Session/CaptureStateFile.h"
#include "Session/DebugLog.h"
#include "Session/Farewell.h"
#include "Session/HandsFreeHints.h"
#include "Session/InputDeviceMenu.h"
#include "Session/LanguageMenu.h"
#include "Session/MainWindowSlot.h"
#include "Session/MakerLinks.h"
#include "Session/PushToTalk.h"
#include "Session/StatusImages.h"
#include "Session/StatusMenu.h"
#include "Session/TargetTracker.h"
#include "Session/TranscriptDelivery.h"
#include "Session/TranscriptHistoryMenu.h"
#include "Session/TranscriptInbox.h"
#include "Speech/History/TranscriptHistoryBrowser.h"
#include "Speech/History/TranscriptHistoryStore.h"
#include "Speech/Text/FinalTextChain.h"
#include "Speech/Text/TranscriptionDictionary.h"
#include "Speech/Translation/TranslationManager.h"

#include <optional>
#include <utility>

namespace tovik {

/// Everything the program is made of, in the order in which one part stands on another.
struct AppDelegate::Parts {
    explicit Parts(const Platform& p)
        : debugLog(p.files, p.clock, p.log, p.debugLogFile),
          captureState(p.files, p.clock, p.log, p.dataFolder, p.processIdentifier),
          targets(p.workspace),
          dictionary(p.defaults, p.log),
          history(p.defaults, p.clock),
          chain(p.defaults, p.log),
          translation({p.mainQueue, p.log, p.defaults, p.translationService}),
          permissions(p.authorization, p.installLocations),
          installation({p.authorization, p.files, p.workspace, p.processLauncher, p.alert, p.mainQueue,
                        window, p.terminate},
                       p.installLocations),
          permissionRequests(
              {p.authorization, p.mainQueue, p.log, p.workspace, window, permissions, installation}),
          historyBrowser(history, p.pasteboard, window),
          links(p.workspace, window),
          inputDevices(std::make_shared<InputDeviceMenu>(p.mainQueue, p.log, window)) {}

    DebugLog debugLog;
    CaptureStateFile captureState;
    TargetTracker targets;
    TranscriptionDictionary dictionary;
    TranscriptHistoryStore history;
    FinalTextChain chain;
    TranslationManager translation;
    MainWindowSlot window;
    PermissionChecklist permissions;
    Installation installation;
    PermissionRequests permissionRequests;
    TranscriptHistoryBrowser historyBrowser;
    MakerLinks links;
    std::shared_ptr<InputDeviceMenu> inputDevices;
    TranscriptInbox inbox;

    std::unique_ptr<StatusItem> statusItem;
    std::unique_ptr<RecordingOverlay> overlay;
    std::unique_ptr<HintPanels> hintPanels;
    std::unique_ptr<HandsFreeHints> hints;
    std::unique_ptr<MacAudioManager> recorder;
    std::unique_ptr<PushToTalk> pushToTalk;
    std::unique_ptr<TranscriptDelivery> delivery;
    std::unique_ptr<Farewell> farewell;
    std::unique_ptr<LanguageMenu> languages;
    std::unique_ptr<TranscriptHistoryMenu> historyMenu;
    Subscription defaultsChanges;
    /// Ends before the rest does, when the program is about to end.
    std::optional<Lifetime> listening{std::in_place};
};

AppDelegate::AppDelegate(const Platform& platform)
    : platform_(platform),
      parts_(std::make_unique<Parts>(platform_)) {
    platform_.log.logLine("[TovikVoice] AppDelegate.init() called");
}

AppDelegate::~AppDelegate() {
    // A window that goes still looks at what it shows: a field that loses the keyboard hands over its text.
    parts_->window.fill(nullptr);
}

void AppDelegate::applicationDidFinishLaunching() {
    if (!parts_->listening) {
        // Asked to end before it has begun.
        return;
    }
    parts_->debugLog.debugLog("applicationDidFinishLaunching started");
    createStatusItem();
    createRecorder();
    parts_->statusItem->setImage(statusBarAppIcon("Tovik Record"));
    parts_->targets.startFollowing();
    createSession();
    createMenuAndWindow();
    startKeyMonitor();
    parts_->debugLog.debugLog("applicationDidFinishLaunching finished successfully");
}

void AppDelegate::createStatusItem() {
    parts_->statusItem = platform_.userInterface.makeStatusItem();
    // Set also without a tray, for the day on which one appears.
    parts_->statusItem->setImage(statusBarAppIcon("Tovik Record"));
    parts_->statusItem->setToolTip("Tovik Record");
    parts_->debugLog.debugLog(parts_->statusItem->hasButton() ? "Status item created"
                                                              : "FAILED to get status item button");
}

void AppDelegate::createRecorder() {
    parts_->overlay = platform_.userInterface.makeRecordingOverlay();
    parts_->recorder = std::make_unique<MacAudioManager>(
        MacAudioManager::Ports{platform_.clock, platform_.mainQueue, platform_.log, platform_.defaults,
                               platform_.audioEngine, platform_.captureDevices, platform_.audioHardware,
                               platform_.speechService},
        [&chain = parts_->chain](const std::string& text) { return chain.processTranscription(text); });
    parts_->inputDevices->setRecorder(*parts_->recorder);
    parts_->recorder->setDeviceDelegate(parts_->inputDevices);

    // Both come on threads of their own; guarded here, on the thread on which this object ends.
    parts_->recorder->onTranscription = [&queue = platform_.mainQueue, &inbox = parts_->inbox,
                                         deliver = lifetime_.guard([this] {
                                             if (const auto text = parts_->inbox.take()) {
                                                 parts_->delivery->handleTranscription(*text);
                                             }
                                         })](const std::string& text) {
        inbox.put(text);
        queue.async(deliver);
    };
    parts_->recorder->onLevel = [&queue = platform_.mainQueue, show = lifetime_.guard([this](float level) {
        parts_->overlay->setLevel(level);
    })](float level) { queue.async([show, level]() mutable { show(level); }); };
}

void AppDelegate::createSession() {
    parts_->hintPanels = platform_.userInterface.makeHintPanels();
    parts_->hints = std::make_unique<HandsFreeHints>(platform_.mainQueue, platform_.screens,
                                                     *parts_->hintPanels, *parts_->overlay);
    parts_->pushToTalk = std::make_unique<PushToTalk>(PushToTalk::Collaborators{
        .clock = platform_.clock,
        .queue = platform_.mainQueue,
        .log = platform_.log,
        .recorder = *parts_->recorder,
        .authorization = platform_.authorization,
        .permissionRequests = parts_->permissionRequests,
        .mainWindow = parts_->window,
        .statusItem = *parts_->statusItem,
        .overlay = *parts_->overlay,
        .hints = *parts_->hints,
        .targets = parts_->targets,
        .captureState = parts_->captureState,
    });
    parts_->delivery = std::make_unique<TranscriptDelivery>(TranscriptDelivery::Collaborators{
        .queue = platform_.mainQueue,
        .log = platform_.log,
        .defaults = platform_.defaults,
        .permissionRequests = parts_->permissionRequests,
        .dictionary = parts_->dictionary,
        .history = parts_->history,
        .translator = parts_->translation,
        .mainWindow = parts_->window,
        .pasteboard = platform_.pasteboard,
        .poster = platform_.keyEventPoster,
        .workspace = platform_.workspace,
        .targets = parts_->targets,
    });
    parts_->farewell = std::make_unique<Farewell>(Farewell::Collaborators{
        .clock = platform_.clock,
        .queue = platform_.mainQueue,
        .log = platform_.log,
        .recorder = *parts_->recorder,
        .delivery = *parts_->delivery,
        .inbox = parts_->inbox,
        .terminate = platform_.terminate,
    });
}

void AppDelegate::createMenuAndWindow() {
    parts_->languages =
        std::make_unique<LanguageMenu>(platform_.defaults, platform_.log, parts_->window, [this] {
            if (parts_->listening) {
                parts_->pushToTalk->restartRecording();
            }
        });
    parts_->defaultsChanges = platform_.defaultsChanges.observe(lifetime_.guard([this] {
        parts_->languages->showStoredChoice();
        if (parts_->history.loadIfChanged()) {
            parts_->window.reloadHistoryTable();
        }
    }));
    parts_->historyMenu = std::make_unique<TranscriptHistoryMenu>(parts_->history, *parts_->delivery);
    const auto menu = makeStatusMenu({
        .inputDevices = parts_->inputDevices->menu(),
        .languages = parts_->languages->menu(),
        .transcriptHistory = parts_->historyMenu->menu(),
        .pasteLastTranscript = [this] { parts_->delivery->pasteLastTranscript(); },
        .openMainWindowFromMenu = [this] { openMainWindowFromMenu(); },
        .quitApp = [this] { quitApp(); },
    });
    parts_->statusItem->setMenu(menu);
    parts_->window.fill(platform_.userInterface.makeMainWindow({
        .permissions = parts_->permissions,
        .permissionRequests = parts_->permissionRequests,
        .history = parts_->historyBrowser,
        .reloadTranscriptHistoryMenu = [this] { parts_->historyMenu->reloadTranscriptHistoryMenu(); },
        .defaults = platform_.defaults,
        .defaultsChanges = platform_.defaultsChanges,
        .dictionary = parts_->dictionary,
        .fillerWords = parts_->chain.fillerWords(),
        .translator = parts_->translation,
        .statusMenu = menu,
        .openTovikVoiceUpdates = [this] { parts_->links.openTovikVoiceUpdates(); },
        .openTovikAIWebsite = [this] { parts_->links.openTovikAIWebsite(); },
    }));
}

void AppDelegate::startKeyMonitor() {
    const auto started = platform_.keyMonitor.start({
        .flagsChanged = parts_->listening->guard(
            [this](const FlagsChangedEvent& event) { parts_->pushToTalk->handleFlagsChanged(event); }),
        .talkKeyTouched = parts_->listening->guard([this] { parts_->pushToTalk->talkKeyTouched(); }),
        .talkKeyDismissed = parts_->listening->guard([this] { parts_->pushToTalk->talkKeyDismissed(); }),
    });
    if (!started) {
        platform_.log.printLine("[TovikVoice] Talk key unavailable: " + started.error().description);
    }
}

void AppDelegate::applicationDidBecomeActive() {
    parts_->window.refreshPermissions();
}

bool AppDelegate::applicationShouldHandleReopen(bool /*hasVisibleWindows*/) {
    parts_->window.present();
    return true;
}

void AppDelegate::openMainWindowFromMenu() {
    parts_->window.present();
}

void AppDelegate::quitApp() {
    sayFarewell(Farewell::patienceOfUser);
}

void AppDelegate::sessionWillEnd() {
    sayFarewell(Farewell::patienceOfSession);
}

void AppDelegate::sayFarewell(Seconds patience) {
    // A key that is let go of now no longer ends a recording by the rules: whoever reads the state file
    // learns the rest from the end of this process.
    parts_->listening.reset();
    if (!parts_->farewell) {
        platform_.terminate();
        return;
    }
    parts_->overlay->hide();
    parts_->farewell->quit(patience);
}

void AppDelegate::displayLost() {
    if (parts_->farewell) {
        parts_->farewell->keepLastWords();
    }
}

} // namespace tovik

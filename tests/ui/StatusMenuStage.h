// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Session/InputDeviceMenu.h"
#include "Session/LanguageMenu.h"
#include "Session/StatusMenu.h"
#include "Session/TargetTracker.h"
#include "Session/TranscriptHistoryMenu.h"
#include "Speech/Text/TranscriptionDictionary.h"
#include "UserInterface/StatusItem/QtMenu.h"
#include "support/FakeKeyEventPoster.h"
#include "support/FakeTextTranslator.h"
#include "ui/WindowStage.h"

#include <memory>
#include <vector>

namespace tovik::test {

/// The real status menu beside a staged main window, which has to be built first.
struct StatusMenuStage {
    explicit StatusMenuStage(WindowStage& windowStage) : window(windowStage) {
        window.reloadHistoryMenu = [this] { history.reloadTranscriptHistoryMenu(); };
    }
    ~StatusMenuStage() { window.reloadHistoryMenu = nullptr; }
    StatusMenuStage(const StatusMenuStage&) = delete;
    StatusMenuStage& operator=(const StatusMenuStage&) = delete;

    /// The first one is in use.
    void plugIn(const std::vector<AudioDevice>& microphones) {
        devices->availableDevicesChanged(microphones);
        devices->currentDeviceChanged(microphones.front());
        window.time.runPending();
    }

    WindowStage& window;
    TranscriptionDictionary dictionary{window.defaults, window.log};
    FakeTextTranslator translator;
    FakeKeyEventPoster poster;
    TargetTracker targets{window.workspace};
    TranscriptDelivery delivery{{window.time, window.log, window.defaults, window.requests, dictionary,
                                 window.history, translator, window.forward, window.pasteboard, poster,
                                 window.workspace, targets}};
    std::shared_ptr<InputDeviceMenu> devices =
        std::make_shared<InputDeviceMenu>(window.time, window.log, window.forward);
    LanguageMenu languages{window.defaults, window.log, window.forward, [] {}};
    TranscriptHistoryMenu history{window.history, delivery};
    QtMenu shown{makeStatusMenu({.inputDevices = devices->menu(),
                                 .languages = languages.menu(),
                                 .transcriptHistory = history.menu(),
                                 .pasteLastTranscript = [] {},
                                 .openMainWindowFromMenu = [] {},
                                 .quitApp = [] {}})};
};

} // namespace tovik::test

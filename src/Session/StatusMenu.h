// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Audio/Recorder.h"
#include "Platform/MainQueue.h"
#include "Platform/Subscription.h"
#include "Platform/SystemLog.h"
#include "Platform/UserDefaults.h"
#include "Platform/UserInterface.h"
#include "Platform/Workspace.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tovik {

/// The ways to the maker's web site. Main thread.
class MakerLinks {
public:
    static constexpr std::string_view kWebHost = "tovik.example";

    MakerLinks(Workspace& workspace, MainWindow& mainWindow, std::string_view webHost = kWebHost);

    void openTovikVoiceUpdates();
    /// Tells the user nothing, whether it works or not.
    void openTovikAIWebsite();

private:
    /// Nothing when the host is none that an address can name.
    [[nodiscard]] std::optional<std::string> url(std::string_view pathAndFragment) const;

    Workspace& workspace_;
    MainWindow& mainWindow_;
    const std::string webHost_;
};

class MacAudioManager;
class PushToTalk;
class TranscriptDelivery;
class TranscriptHistoryStore;
struct Platform;

/// Keeps the "Input Device" submenu in step with the microphones. Every device stands there twice, one row
/// after the other. Reports may come on any thread; everything else is for the main thread.
class InputDeviceMenu : public AudioDeviceSelectionDelegate {
public:
    /// Follows the microphones of the recorder, which outlives this.
    InputDeviceMenu(MainQueue& queue, SystemLog& log, MainWindow& mainWindow, MacAudioManager& recorder);

    /// The menu is empty until the first report.
    [[nodiscard]] const std::shared_ptr<Menu>& menu() const { return menu_; }

    void availableDevicesChanged(const std::vector<AudioDevice>& devices) override;
    void currentDeviceChanged(const std::optional<AudioDevice>& device) override;

    /// The user chose a microphone.
    void selectAudioDevice(const AudioDevice& device);

private:
    void showDevices(const std::vector<AudioDevice>& devices);
    void checkDevice(const AudioDevice& device);

    MainQueue& queue_;
    SystemLog& log_;
    MainWindow& mainWindow_;
    MacAudioManager& recorder_;
    std::shared_ptr<Menu> menu_ = std::make_shared<Menu>();
    Subscription reports_;
    Lifetime lifetime_;
};

/// The "Dictation Language" submenu. Main thread.
class LanguageMenu {
public:
    /// restartRecording: ends the running recording, if there is one, and begins another.
    LanguageMenu(UserDefaults& defaults, SystemLog& log, MainWindow& mainWindow,
                 std::function<void()> restartRecording);

    [[nodiscard]] const std::shared_ptr<Menu>& menu() const { return menu_; }

    /// The user chose a language; without an identifier the language is detected. Takes a copy, since the
    /// item that holds the identifier is replaced meanwhile.
    void languageMenuSelected(std::optional<std::string> localeIdentifier);

    /// Checks the language that is stored now.
    void showStoredChoice();

private:
    [[nodiscard]] MenuItem makeItem(const std::string& title,
                                    const std::optional<std::string>& localeIdentifier,
                                    const std::optional<std::string>& chosen);

    UserDefaults& defaults_;
    SystemLog& log_;
    MainWindow& mainWindow_;
    std::function<void()> restartRecording_;
    std::shared_ptr<Menu> menu_ = std::make_shared<Menu>();
};

/// The "Transcript History" submenu: the newest transcripts, made anew each time it opens and
/// whenever the history table is. Main thread.
class TranscriptHistoryMenu {
public:
    TranscriptHistoryMenu(const TranscriptHistoryStore& history, TranscriptDelivery& delivery,
                          MainWindow& mainWindow);

    [[nodiscard]] const std::shared_ptr<Menu>& menu() const { return menu_; }

    void reloadTranscriptHistoryMenu();

private:
    const TranscriptHistoryStore& history_;
    TranscriptDelivery& delivery_;
    std::shared_ptr<Menu> menu_ = std::make_shared<Menu>();
    Subscription historyChanges_;
};

/// The menu of the status item with its three submenus. Main thread.
class StatusMenu {
public:
    StatusMenu(const Platform& platform, MainWindow& mainWindow, MacAudioManager& recorder,
               PushToTalk& pushToTalk, TranscriptDelivery& delivery, const TranscriptHistoryStore& history,
               std::function<void()> quitApp);

    [[nodiscard]] const std::shared_ptr<Menu>& menu() const { return menu_; }

    /// The settings were changed elsewhere.
    void showStoredChoices() { languages_.showStoredChoice(); }

private:
    InputDeviceMenu inputDevices_;
    LanguageMenu languages_;
    TranscriptHistoryMenu transcriptHistory_;
    std::shared_ptr<Menu> menu_ = std::make_shared<Menu>();
};

} // namespace tovik

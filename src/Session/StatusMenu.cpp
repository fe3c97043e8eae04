// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Session/StatusMenu.h"

#include "Audio/DictationLanguage.h"
#include "Audio/MacAudioManager.h"
#include "Platform/Platform.h"
#include "Session/PushToTalk.h"
#include "Session/TranscriptDelivery.h"
#include "Speech/History/TranscriptHistoryStore.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <utility>

namespace tovik {

namespace {

bool isHostCharacter(char character) {
    return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z') ||
           (character >= '0' && character <= '9') || character == '.' || character == '-';
}

constexpr std::size_t kMostInTheMenu = 8;

bool looksAlike(const MenuItem& one, const MenuItem& other) {
    return one.title == other.title && one.representedText == other.representedText &&
           one.isChecked == other.isChecked;
}

/// Checks the items for which isChecked says so, and leaves a menu alone that says so already.
template <typename Predicate>
void checkItems(Menu& menu, Predicate isChecked) {
    auto items = menu.items();
    for (auto& item : items) {
        item.isChecked = isChecked(item);
    }
    if (!std::ranges::equal(items, menu.items(), looksAlike)) {
        menu.setItems(std::move(items));
    }
}

MenuItem submenuItem(const char* title, std::shared_ptr<Menu> submenu) {
    MenuItem item;
    item.title = title;
    item.submenu = std::move(submenu);
    return item;
}

MenuItem actionItem(const char* title, std::function<void()> action, const char* keyEquivalent = "") {
    MenuItem item;
    item.title = title;
    item.action = std::move(action);
    item.keyEquivalent = keyEquivalent;
    return item;
}

} // namespace

MakerLinks::MakerLinks(Workspace& workspace, MainWindow& mainWindow, std::string_view webHost)
    : workspace_(workspace),
      mainWindow_(mainWindow),
      webHost_(webHost) {}

void MakerLinks::openTovikVoiceUpdates() {
    const auto updates = url("/voice#download");
    if (!updates) {
        mainWindow_.showSavedToast("Update link unavailable");
        return;
    }
    const bool opened = workspace_.openUrl(*updates);
    mainWindow_.showSavedToast(opened ? "Opening updates" : "Could not open updates");
}

void MakerLinks::openTovikAIWebsite() {
    if (const auto home = url("/")) {
        (void)workspace_.openUrl(*home);
    }
}

std::optional<std::string> MakerLinks::url(std::string_view pathAndFragment) const {
    const bool isHost = !webHost_.empty() && std::all_of(webHost_.begin(), webHost_.end(), isHostCharacter);
    return isHost ? std::optional("https://" + webHost_ + std::string(pathAndFragment)) : std::nullopt;
}

StatusMenu::StatusMenu(const Platform& platform, MainWindow& mainWindow, MacAudioManager& recorder,
                       PushToTalk& pushToTalk, TranscriptDelivery& delivery,
                       const TranscriptHistoryStore& history, std::function<void()> quitApp)
    : inputDevices_(platform.mainQueue, platform.log, mainWindow, recorder),
      languages_(platform.defaults, platform.log, mainWindow,
                 [&pushToTalk] { pushToTalk.restartRecording(); }),
      transcriptHistory_(history, delivery, mainWindow) {
    menu_->setItems({
        submenuItem("Input Device", inputDevices_.menu()),
        submenuItem("Dictation Language", languages_.menu()),
        MenuItem::separator(),
        actionItem("Paste Last Transcript", [&delivery] { delivery.pasteLastTranscript(); }),
        submenuItem("Transcript History", transcriptHistory_.menu()),
        MenuItem::separator(),
        actionItem("Open Tovik Record", [&mainWindow] { mainWindow.present(); }),
        actionItem("Quit", std::move(quitApp), "q"),
    });
}

// ------------------------------------------------------------------------------- input devices

InputDeviceMenu::InputDeviceMenu(MainQueue& queue, SystemLog& log, MainWindow& mainWindow,
                                 MacAudioManager& recorder)
    : queue_(queue),
      log_(log),
      mainWindow_(mainWindow),
      recorder_(recorder),
      reports_(recorder.reportDevicesTo(*this)) {}

void InputDeviceMenu::availableDevicesChanged(const std::vector<AudioDevice>& devices) {
    queue_.async(lifetime_.guard([this, devices] { showDevices(devices); }));
}

void InputDeviceMenu::currentDeviceChanged(const std::optional<AudioDevice>& device) {
    if (device) {
        queue_.async(lifetime_.guard([this, chosen = *device] { checkDevice(chosen); }));
    }
}

void InputDeviceMenu::showDevices(const std::vector<AudioDevice>& devices) {
    std::vector<MenuItem> items;
    items.reserve(devices.size() * 2);
    for (const auto& device : devices) {
        MenuItem item;
        item.title = device.name;
        item.representedText = device.id;
        item.action = lifetime_.guard([this, device] { selectAudioDevice(device); });
        items.push_back(item);
        items.push_back(std::move(item));
    }

    // The mark goes by the device's place in the list, although the menu has two rows for each.
    if (const auto& current = recorder_.selectedDevice()) {
        const auto found = std::find(devices.begin(), devices.end(), *current);
        if (found != devices.end()) {
            items[static_cast<std::size_t>(found - devices.begin())].isChecked = true;
        }
    }
    // The list is reported every few seconds, and a menu that is made anew while it is open loses its place.
    if (!std::ranges::equal(items, menu_->items(), looksAlike)) {
        menu_->setItems(std::move(items));
    }
}

void InputDeviceMenu::checkDevice(const AudioDevice& device) {
    checkItems(*menu_, [&device](const MenuItem& item) { return item.representedText == device.id; });
}

void InputDeviceMenu::selectAudioDevice(const AudioDevice& device) {
    if (const auto selected = recorder_.selectDevice(device); !selected) {
        log_.printLine("[TovikVoice] Failed to select audio device: " + selected.error().description);
        return;
    }
    log_.printLine("[TovikVoice] Selected audio device: " + device.name);
    mainWindow_.showSavedToast("Input device saved");
}

// ---------------------------------------------------------------------------------- languages

LanguageMenu::LanguageMenu(UserDefaults& defaults, SystemLog& log, MainWindow& mainWindow,
                           std::function<void()> restartRecording)
    : defaults_(defaults),
      log_(log),
      mainWindow_(mainWindow),
      restartRecording_(std::move(restartRecording)) {
    const auto chosen = defaults_.string(kSelectedDictationLocaleKey);
    std::vector<MenuItem> items{makeItem(std::string(kAutoDetectTitle), std::nullopt, chosen),
                                MenuItem::separator()};
    for (const auto& [identifier, title] : localeDisplay()) {
        items.push_back(makeItem(title, identifier, chosen));
    }
    menu_->setItems(std::move(items));
}

MenuItem LanguageMenu::makeItem(const std::string& title, const std::optional<std::string>& localeIdentifier,
                                const std::optional<std::string>& chosen) {
    MenuItem item;
    item.title = title;
    item.representedText = localeIdentifier.value_or("");
    item.isChecked = localeIdentifier == chosen;
    item.action = [this, localeIdentifier] { languageMenuSelected(localeIdentifier); };
    return item;
}

void LanguageMenu::languageMenuSelected(std::optional<std::string> localeIdentifier) {
    if (localeIdentifier) {
        defaults_.set(kSelectedDictationLocaleKey, *localeIdentifier);
    } else {
        defaults_.remove(kSelectedDictationLocaleKey);
    }
    showStoredChoice();
    restartRecording_();
    log_.printLine("[TovikVoice] Dictation language changed to: " + localeIdentifier.value_or("Auto-detect"));
    mainWindow_.showSavedToast("Dictation language saved");
}

void LanguageMenu::showStoredChoice() {
    checkItems(*menu_, [chosen = defaults_.string(kSelectedDictationLocaleKey)](const MenuItem& item) {
        // Only the first item, which detects the language, stands for no identifier.
        return !item.isSeparator && (item.representedText.empty() ? !chosen : item.representedText == chosen);
    });
}

// ------------------------------------------------------------------------------------- history

TranscriptHistoryMenu::TranscriptHistoryMenu(const TranscriptHistoryStore& history,
                                             TranscriptDelivery& delivery, MainWindow& mainWindow)
    : history_(history),
      delivery_(delivery),
      historyChanges_(mainWindow.reloadHistoryTable.add([this] { reloadTranscriptHistoryMenu(); })) {
    menu_->onWillOpen = [this] { reloadTranscriptHistoryMenu(); };
    reloadTranscriptHistoryMenu();
}

void TranscriptHistoryMenu::reloadTranscriptHistoryMenu() {
    std::vector<MenuItem> items;
    const auto& entries = history_.entries();
    const auto count = std::min(entries.size(), kMostInTheMenu);
    for (std::size_t i = 0; i < count; ++i) {
        const auto& text = entries[i].text;
        MenuItem item;
        item.title = transcriptTitle(text);
        item.representedText = text;
        item.action = [this, text] { delivery_.pasteTranscript(text); };
        items.push_back(std::move(item));
    }
    if (items.empty()) {
        MenuItem none;
        none.title = "No transcripts yet";
        none.isEnabled = false;
        items.push_back(std::move(none));
    }
    menu_->setItems(std::move(items));
}

} // namespace tovik

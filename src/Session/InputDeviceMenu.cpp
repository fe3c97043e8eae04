// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Session/InputDeviceMenu.h"

#include "Audio/MacAudioManager.h"

#include <algorithm>

namespace tovik {

namespace {

bool looksAlike(const MenuItem& one, const MenuItem& other) {
    return one.title == other.title && one.representedText == other.representedText &&
           one.isChecked == other.isChecked;
}

} // namespace

InputDeviceMenu::InputDeviceMenu(MainQueue& queue, SystemLog& log, MainWindow& mainWindow)
    : queue_(queue),
      log_(log),
      mainWindow_(mainWindow) {}

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
    if (const auto current = recorder_ ? recorder_->selectedDevice() : std::nullopt) {
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
    auto items = menu_->items();
    bool changed = false;
    for (auto& item : items) {
        const bool isChecked = item.representedText == device.id;
        changed = changed || isChecked != item.isChecked;
        item.isChecked = isChecked;
    }
    if (changed) {
        menu_->setItems(std::move(items));
    }
}

void InputDeviceMenu::selectAudioDevice(const AudioDevice& device) {
    if (recorder_ == nullptr) {
        return;
    }
    if (const auto selected = recorder_->selectDevice(device); !selected) {
        log_.printLine("[TovikVoice] Failed to select audio device: " + selected.error().description);
        return;
    }
    log_.printLine("[TovikVoice] Selected audio device: " + device.name);
    mainWindow_.showSavedToast("Input device saved");
}

} // namespace tovik

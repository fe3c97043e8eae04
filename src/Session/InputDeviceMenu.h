// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Audio/AudioDevice.h"
#include "Audio/AudioDeviceSelectionDelegate.h"
#include "Platform/Lifetime.h"
#include "Platform/MainQueue.h"
#include "Platform/MainWindow.h"
#include "Platform/Menu.h"
#include "Platform/SystemLog.h"

#include <memory>
#include <vector>

namespace tovik {

class MacAudioManager;

/// Keeps the "Input Device" submenu in step with the microphones. Every device stands there twice, one row
/// after the other. Reports may come on any thread; everything else is for the main thread.
class InputDeviceMenu : public AudioDeviceSelectionDelegate {
public:
    InputDeviceMenu(MainQueue& queue, SystemLog& log, MainWindow& mainWindow);

    /// The menu is empty until the first report.
    [[nodiscard]] const std::shared_ptr<Menu>& menu() const { return menu_; }

    /// Where a choice goes; must outlive this. Until it is set, choices do nothing.
    void setRecorder(MacAudioManager& recorder) { recorder_ = &recorder; }

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
    MacAudioManager* recorder_ = nullptr;
    std::shared_ptr<Menu> menu_ = std::make_shared<Menu>();
    Lifetime lifetime_;
};

} // namespace tovik

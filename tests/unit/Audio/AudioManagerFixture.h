// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Audio/MacAudioManager.h"
#include "support/FakeAudioEngine.h"
#include "support/FakeSoundDevices.h"
#include "support/FakeSpeechService.h"
#include "support/ManualTime.h"
#include "support/MemoryUserDefaults.h"
#include "support/RecordingLog.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tovik::test {

/// Remembers what the manager reports of devices.
class RecordingDeviceDelegate : public AudioDeviceSelectionDelegate {
public:
    void availableDevicesChanged(const std::vector<AudioDevice>& devices) override {
        std::string report = "devices:";
        for (const auto& device : devices) {
            report += ' ' + device.id + '=' + device.name;
        }
        reports.push_back(std::move(report));
    }
    void currentDeviceChanged(const std::optional<AudioDevice>& device) override {
        reports.push_back("current: " + (device ? device->id : "none"));
    }

    std::vector<std::string> reports;
};

/// A manager on fakes. The clean-up of texts is recognizable: it wraps the text in angle brackets.
class AudioManagerFixture : public testing::Test {
protected:
    AudioManagerFixture() {
        devices.setDevices({builtin, usb});
        devices.setDefaultDeviceId(builtin.uniqueId);
    }

    /// Made late, so that a test can arrange the world first.
    MacAudioManager& manager() {
        if (!manager_) {
            manager_.emplace(
                MacAudioManager::Ports{time, time, log, defaults, engine, devices, hardware, speech},
                callbacks);
        }
        return *manager_;
    }
    void destroyManager() { manager_.reset(); }

    /// A recording is under way and nothing of its beginning is left in the records.
    void startRecording() {
        ASSERT_TRUE(manager().start().ok());
        engine.forgetCalls();
        linesBefore_ = log.printed().size();
    }

    /// Lines printed since the records were last cleared.
    [[nodiscard]] std::vector<std::string> newLines() const {
        const auto all = log.printed();
        return {all.begin() + static_cast<std::ptrdiff_t>(linesBefore_), all.end()};
    }
    void forgetLines() { linesBefore_ = log.printed().size(); }

    const CaptureDevice builtin{"builtin", "Built-in Microphone"};
    const CaptureDevice usb{"usb", "Desk Microphone"};
    const CaptureDevice airPods{"pods", "Ada's AirPods"};

    ManualTime time;
    RecordingLog log;
    MemoryUserDefaults defaults;
    FakeAudioEngine engine;
    FakeCaptureDevices devices;
    FakeAudioHardware hardware;
    FakeSpeechService speech;

    /// As the manager will be made with.
    MacAudioManager::Callbacks callbacks{
        .processTranscription =
            [](const std::string& text) { return text.empty() ? text : "<" + text + ">"; },
        .onTranscription = [this](const std::string& text) { finals.push_back(text); },
        .onPartialUpdate = [this](const std::string& text) { partials.push_back(text); },
        .onLevel = [this](float level) { levels.push_back(level); },
    };
    std::vector<std::string> finals;
    std::vector<std::string> partials;
    std::vector<float> levels;

private:
    std::optional<MacAudioManager> manager_;
    std::size_t linesBefore_ = 0;
};

/// A manager that is asked about devices.
class MacAudioManagerDevices : public AudioManagerFixture {
protected:
    void followWithDelegate() { reports_ = manager().reportDevicesTo(*delegate); }
    void dropDelegate() {
        reports_.end();
        delegate.reset();
    }
    [[nodiscard]] std::string selectedId() {
        return manager().selectedDevice() ? manager().selectedDevice()->id : "none";
    }
    [[nodiscard]] std::vector<std::string> listedIds() {
        std::vector<std::string> ids;
        for (const auto& device : manager().audioDevices()) {
            ids.push_back(device.id);
        }
        return ids;
    }

    std::unique_ptr<RecordingDeviceDelegate> delegate = std::make_unique<RecordingDeviceDelegate>();

private:
    Subscription reports_;
};

} // namespace tovik::test

// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Audio/MacAudioManager.h"

#include "Audio/DictationLanguage.h"
#include "Audio/RecognitionRequest.h"
#include "Audio/RecordingDisplay.h"

#include <algorithm>
#include <utility>

namespace tovik {

namespace {

constexpr std::size_t kTapFrames = 1024;
constexpr Seconds kPauseAfterStop{0.1};
/// A key that was pressed during the pause is told within it.
constexpr Seconds kListenOn{0.2};
constexpr Seconds kDeviceCheckInterval{5.0};
constexpr Seconds kDeviceChangeCooldown{1.5};
constexpr Seconds kRecoveryDelay{1.0};
constexpr auto kLastResortLocale = "en-US";

bool isWirelessHeadset(const std::string& name) {
    return name.find("AirPods") != std::string::npos || name.find("Bluetooth") != std::string::npos;
}

AudioDevice recordOf(const CaptureDevice& device) {
    return {device.uniqueId, device.localizedName, true};
}

} // namespace

MacAudioManager::MacAudioManager(const Ports& ports, Callbacks callbacks)
    : ports_(ports),
      callbacks_(std::move(callbacks)) {
    link_->manager = this;
    refreshAudioDevices();
    setupDeviceMonitoring();
    ports_.speechService.prepare(contextualStrings(CustomVocabulary::terms(ports_.defaults)));
}

MacAudioManager::~MacAudioManager() {
    {
        const std::lock_guard lock(link_->mutex);
        link_->manager = nullptr;
    }
    // The engine lives on: nothing of this dictation may stay in it. The recognizer is told as well, since
    // it waits for the end of the sound.
    if (request_) {
        endDictation(&AudioEngine::stop);
    }
    ports_.engine.closeAhead();
}

void MacAudioManager::print(const std::string& line) {
    ports_.log.printLine("[TovikVoice] " + line);
}

// ---------------------------------------------------------------------------------- recognition

Result<void> MacAudioManager::start() {
    if (ports_.engine.isRunning()) {
        return {};
    }
    closing_.end();
    logDeviceInUse();
    request_ = makeRequest();
    speechRecognizer_ = chooseRecognizer();
    startTask();
    installTap();
    ports_.engine.prepare();
    auto started = ports_.engine.start();
    if (!started) {
        print("AVAudioEngine start failed: " + started.error().description);
        ports_.engine.closeAhead();
    }
    return started;
}

void MacAudioManager::logDeviceInUse() {
    if (!selectedDevice_) {
        return;
    }
    const auto devices = ports_.captureDevices.devices();
    const auto found = std::find_if(devices.begin(), devices.end(), [this](const CaptureDevice& device) {
        return device.uniqueId == selectedDevice_->id;
    });
    print(found != devices.end() ? "Using selected audio device: " + found->localizedName
                                 : "Selected device not found, will use system default");
}

std::shared_ptr<RecognitionRequest> MacAudioManager::makeRequest() {
    RecognitionSettings settings;
    settings.reportPartialResults = true;
    settings.contextualStrings = contextualStrings(CustomVocabulary::terms(ports_.defaults));
    settings.addPunctuation = true;
    settings.taskHint = RecognitionSettings::TaskHint::dictation;
    return std::make_shared<RecognitionRequest>(std::move(settings), ports_.engine.inputFormat().sampleRate);
}

std::shared_ptr<SpeechRecognizer> MacAudioManager::availableRecognizer(const std::string& locale) {
    auto recognizer = ports_.speechService.makeRecognizer(locale);
    return recognizer && recognizer->isAvailable() ? recognizer : nullptr;
}

std::shared_ptr<SpeechRecognizer> MacAudioManager::chooseRecognizer() {
    if (const auto chosen = ports_.defaults.string(kSelectedDictationLocaleKey)) {
        if (auto recognizer = availableRecognizer(*chosen)) {
            print("Using user-selected locale: " + *chosen);
            return recognizer;
        }
    }
    if (auto recognizer = availableRecognizer(ports_.speechService.currentLocaleIdentifier())) {
        return recognizer;
    }
    for (const auto& locale : supportedLocales()) {
        if (auto recognizer = availableRecognizer(locale)) {
            return recognizer;
        }
    }
    return ports_.speechService.makeRecognizer(kLastResortLocale);
}

void MacAudioManager::startTask() {
    if (!speechRecognizer_) {
        return;
    }
    ++dictationsWithoutText_;
    {
        const std::lock_guard lock(link_->mutex);
        ++link_->unanswered;
    }
    recognitionTask_ = speechRecognizer_->startTask(
        request_, [weak = std::weak_ptr(link_), isAnswered = std::make_shared<bool>(false)](
                      const std::optional<RecognitionResult>& result, const std::optional<Error>& error) {
            const auto link = weak.lock();
            if (!link) {
                return;
            }
            const std::lock_guard lock(link->mutex);
            if (!link->manager) {
                return;
            }
            link->manager->handleResult(result, error);
            const bool endsTask = result ? result->isFinal : error.has_value();
            if (endsTask && !std::exchange(*isAnswered, true)) {
                link->manager->countAnswer();
            }
        });
}

/// On the recognizer's thread, with the link locked.
void MacAudioManager::countAnswer() {
    --link_->unanswered;
    link_->answered.notify_all();
    // Behind whatever the callback of the text has queued.
    ports_.mainQueue.async(lifetime_.guard([this] {
        if (--dictationsWithoutText_ == 0) {
            recognized.tell();
        }
    }));
}

bool MacAudioManager::waitUntilRecognized(Seconds patience) {
    std::unique_lock lock(link_->mutex);
    return link_->answered.wait_for(lock, patience, [this] { return link_->unanswered == 0; });
}

void MacAudioManager::handleResult(const std::optional<RecognitionResult>& result,
                                   const std::optional<Error>& error) {
    if (result && result->isFinal) {
        const auto text = callbacks_.processTranscription(result->formattedString);
        if (callbacks_.onTranscription) {
            callbacks_.onTranscription(text);
        }
    } else if (result) {
        if (callbacks_.onPartialUpdate) {
            callbacks_.onPartialUpdate(result->formattedString);
        }
    } else if (error) {
        print("Transcription error: " + error->description);
    }
}

void MacAudioManager::installTap() {
    if (tappedRequest_) {
        return;
    }
    tappedRequest_ = request_;
    // The manager takes its tap away before it goes, and the engine calls no tap that was taken away.
    ports_.engine.installTap(kTapFrames, [this, request = request_](const AudioBuffer& buffer) {
        if (callbacks_.onLevel) {
            callbacks_.onLevel(LevelMeter::level(buffer.frames));
        }
        request->append(buffer);
    });
}

void MacAudioManager::stop() {
    const bool wasRunning = ports_.engine.isRunning();
    endDictation(wasRunning ? &AudioEngine::listenOn : &AudioEngine::stop);
    ports_.clock.pause(kPauseAfterStop);
    if (wasRunning) {
        closing_ = ports_.mainQueue.after(kListenOn, [this] { endClosing(); });
    }
}

void MacAudioManager::endClosing() {
    closing_.end();
    ports_.engine.closeAhead();
}

void MacAudioManager::endDictation(void (AudioEngine::*stopEngine)()) {
    if (request_) {
        // Up to a buffer of sound waits for its remainder; it is the end of the user's last word.
        ports_.engine.flush();
        request_->endAudio();
    }
    (ports_.engine.*stopEngine)();
    if (tappedRequest_) {
        ports_.engine.removeTap();
        // Not the current request when a tap was left over by a start that failed: what was spoken since
        // went to the earlier request, whose recognizer still waits for the end.
        std::exchange(tappedRequest_, nullptr)->endAudio();
    }
    if (recognitionTask_) {
        recognitionTask_->finish();
        if (const auto lost = request_->droppedFrames(); lost > 0) {
            print("The recognizer fell behind: " + std::to_string(lost) + " frames of sound are lost");
        }
    }
    recognitionTask_.reset();
    request_.reset();
}

void MacAudioManager::stopAndListenOn() {
    endDictation(&AudioEngine::listenOn);
    ports_.clock.pause(kPauseAfterStop);
}

void MacAudioManager::stopForAnotherDevice() {
    endDictation(&AudioEngine::stop);
    // The user goes on speaking during the pause.
    ports_.engine.openAhead();
    ports_.clock.pause(kPauseAfterStop);
}

void MacAudioManager::openAhead(Seconds ago) {
    closing_.end();
    ports_.engine.openAhead();
    ports_.engine.keepOnly(ago);
}

void MacAudioManager::closeAhead() {
    // Nobody has opened it since the last dictation: that one still listens on.
    if (!closing_) {
        ports_.engine.closeAhead();
    }
}

// -------------------------------------------------------------------------------------- devices

Subscription MacAudioManager::reportDevicesTo(AudioDeviceSelectionDelegate& delegate) {
    deviceDelegate_ = &delegate;
    return Subscription(lifetime_.guard([this] { deviceDelegate_ = nullptr; }));
}

void MacAudioManager::setupDeviceMonitoring() {
    connected_ = ports_.captureDevices.onConnected(lifetime_.guard(
        [this](const CaptureDevice& device) { handleDeviceChange(DeviceChange::connected, device); }));
    disconnected_ = ports_.captureDevices.onDisconnected(lifetime_.guard(
        [this](const CaptureDevice& device) { handleDeviceChange(DeviceChange::disconnected, device); }));
    deviceCheckTimer_ =
        ports_.mainQueue.every(kDeviceCheckInterval, lifetime_.guard([this] { refreshAudioDevices(); }));
}

void MacAudioManager::refreshAudioDevices() {
    checkAndAttemptAirPodsRecovery();

    const auto defaultId = ports_.captureDevices.defaultDeviceId();
    std::vector<AudioDevice> devices;
    for (const auto& device : ports_.captureDevices.devices()) {
        devices.push_back(recordOf(device));
        if (device.uniqueId == defaultId) {
            lastKnownDefaultDevice_ = devices.back();
        }
    }
    audioDevices_ = std::move(devices);

    if (!selectedDevice_) {
        selectedDevice_ = lastKnownDefaultDevice_;
    } else if (std::find(audioDevices_.begin(), audioDevices_.end(), *selectedDevice_) ==
               audioDevices_.end()) {
        print("Selected audio device no longer available, switching to default");
        selectedDevice_ = lastKnownDefaultDevice_;
    }

    ports_.mainQueue.async(lifetime_.guard([this] {
        if (deviceDelegate_ != nullptr) {
            deviceDelegate_->availableDevicesChanged(audioDevices_);
            deviceDelegate_->currentDeviceChanged(selectedDevice_);
        }
    }));
}

void MacAudioManager::handleDeviceChange(DeviceChange change, const CaptureDevice& device) {
    const auto now = ports_.clock.now();
    const auto coolDown = std::chrono::duration_cast<Date::duration>(kDeviceChangeCooldown);
    // One that ends later than one that begins now was set before the clock was put back.
    if (deviceChangeCooldownUntil_ && *deviceChangeCooldownUntil_ > now &&
        *deviceChangeCooldownUntil_ <= now + coolDown) {
        return;
    }
    deviceChangeCooldownUntil_ = now + coolDown;
    print("Audio device change detected");

    if (change == DeviceChange::connected && isWirelessHeadset(device.localizedName)) {
        print("AirPods or Bluetooth device reconnected - attempting recovery");
        ports_.mainQueue.asyncAfter(kRecoveryDelay,
                                    lifetime_.guard([this] { checkAndAttemptAirPodsRecovery(); }));
    }
    refreshAudioDevices();

    // After the refresh on purpose: when it has already moved the selection to the default device, the
    // recording goes on undisturbed.
    if (change == DeviceChange::disconnected && selectedDevice_ && selectedDevice_->id == device.uniqueId &&
        ports_.engine.isRunning()) {
        stopForAnotherDevice();
        if (const auto restarted = start(); !restarted) {
            print("Failed to restart recording after device disconnect: " + restarted.error().description);
        }
    }
}

Result<void> MacAudioManager::selectDevice(const AudioDevice& device) {
    if (std::find(audioDevices_.begin(), audioDevices_.end(), device) == audioDevices_.end()) {
        return Error{"TovikVoice", 1, "Device not found"};
    }
    selectedDevice_ = device;
    print("Selected audio device: " + device.name);
    ports_.mainQueue.async(lifetime_.guard([this] {
        if (deviceDelegate_ != nullptr) {
            deviceDelegate_->currentDeviceChanged(selectedDevice_);
        }
    }));
    if (!ports_.engine.isRunning()) {
        return {};
    }
    stopForAnotherDevice();
    return start();
}

std::optional<CaptureDevice> MacAudioManager::captureDeviceForName(const std::string& name) const {
    for (auto& device : ports_.captureDevices.devices()) {
        if (device.localizedName.find(name) != std::string::npos) {
            return std::move(device);
        }
    }
    return std::nullopt;
}

void MacAudioManager::checkAndAttemptAirPodsRecovery() {
    const auto ids = ports_.audioHardware.deviceIds();
    if (!ids) {
        print("Error getting CoreAudio device list: " + std::to_string(ids.error().code));
        return;
    }
    for (const auto id : ids.value()) {
        const auto name = ports_.audioHardware.deviceName(id);
        if (!name || !isWirelessHeadset(*name)) {
            continue;
        }
        print("Found Bluetooth audio device: " + *name);
        if (ports_.engine.isRunning() && recoverWith(*name)) {
            return;
        }
    }
}

/// Whether the recording runs again, with this device.
bool MacAudioManager::recoverWith(const std::string& deviceName) {
    const auto device = captureDeviceForName(deviceName);
    if (!device) {
        return false;
    }
    print("Attempting to recover with AirPods/Bluetooth device: " + device->localizedName);
    stopForAnotherDevice();
    selectedDevice_ = recordOf(*device);
    const auto restarted = start();
    if (!restarted) {
        print("Failed to restart with recovered AirPods: " + restarted.error().description);
    }
    return restarted.ok();
}

} // namespace tovik

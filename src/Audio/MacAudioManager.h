// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Audio/Recorder.h"
#include "Platform/AudioEngine.h"
#include "Platform/MainQueue.h"
#include "Platform/SpeechService.h"
#include "Platform/Subscription.h"
#include "Platform/SystemLog.h"
#include "Platform/UserDefaults.h"

#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tovik {

/// Owns the microphone and the recognizer for one dictation at a time, and keeps the list of microphones.
/// Made, used and destroyed on the main thread; its callbacks arrive on others.
///
/// The recording always comes from the system's default input. The chosen device is remembered and named in
/// the log, and is what a restart of a running recording is about.
class MacAudioManager : public Recorder {
public:
    /// What it works with; all of it outlives the manager.
    struct Ports {
        Clock& clock;
        MainQueue& mainQueue;
        SystemLog& log;
        UserDefaults& defaults;
        AudioEngine& engine;
        CaptureDevices& captureDevices;
        AudioHardware& audioHardware;
        SpeechService& speechService;
    };

    /// They run on the thread of the recognizer or of the microphone, must not block, and must not call the
    /// manager. Each but the first may be absent.
    struct Callbacks {
        /// The clean-up of final texts.
        std::function<std::string(const std::string& text)> processTranscription;
        /// The final text of a dictation, cleaned up; may come long after stop(). Not called for a dictation
        /// that ends in an error.
        std::function<void(const std::string& text)> onTranscription;
        /// Every hypothesis on the way to it, as the recognizer gave it.
        std::function<void(const std::string& text)> onPartialUpdate;
        /// How loud the newest buffer is, 0...1.
        std::function<void(float level)> onLevel;
    };

    static constexpr std::string_view kAudioDeviceBluetooth = "AppleBluetoothAudio";

    /// Reads the device list and follows it from then on; lets the recognizers learn the vocabulary.
    MacAudioManager(const Ports& ports, Callbacks callbacks);
    /// Waits for a callback that is under way; none begins afterwards. A dictation that runs is given up.
    ~MacAudioManager() override;
    MacAudioManager(const MacAudioManager&) = delete;
    MacAudioManager& operator=(const MacAudioManager&) = delete;

    /// When starting the microphone fails, what was prepared stays until the next stop().
    Result<void> start() override;
    /// Blocks for 0.1 s. The microphone stays open a little longer, since the user may press the talk key for
    /// the next dictation while this thread cannot hear of it.
    void stop() override;
    /// Blocks for 0.1 s.
    void stopAndListenOn() override;
    void openAhead(Seconds ago) override;
    void closeAhead() override;
    [[nodiscard]] bool isRecognizing() const override { return dictationsWithoutText_ > 0; }
    /// Once it is true, onTranscription has been called with every text.
    [[nodiscard]] bool waitUntilRecognized(Seconds patience) override;

    /// Remembers the device, and restarts a running recording. Fails with "Device not found" when it is not
    /// in audioDevices(), or as start() does.
    Result<void> selectDevice(const AudioDevice& device);

    /// Reads the device list anew and queues a report to the delegate. While a recording runs and a wireless
    /// headset is there, the recording is restarted with it first.
    void refreshAudioDevices();

    [[nodiscard]] const std::vector<AudioDevice>& audioDevices() const { return audioDevices_; }
    [[nodiscard]] const std::optional<AudioDevice>& selectedDevice() const { return selectedDevice_; }

    /// Reports to this delegate alone until the token is dropped. It hears of the first device list when it
    /// comes before the main queue runs again.
    [[nodiscard]] Subscription reportDevicesTo(AudioDeviceSelectionDelegate& delegate);

private:
    /// The way from the recognizer's thread back to the manager, and the lock that keeps the manager alive
    /// while a result is handled.
    struct Link {
        std::mutex mutex;
        MacAudioManager* manager = nullptr;
        int unanswered = 0;
        std::condition_variable answered;
    };
    enum class DeviceChange { connected, disconnected };

    void logDeviceInUse();
    [[nodiscard]] std::shared_ptr<RecognitionRequest> makeRequest();
    [[nodiscard]] std::shared_ptr<SpeechRecognizer> chooseRecognizer();
    [[nodiscard]] std::shared_ptr<SpeechRecognizer> availableRecognizer(const std::string& locale);
    void startTask();
    void installTap();
    void endDictation(void (AudioEngine::*stopEngine)());
    void stopForAnotherDevice();
    void endClosing();
    void handleResult(const std::optional<RecognitionResult>& result, const std::optional<Error>& error);
    void countAnswer();

    void setupDeviceMonitoring();
    void handleDeviceChange(DeviceChange change, const CaptureDevice& device);
    void checkAndAttemptAirPodsRecovery();
    [[nodiscard]] bool recoverWith(const std::string& deviceName);
    [[nodiscard]] std::optional<CaptureDevice> captureDeviceForName(const std::string& name) const;
    void print(const std::string& line);

    const Ports ports_;
    const Callbacks callbacks_;

    std::shared_ptr<RecognitionRequest> request_;
    std::unique_ptr<RecognitionTask> recognitionTask_;
    std::shared_ptr<SpeechRecognizer> speechRecognizer_;
    /// The request that the installed tap feeds; nothing without a tap.
    std::shared_ptr<RecognitionRequest> tappedRequest_;

    std::vector<AudioDevice> audioDevices_;
    std::optional<AudioDevice> selectedDevice_;
    std::optional<AudioDevice> lastKnownDefaultDevice_;
    AudioDeviceSelectionDelegate* deviceDelegate_ = nullptr;
    std::optional<Date> deviceChangeCooldownUntil_;
    Subscription deviceCheckTimer_;
    /// Closes the microphone that listens on after a dictation.
    Subscription closing_;
    Subscription connected_;
    Subscription disconnected_;

    int dictationsWithoutText_ = 0;
    const std::shared_ptr<Link> link_ = std::make_shared<Link>();
    Lifetime lifetime_;
};

} // namespace tovik

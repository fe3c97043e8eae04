// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Linux/PulseAudio/PulseAudioDevices.h"

#include <algorithm>
#include <utility>

namespace tovik {

namespace {

CaptureDevice asDevice(const SoundSource& source) {
    return {source.name, source.description};
}

// The server counts inputs and outputs apart; one number must tell them apart.
std::uint32_t idOfSource(std::uint32_t index) {
    return index * 2;
}
std::uint32_t idOfSink(std::uint32_t index) {
    return index * 2 + 1;
}

} // namespace

PulseAudioDevices::PulseAudioDevices(PulseAudioConnection& connection, MainQueue& queue,
                                     const UserDefaults& defaults)
    : connection_(connection),
      defaults_(defaults),
      directory_(std::make_shared<SoundDirectory>(connection.thread())) {
    // Looks at its guard on the main thread only: the sound thread merely carries it there.
    std::function<void()> told = lifetime_.guard([this] { tellWhatChanged(); });
    directory_->observe(connection_, [&queue, told] { queue.async(told); });
    connection_.add(directory_);
}

// The directory may be busy on the sound thread, so its end is left to that thread.
PulseAudioDevices::~PulseAudioDevices() {
    connection_.post([directory = std::move(directory_)] { directory->leave(); });
}

std::vector<SoundSource> PulseAudioDevices::microphones() const {
    return directory_->listing().microphones(defaults_.boolean("platform.listMonitors").value_or(false));
}

std::vector<CaptureDevice> PulseAudioDevices::devices() const {
    std::vector<CaptureDevice> devices;
    for (const auto& source : microphones()) {
        devices.push_back(asDevice(source));
    }
    return devices;
}

std::optional<std::string> PulseAudioDevices::defaultDeviceId() const {
    const auto listing = directory_->listing();
    const auto* source = listing.usableDefault();
    return source == nullptr ? std::nullopt : std::optional(source->name);
}

Result<std::vector<std::uint32_t>> PulseAudioDevices::deviceIds() const {
    // Without a server there is nothing, and that has been said once already.
    const auto listing = directory_->listing();
    std::vector<std::uint32_t> ids;
    for (const auto& source : microphones()) {
        ids.push_back(idOfSource(source.index));
    }
    for (const auto& sink : listing.sinks) {
        ids.push_back(idOfSink(sink.index));
    }
    return ids;
}

std::optional<std::string> PulseAudioDevices::deviceName(std::uint32_t id) const {
    const auto listing = directory_->listing();
    for (const auto& source : listing.sources) {
        if (idOfSource(source.index) == id && !source.description.empty()) {
            return source.description;
        }
    }
    for (const auto& sink : listing.sinks) {
        if (idOfSink(sink.index) == id && !sink.description.empty()) {
            return sink.description;
        }
    }
    return std::nullopt;
}

Subscription PulseAudioDevices::onConnected(std::function<void(const CaptureDevice&)> handler) {
    // What is there already is no news to whoever begins to listen.
    tellWhatChanged();
    return connected_->add(std::move(handler));
}

Subscription PulseAudioDevices::onDisconnected(std::function<void(const CaptureDevice&)> handler) {
    return disconnected_->add(std::move(handler));
}

MicrophoneStatus PulseAudioDevices::microphoneStatus() const {
    const auto server = connection_.status();
    if (server.turnsAway(std::chrono::steady_clock::now())) {
        return MicrophoneStatus::denied;
    }
    const auto listing = directory_->listing();
    if (server.state != SoundServerStatus::State::ready || !listing.known) {
        return MicrophoneStatus::unknown;
    }
    return listing.microphones(false).empty() ? MicrophoneStatus::restricted : MicrophoneStatus::authorized;
}

std::string PulseAudioDevices::microphoneExplanation() const {
    switch (microphoneStatus()) {
    case MicrophoneStatus::restricted:
        return "No microphone was found. Plug one in, or switch one on in the sound settings.";
    case MicrophoneStatus::denied:
        return "The sound server does not let this program record. Allow it in the privacy or sound "
               "settings.";
    case MicrophoneStatus::unknown:
        return "The sound server does not answer. Start PulseAudio or PipeWire, or log in again.";
    default:
        return {};
    }
}

void PulseAudioDevices::tellWhatChanged() {
    Known now;
    std::vector<CaptureDevice> arrived;
    std::vector<CaptureDevice> left;
    for (const auto& source : microphones()) {
        now.emplace(source.index, asDevice(source));
        if (const auto before = known_.find(source.index);
            before == known_.end() || before->second.uniqueId != source.name) {
            arrived.push_back(asDevice(source));
        }
    }
    for (const auto& [index, device] : known_) {
        if (const auto still = now.find(index);
            still == now.end() || still->second.uniqueId != device.uniqueId) {
            left.push_back(device);
        }
    }
    known_ = std::move(now);
    // A handler may drop what it was handed, these devices included.
    const auto disconnected = disconnected_;
    const auto connected = connected_;
    for (const auto& device : left) {
        disconnected->tell(device);
    }
    for (const auto& device : arrived) {
        connected->tell(device);
    }
}

} // namespace tovik

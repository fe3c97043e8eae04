// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Linux/PulseAudio/PulseAudioConnection.h"

#include <algorithm>
#include <utility>

namespace tovik {

namespace {

constexpr Seconds kFirstRetry{0.05};
constexpr Seconds kLongestRetry{1.0};
// A server that has accepted answers within milliseconds; a service manager may still be starting it.
constexpr Seconds kSilence{1.0};
constexpr std::chrono::seconds kRefusalCounts{10};

pulse::ProplistHandle describeProgram() {
    pulse::ProplistHandle properties(pa_proplist_new());
    pa_proplist_sets(properties.get(), PA_PROP_APPLICATION_NAME, "Tovik Record");
    pa_proplist_sets(properties.get(), PA_PROP_APPLICATION_ID, "tovik-record");
    pa_proplist_sets(properties.get(), PA_PROP_APPLICATION_ICON_NAME, "tovik-record");
    return properties;
}

bool isRefusal(int error) {
    return error == PA_ERR_ACCESS || error == PA_ERR_AUTHKEY;
}

} // namespace

bool SoundServerStatus::turnsAway(std::chrono::steady_clock::time_point now) const {
    return state == State::refused || (recordingRefused && now - *recordingRefused < kRefusalCounts);
}

PulseAudioConnection::PulseAudioConnection(SystemLog& log, std::string address)
    : log_(log),
      address_(std::move(address)),
      retryDelay_(kFirstRetry) {
    status_.since = std::chrono::steady_clock::now();
    thread_.post([this] { connect(true); });
}

PulseAudioConnection::~PulseAudioConnection() {
    thread_.post([this] {
        retry_.end();
        silence_.end();
        if (context_) {
            tellClients([](Client& client) { client.serverLost(); });
            context_.reset();
        }
    });
}

SoundServerStatus PulseAudioConnection::status() const {
    const std::lock_guard lock(mutex_);
    return status_;
}

void PulseAudioConnection::noteRecording(bool refused) {
    const std::lock_guard lock(mutex_);
    status_.recordingRefused = refused ? std::optional(std::chrono::steady_clock::now()) : std::nullopt;
}

void PulseAudioConnection::hurry() {
    thread_.post([this] {
        if (!context_) {
            retryDelay_ = kFirstRetry;
            connect(true);
        }
    });
}

void PulseAudioConnection::add(std::weak_ptr<Client> client) {
    thread_.post([this, client = std::move(client)] {
        clients_.push_back(client);
        const auto alive = client.lock();
        if (alive && context_ && pa_context_get_state(context_.get()) == PA_CONTEXT_READY) {
            alive->serverReady(*context_);
        }
    });
}

void PulseAudioConnection::log(const std::string& text) {
    log_.printLine("[TovikVoice] " + text);
}

void PulseAudioConnection::connect(bool mayStartServer) {
    retry_.end();
    const auto properties = describeProgram();
    context_.reset(pa_context_new_with_proplist(&thread_.api(), nullptr, properties.get()));
    if (!context_) {
        lose(PA_ERR_UNKNOWN);
        return;
    }
    pa_context_set_state_callback(
        context_.get(),
        [](pa_context*, void* self) { static_cast<PulseAudioConnection*>(self)->stateChanged(); }, this);
    const auto flags = mayStartServer ? PA_CONTEXT_NOFLAGS : PA_CONTEXT_NOAUTOSPAWN;
    const auto* address = address_.empty() ? nullptr : address_.c_str();
    silence_ = thread_.after(kSilence, [this] { announceSilence(); });
    // Most failures are told to the state callback before this returns, and then a retry is due already.
    if (pa_context_connect(context_.get(), address, flags, nullptr) < 0 && !retry_) {
        lose(pa_context_errno(context_.get()));
    }
}

void PulseAudioConnection::stateChanged() {
    switch (pa_context_get_state(context_.get())) {
    case PA_CONTEXT_READY:
        becomeReady();
        break;
    case PA_CONTEXT_FAILED:
    case PA_CONTEXT_TERMINATED:
        lose(pa_context_errno(context_.get()));
        break;
    case PA_CONTEXT_AUTHORIZING:
        // Until now it was not known whether anybody is there at all.
        setState(SoundServerStatus::State::connecting, 0);
        break;
    default:
        break;
    }
}

void PulseAudioConnection::becomeReady() {
    silence_.end();
    retryDelay_ = kFirstRetry;
    setState(SoundServerStatus::State::ready, 0);
    if (announced_ == Announced::lost) {
        log(wasReady_ ? "Sound server is back" : "Sound server is there");
        announced_ = Announced::nothing;
    }
    wasReady_ = true;
    tellClients([this](Client& client) { client.serverReady(*context_); });
}

void PulseAudioConnection::lose(int error) {
    silence_.end();
    const auto before = status().state;
    const bool refused = isRefusal(error);
    setState(refused ? SoundServerStatus::State::refused : SoundServerStatus::State::absent, error);
    if (before == SoundServerStatus::State::ready) {
        announceLoss("Sound server lost: " + std::string(pa_strerror(error)));
    } else if (refused) {
        announceLoss("Sound server refuses this program: " + std::string(pa_strerror(error)));
    } else {
        announceLoss("Sound server not reachable: " + std::string(pa_strerror(error)));
    }
    tellClients([](Client& client) { client.serverLost(); });
    retryLater();
}

void PulseAudioConnection::retryLater() {
    // The context may be telling of its end just now, so it is let go of later.
    retry_ = thread_.after(Seconds(0), [this] {
        context_.reset();
        const auto delay = std::exchange(retryDelay_, std::min(retryDelay_ * 2, kLongestRetry));
        retry_ = thread_.after(delay, [this] { connect(false); });
    });
}

void PulseAudioConnection::announceSilence() {
    announceLoss("Sound server does not answer");
}

void PulseAudioConnection::announceLoss(const std::string& text) {
    if (std::exchange(announced_, Announced::lost) == Announced::nothing) {
        log(text);
    }
}

void PulseAudioConnection::setState(SoundServerStatus::State state, int error) {
    const std::lock_guard lock(mutex_);
    if (status_.state != state) {
        status_.since = std::chrono::steady_clock::now();
        status_.recordingRefused.reset();
    }
    status_.state = state;
    status_.error = error;
}

void PulseAudioConnection::tellClients(const std::function<void(Client&)>& what) {
    std::erase_if(clients_, [](const auto& client) { return client.expired(); });
    for (const auto& client : clients_) {
        if (const auto alive = client.lock()) {
            what(*alive);
        }
    }
}

} // namespace tovik

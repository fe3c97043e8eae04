// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Linux/PulseAudio/PulseAudioConnection.h"

#include <signal.h>
#include <sys/eventfd.h>
#include <sys/time.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <stdexcept>
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

struct Timer {
    std::function<void()> work;
    Seconds interval{0};
    pa_mainloop_api* api = nullptr;
    pa_time_event* event = nullptr;
};

timeval fromNow(Seconds delay) {
    timeval when{};
    gettimeofday(&when, nullptr);
    pa_timeval_add(&when, static_cast<pa_usec_t>(delay.count() * 1e6));
    return when;
}

} // namespace

SoundThread::SoundThread() : wakeUp_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)), loop_(pa_mainloop_new()) {
    if (wakeUp_ < 0 || !loop_) {
        throw std::runtime_error("no file descriptors left for the sound thread");
    }
    // Signals are the main thread's business; a broken pipe to the server is told by the write that fails.
    sigset_t all;
    sigset_t before;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before);
    thread_ = std::thread([this] { run(); });
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
}

SoundThread::~SoundThread() {
    post([this] { api().quit(&api(), 0); });
    thread_.join();
    loop_.reset();
    close(wakeUp_);
}

void SoundThread::post(std::function<void()> work) {
    {
        const std::lock_guard lock(mutex_);
        posted_.push_back(std::move(work));
    }
    const std::uint64_t one = 1;
    // Can only fail when the counter is full, and then the thread wakes up anyway.
    [[maybe_unused]] const auto written = write(wakeUp_, &one, sizeof one);
}

pa_mainloop_api& SoundThread::api() {
    return *pa_mainloop_get_api(loop_.get());
}

Subscription SoundThread::after(Seconds delay, std::function<void()> work) {
    auto timer = std::make_shared<Timer>();
    timer->work = std::move(work);
    timer->api = &api();
    const auto when = fromNow(delay);
    timer->event = timer->api->time_new(
        timer->api, &when,
        [](pa_mainloop_api* api, pa_time_event* event, const timeval*, void* data) {
            // Dropping the token inside the work frees the event.
            const auto due = std::exchange(static_cast<Timer*>(data)->work, nullptr);
            api->time_restart(event, nullptr);
            if (due) {
                due();
            }
        },
        timer.get());
    return Subscription([timer] { timer->api->time_free(timer->event); });
}

Subscription SoundThread::every(Seconds interval, std::function<void()> work) {
    auto timer = std::make_shared<Timer>();
    timer->work = std::move(work);
    timer->interval = interval;
    timer->api = &api();
    const auto when = fromNow(interval);
    timer->event = timer->api->time_new(
        timer->api, &when,
        [](pa_mainloop_api* api, pa_time_event* event, const timeval*, void* data) {
            auto& due = *static_cast<Timer*>(data);
            const auto next = fromNow(due.interval);
            api->time_restart(event, &next);
            due.work();
        },
        timer.get());
    return Subscription([timer] { timer->api->time_free(timer->event); });
}

void SoundThread::run() {
    pthread_setname_np(pthread_self(), "tovik-sound");
    auto* event = api().io_new(
        &api(), wakeUp_, PA_IO_EVENT_INPUT,
        [](pa_mainloop_api*, pa_io_event*, int, pa_io_event_flags_t, void* self) {
            static_cast<SoundThread*>(self)->runPosted();
        },
        this);
    pa_mainloop_run(loop_.get(), nullptr);
    api().io_free(event);
}

void SoundThread::runPosted() {
    std::uint64_t count = 0;
    [[maybe_unused]] const auto taken = read(wakeUp_, &count, sizeof count);
    std::vector<std::function<void()>> due;
    {
        const std::lock_guard lock(mutex_);
        due.swap(posted_);
    }
    for (auto& work : due) {
        work();
        work = nullptr;
    }
}

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

// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Linux/PulseAudio/SoundThread.h"

#include <signal.h>
#include <sys/eventfd.h>
#include <sys/time.h>
#include <unistd.h>

#include <cstdint>
#include <memory>
#include <stdexcept>
#include <utility>

namespace tovik {

namespace {

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

} // namespace tovik

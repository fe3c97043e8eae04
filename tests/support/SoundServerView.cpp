// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "support/SoundServerView.h"

#include <chrono>
#include <stdexcept>
#include <utility>

namespace tovik::test {

namespace {

constexpr std::chrono::seconds kPatienceWithAnswers{10};
constexpr int kLookAgainMicroseconds = 5000;

} // namespace

SoundServerView::SoundServerView(const std::string& address)
    : loop_(pa_mainloop_new()),
      context_(pa_context_new(pa_mainloop_get_api(loop_.get()), "view")) {
    pa_context_connect(context_.get(), address.c_str(), PA_CONTEXT_NOAUTOSPAWN, nullptr);
    const auto limit = std::chrono::steady_clock::now() + kPatienceWithAnswers;
    while (pa_context_get_state(context_.get()) != PA_CONTEXT_READY) {
        if (std::chrono::steady_clock::now() > limit) {
            throw std::runtime_error("the sound server does not answer");
        }
        iterate();
    }
}

SoundServerView::~SoundServerView() = default;

std::string SoundServerView::defaultSource() {
    std::string name;
    await(pulse::OperationHandle(pa_context_get_server_info(
        context_.get(),
        [](pa_context*, const pa_server_info* info, void* data) {
            if (info != nullptr && info->default_source_name != nullptr) {
                *static_cast<std::string*>(data) = info->default_source_name;
            }
        },
        &name)));
    return name;
}

bool SoundServerView::lists(const std::string& source) {
    struct Search {
        const std::string& name;
        bool found = false;
    } search{source};
    await(pulse::OperationHandle(pa_context_get_source_info_list(
        context_.get(),
        [](pa_context*, const pa_source_info* info, int end, void* data) {
            auto& sought = *static_cast<Search*>(data);
            sought.found = sought.found || (end == 0 && sought.name == info->name);
        },
        &search)));
    return search.found;
}

void SoundServerView::await(pulse::OperationHandle operation) {
    const auto limit = std::chrono::steady_clock::now() + kPatienceWithAnswers;
    while (operation && pa_operation_get_state(operation.get()) == PA_OPERATION_RUNNING) {
        if (std::chrono::steady_clock::now() > limit) {
            throw std::runtime_error("the sound server does not answer");
        }
        iterate();
    }
    if (!PA_CONTEXT_IS_GOOD(pa_context_get_state(context_.get()))) {
        throw std::runtime_error("the sound server is gone");
    }
}

void SoundServerView::iterate() {
    pa_mainloop_prepare(loop_.get(), kLookAgainMicroseconds);
    pa_mainloop_poll(loop_.get());
    pa_mainloop_dispatch(loop_.get());
    if (!PA_CONTEXT_IS_GOOD(pa_context_get_state(context_.get()))) {
        throw std::runtime_error("the sound server is gone");
    }
}

} // namespace tovik::test

// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Linux/PulseAudio/DefaultSourceInquiry.h"

#include <utility>

namespace tovik {

DefaultSourceInquiry::DefaultSourceInquiry(pa_mainloop_api& api, const char* server, Answer answer)
    : answer_(std::move(answer)),
      context_(pa_context_new(&api, "Tovik Record")) {
    if (!context_) {
        return;
    }
    pa_context_set_state_callback(
        context_.get(),
        [](pa_context* context, void* self) {
            if (pa_context_get_state(context) == PA_CONTEXT_READY) {
                static_cast<DefaultSourceInquiry*>(self)->ask();
            }
        },
        this);
    pa_context_connect(context_.get(), server, PA_CONTEXT_NOAUTOSPAWN, nullptr);
}

void DefaultSourceInquiry::ask() {
    operation_.reset(pa_context_get_server_info(
        context_.get(),
        [](pa_context*, const pa_server_info* info, void* self) {
            if (info != nullptr && info->default_source_name != nullptr) {
                static_cast<DefaultSourceInquiry*>(self)->answer_(info->default_source_name);
            }
        },
        this));
}

} // namespace tovik

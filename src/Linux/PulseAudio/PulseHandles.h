// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include <pulse/pulseaudio.h>

#include <memory>

namespace tovik::pulse {

struct MainloopDeleter {
    void operator()(pa_mainloop* loop) const { pa_mainloop_free(loop); }
};
struct ContextDeleter {
    void operator()(pa_context* context) const {
        pa_context_set_state_callback(context, nullptr, nullptr);
        pa_context_set_subscribe_callback(context, nullptr, nullptr);
        pa_context_disconnect(context);
        pa_context_unref(context);
    }
};
struct StreamDeleter {
    void operator()(pa_stream* stream) const {
        pa_stream_set_read_callback(stream, nullptr, nullptr);
        pa_stream_set_moved_callback(stream, nullptr, nullptr);
        if (pa_stream_get_state(stream) == PA_STREAM_CREATING) {
            // The library cannot take leave of a stream that the server is just opening; without this the
            // microphone would stay open for good.
            pa_stream_set_state_callback(stream, &leaveOnceOpen, nullptr);
            return;
        }
        pa_stream_set_state_callback(stream, nullptr, nullptr);
        pa_stream_disconnect(stream);
        pa_stream_unref(stream);
    }

    static void leaveOnceOpen(pa_stream* stream, void*) {
        if (pa_stream_get_state(stream) == PA_STREAM_READY) {
            pa_stream_set_state_callback(stream, nullptr, nullptr);
            pa_stream_disconnect(stream);
            pa_stream_unref(stream);
        } else if (!PA_STREAM_IS_GOOD(pa_stream_get_state(stream))) {
            pa_stream_set_state_callback(stream, nullptr, nullptr);
            pa_stream_unref(stream);
        }
    }
};
struct OperationDeleter {
    void operator()(pa_operation* operation) const {
        pa_operation_cancel(operation);
        pa_operation_unref(operation);
    }
};
struct ProplistDeleter {
    void operator()(pa_proplist* properties) const { pa_proplist_free(properties); }
};

// Dropping a context or a stream silences its callbacks and takes leave of the server; dropping an operation
// takes its answer back.
using MainloopHandle = std::unique_ptr<pa_mainloop, MainloopDeleter>;
using ContextHandle = std::unique_ptr<pa_context, ContextDeleter>;
using StreamHandle = std::unique_ptr<pa_stream, StreamDeleter>;
using OperationHandle = std::unique_ptr<pa_operation, OperationDeleter>;
using ProplistHandle = std::unique_ptr<pa_proplist, ProplistDeleter>;

} // namespace tovik::pulse

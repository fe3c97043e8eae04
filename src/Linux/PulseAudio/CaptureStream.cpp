// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Linux/PulseAudio/CaptureStream.h"

#include <cstdint>
#include <utility>

namespace tovik {

namespace {

// How much sound the server gathers before it sends: the less it is, the sooner the first samples come, and
// the fewer of the last ones are missing when the key is let go. PipeWire's shortest cycle for a recording is
// 256 frames at 48 kHz; a fragment that is no multiple of its cycle waits for the next one.
constexpr std::uint32_t kFragmentFrames = 256;
constexpr std::uint32_t kFragmentRate = 48000;

pa_buffer_attr bufferAttributes(const pa_sample_spec& spec) {
    constexpr auto serverDecides = static_cast<std::uint32_t>(-1);
    pa_buffer_attr attributes{};
    attributes.maxlength = serverDecides;
    attributes.tlength = serverDecides;
    attributes.prebuf = serverDecides;
    attributes.minreq = serverDecides;
    const auto frames = (spec.rate * kFragmentFrames + kFragmentRate - 1) / kFragmentRate;
    attributes.fragsize = frames * static_cast<std::uint32_t>(pa_frame_size(&spec));
    return attributes;
}

} // namespace

CaptureStream::CaptureStream(pa_context& context, const pa_sample_spec& spec, const pa_channel_map& channels,
                             CaptureRelay& relay, CaptureRelay::Session session, Handlers handlers)
    : relay_(relay),
      session_(session),
      channelCount_(spec.channels),
      handlers_(std::move(handlers)),
      stream_(pa_stream_new(&context, "Dictation", &spec, &channels)) {
    if (!stream_) {
        std::exchange(handlers_.ended, nullptr)(pa_context_errno(&context));
        return;
    }
    pa_stream_set_state_callback(
        stream_.get(), [](pa_stream*, void* self) { static_cast<CaptureStream*>(self)->stateChanged(); },
        this);
    pa_stream_set_read_callback(
        stream_.get(),
        [](pa_stream*, std::size_t, void* self) { static_cast<CaptureStream*>(self)->readAvailable(); },
        this);
    pa_stream_set_moved_callback(
        stream_.get(), [](pa_stream*, void* self) { static_cast<CaptureStream*>(self)->handlers_.moved(); },
        this);
    const auto attributes = bufferAttributes(spec);
    // No device is named, so the stream follows the user's choice of the default. The server slows a source
    // down to fragments of seconds unless it is told that the fragment size is meant for the source too.
    if (pa_stream_connect_record(stream_.get(), nullptr, &attributes, PA_STREAM_ADJUST_LATENCY) < 0 &&
        handlers_.ended) {
        std::exchange(handlers_.ended, nullptr)(pa_context_errno(&context));
    }
}

std::string CaptureStream::source() const {
    const bool open = stream_ && pa_stream_get_state(stream_.get()) == PA_STREAM_READY;
    const auto* name = open ? pa_stream_get_device_name(stream_.get()) : nullptr;
    return name == nullptr ? std::string() : std::string(name);
}

void CaptureStream::stateChanged() {
    const auto state = pa_stream_get_state(stream_.get());
    if (state == PA_STREAM_READY) {
        handlers_.opened();
    }
    if (state != PA_STREAM_FAILED && state != PA_STREAM_TERMINATED) {
        return;
    }
    // A stream that the server takes away ends without an error.
    const auto error = state == PA_STREAM_FAILED ? pa_context_errno(pa_stream_get_context(stream_.get()))
                                                 : static_cast<int>(PA_ERR_KILLED);
    if (const auto ended = std::exchange(handlers_.ended, nullptr)) {
        ended(error);
    }
}

void CaptureStream::readAvailable() {
    const void* data = nullptr;
    std::size_t bytes = 0;
    heardAt_ = std::chrono::steady_clock::now();
    while (pa_stream_readable_size(stream_.get()) > 0) {
        if (pa_stream_peek(stream_.get(), &data, &bytes) < 0 || bytes == 0) {
            return;
        }
        // A hole in the stream has a length and no data; as silence it keeps the time right.
        relay_.append(session_, static_cast<const float*>(data), bytes / (sizeof(float) * channelCount_),
                      channelCount_);
        pa_stream_drop(stream_.get());
    }
}

} // namespace tovik

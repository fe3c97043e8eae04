// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Linux/PulseAudio/PulseAudioEngine.h"

#include "Linux/PulseAudio/CaptureRelay.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
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

// Speech needs no more, and studio interfaces can be set to several times as much.
constexpr std::uint32_t kHighestRate = 96000;
constexpr std::uint32_t kUsualRate = 48000;
// How long a server that has accepted the connection may take to answer before it counts as stuck.
constexpr std::chrono::milliseconds kPatience{500};

constexpr Seconds kLongestSilence{1.0};

struct SourceFormat {
    pa_sample_spec spec;
    pa_channel_map channels;
};

SourceFormat formatFor(const SoundListing& listing) {
    SourceFormat format{{PA_SAMPLE_FLOAT32NE, kUsualRate, 1}, {}};
    pa_channel_map_init_mono(&format.channels);
    if (const auto* source = listing.usableDefault(); source != nullptr) {
        format.spec.rate = source->spec.rate > kHighestRate ? kUsualRate : source->spec.rate;
        format.spec.channels = source->spec.channels;
        format.channels = source->channels;
    }
    return format;
}

Error failure(int code, const std::string& sentence) {
    return {"PulseAudio", code, sentence};
}

/// One opening of the server's default source. Sound thread only.
class CaptureStream {
public:
    struct Handlers {
        /// Called at most once, with the client library's error number, when the server ends the stream or
        /// does not open it. The stream may be destroyed in that call's wake, not within it.
        std::function<void(int)> ended;
        /// The server lets it hear.
        std::function<void()> opened;
        /// It hears another source than before.
        std::function<void()> moved;
    };

    CaptureStream(pa_context& context, const pa_sample_spec& spec, const pa_channel_map& channels,
                  CaptureRelay& relay, CaptureRelay::Session session, Handlers handlers);

    /// The name of the source that it hears now; the server may move it. Empty before the server has told.
    [[nodiscard]] std::string source() const;

    /// When the server last sent anything, or else when it was asked to.
    [[nodiscard]] std::chrono::steady_clock::time_point heardAt() const { return heardAt_; }

private:
    void stateChanged();
    void readAvailable();

    CaptureRelay& relay_;
    const CaptureRelay::Session session_;
    const std::size_t channelCount_;
    Handlers handlers_;
    pulse::StreamHandle stream_;
    std::chrono::steady_clock::time_point heardAt_ = std::chrono::steady_clock::now();
};

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

} // namespace

/// The half of the engine that lives on the sound thread, and the relay between the halves.
class PulseAudioEngine::Microphone : public PulseAudioConnection::Client,
                                     public std::enable_shared_from_this<Microphone> {
public:
    Microphone(PulseAudioConnection& connection, std::shared_ptr<SoundDirectory> directory)
        : connection_(connection),
          directory_(std::move(directory)) {}

    /// For any thread.
    CaptureRelay relay;

    // The rest is for the sound thread.
    void open(CaptureRelay::Session session) {
        close();
        if (!relay.isCurrent(session)) {
            return;
        }
        session_ = session;
        if (context_ != nullptr) {
            openStream();
        }
    }

    void close() {
        silence_.end();
        stream_.reset();
    }

    void deliverKept() { relay.deliver(session_); }

    void listingChanged() {
        if (context_ == nullptr || !relay.isCurrent(session_)) {
            return;
        }
        if (stream_ == nullptr) {
            // Asked for before the server had told of its sources.
            openStream();
        } else {
            checkSource();
        }
    }

    void serverReady(pa_context& context) override { context_ = &context; }

    void serverLost() override {
        context_ = nullptr;
        close();
        relay.finish(session_);
    }

private:
    // Not from within a call of the stream itself.
    void closeIfStill(CaptureRelay::Session session) {
        if (session_ == session) {
            close();
        }
    }

    void openStream() {
        const auto listing = directory_->listing();
        if (!listing.known) {
            return;
        }
        if (listing.usableDefault() == nullptr) {
            relay.finish(session_);
            return;
        }
        const auto format = formatFor(listing);
        hearsOutput_ = listing.usableDefault()->isMonitor;
        relay.prepare(session_, format.spec.rate);
        CaptureStream::Handlers handlers;
        handlers.ended = [this](int error) { ended(error); };
        handlers.opened = [this] { connection_.noteRecording(false); };
        handlers.moved = [this] { checkSource(); };
        stream_ = std::make_unique<CaptureStream>(*context_, format.spec, format.channels, relay, session_,
                                                  std::move(handlers));
        silent_ = false;
        silence_ = connection_.thread().every(kLongestSilence, [this] { listenForSilence(); });
    }

    // A server that hangs sends nothing and says nothing; a microphone that hears nothing sends zeros.
    void listenForSilence() {
        const bool silent = std::chrono::steady_clock::now() - stream_->heardAt() >= kLongestSilence;
        if (silent && !silent_) {
            connection_.log("No sound comes from the microphone: the sound server sends nothing");
        }
        silent_ = silent;
    }

    // When the last microphone goes, the server lets the stream hear what the loudspeakers play. That must
    // not end up in anybody's text.
    void checkSource() {
        const auto listing = directory_->listing();
        const auto* source = listing.find(stream_->source());
        const bool hearsOutput = source != nullptr && source->isMonitor;
        if (hearsOutput && !hearsOutput_ && !listing.hasRealMicrophone()) {
            ended(PA_ERR_NOENTITY);
        }
    }

    void ended(int error) {
        if (!relay.isCurrent(session_)) {
            return;
        }
        connection_.noteRecording(error == PA_ERR_ACCESS);
        relay.finish(session_);
        connection_.post([self = shared_from_this(), session = session_] { self->closeIfStill(session); });
        if (error != PA_ERR_CONNECTIONTERMINATED) {
            connection_.log("Microphone lost: " + std::string(pa_strerror(error)));
        }
    }

    PulseAudioConnection& connection_;
    std::shared_ptr<SoundDirectory> directory_;
    pa_context* context_ = nullptr;
    CaptureRelay::Session session_ = 0;
    bool hearsOutput_ = false;
    std::unique_ptr<CaptureStream> stream_;
    Subscription silence_;
    bool silent_ = false;
};

PulseAudioEngine::PulseAudioEngine(PulseAudioConnection& connection,
                                   std::shared_ptr<SoundDirectory> directory)
    : connection_(connection),
      directory_(std::move(directory)),
      microphone_(std::make_shared<Microphone>(connection, directory_)) {
    connection_.add(microphone_);
    directory_->observe(connection_, [weak = std::weak_ptr(microphone_)] {
        if (const auto microphone = weak.lock()) {
            microphone->listingChanged();
        }
    });
}

PulseAudioEngine::~PulseAudioEngine() {
    removeTap();
    close();
    connection_.post([microphone = std::move(microphone_)] {});
}

AudioFormat PulseAudioEngine::inputFormat() const {
    return {static_cast<double>(formatFor(directory_->listing()).spec.rate), 1};
}

bool PulseAudioEngine::isRunning() const {
    return microphone_->relay.isDelivering();
}

void PulseAudioEngine::installTap(std::size_t bufferSize, AudioTap tap) {
    microphone_->relay.installTap(bufferSize, std::move(tap));
}

void PulseAudioEngine::removeTap() {
    microphone_->relay.removeTap();
}

void PulseAudioEngine::prepare() {
    connection_.hurry();
}

Result<void> PulseAudioEngine::start() {
    if (isRunning()) {
        return {};
    }
    if (auto ready = readiness(); !ready) {
        closeAhead();
        return ready;
    }
    if (microphone_->relay.isAhead()) {
        microphone_->relay.startDelivering();
        connection_.post([microphone = microphone_] { microphone->deliverKept(); });
    } else {
        open(false);
    }
    return {};
}

void PulseAudioEngine::stop() {
    close();
}

void PulseAudioEngine::openAhead() {
    if (!isRunning() && !microphone_->relay.isAhead()) {
        connection_.hurry();
        open(true);
    }
}

void PulseAudioEngine::listenOn() {
    if (!microphone_->relay.stopDelivering()) {
        stop();
        openAhead();
    }
}

void PulseAudioEngine::keepOnly(Seconds newest) {
    microphone_->relay.keepOnly(newest);
}

void PulseAudioEngine::closeAhead() {
    if (microphone_->relay.isAhead()) {
        close();
    }
}

void PulseAudioEngine::flush() {
    microphone_->relay.flush();
}

Result<void> PulseAudioEngine::readiness() const {
    const auto status = connection_.status();
    switch (status.state) {
    case SoundServerStatus::State::absent:
        return failure(status.error, "No sound server is running");
    case SoundServerStatus::State::refused:
        return failure(status.error, "The sound server refuses this program");
    case SoundServerStatus::State::connecting:
        if (std::chrono::steady_clock::now() - status.since > kPatience) {
            return failure(PA_ERR_TIMEOUT, "The sound server does not answer");
        }
        return {};
    case SoundServerStatus::State::ready:
        break;
    }
    const auto listing = directory_->listing();
    if (listing.known && listing.usableDefault() == nullptr) {
        return failure(PA_ERR_NOENTITY, "There is no microphone");
    }
    return {};
}

void PulseAudioEngine::open(bool ahead) {
    const auto session = microphone_->relay.open(ahead);
    connection_.post([microphone = microphone_, session] { microphone->open(session); });
}

void PulseAudioEngine::close() {
    microphone_->relay.close();
    connection_.post([microphone = microphone_] { microphone->close(); });
}

} // namespace tovik

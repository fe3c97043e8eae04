// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Linux/PulseAudio/SoundDirectory.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace tovik {

namespace {

constexpr Seconds kSettling{0.3};

// Both servers make an output of this name while there is no real one.
constexpr auto kStandInMonitor = "auto_null.monitor";

bool canBeHeard(const SoundSource& source) {
    return source.name != kStandInMonitor;
}

std::string text(const char* bytes) {
    return bytes == nullptr ? std::string() : std::string(bytes);
}

} // namespace

/// Asks a sound server for its default source over a connection of its own, which sees what a long-standing
/// one may have missed. Sound thread only. Never answers once it is destroyed, and not at all when the server
/// does not.
class DefaultSourceInquiry {
public:
    /// Comes once, from within a call of the inquiry, which must not be destroyed there.
    using Answer = std::function<void(std::string)>;

    DefaultSourceInquiry(pa_mainloop_api& api, const char* server, Answer answer);
    DefaultSourceInquiry(const DefaultSourceInquiry&) = delete;
    DefaultSourceInquiry& operator=(const DefaultSourceInquiry&) = delete;

private:
    void ask();

    const Answer answer_;
    pulse::ContextHandle context_;
    pulse::OperationHandle operation_;
};

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

const SoundSource* SoundListing::find(const std::string& name) const {
    const auto found = std::find_if(sources.begin(), sources.end(),
                                    [&](const SoundSource& source) { return source.name == name; });
    return found == sources.end() ? nullptr : &*found;
}

const SoundSource* SoundListing::usableDefault() const {
    const auto* source = find(defaultSource);
    return source != nullptr && canBeHeard(*source) ? source : nullptr;
}

bool SoundListing::hasRealMicrophone() const {
    return std::any_of(sources.begin(), sources.end(),
                       [](const SoundSource& source) { return !source.isMonitor; });
}

std::vector<SoundSource> SoundListing::microphones(bool withMonitors) const {
    const bool all = withMonitors || !hasRealMicrophone();
    std::vector<SoundSource> chosen;
    std::copy_if(sources.begin(), sources.end(), std::back_inserter(chosen),
                 [&](const SoundSource& source) { return canBeHeard(source) && (all || !source.isMonitor); });
    return chosen;
}

SoundDirectory::SoundDirectory(SoundThread& thread) : thread_(thread) {}

SoundDirectory::~SoundDirectory() = default;

void SoundDirectory::observe(PulseAudioConnection& connection, std::function<void()> observer) {
    connection.post([self = shared_from_this(), observer = std::move(observer)]() mutable {
        self->observers_.push_back(std::move(observer));
    });
}

SoundListing SoundDirectory::listing() const {
    const std::lock_guard lock(mutex_);
    return listing_;
}

void SoundDirectory::serverReady(pa_context& context) {
    context_ = &context;
    pa_context_set_subscribe_callback(
        context_,
        [](pa_context*, pa_subscription_event_type_t, std::uint32_t, void* self) {
            static_cast<SoundDirectory*>(self)->noticed();
        },
        this);
    const auto mask = static_cast<pa_subscription_mask_t>(
        PA_SUBSCRIPTION_MASK_SOURCE | PA_SUBSCRIPTION_MASK_SINK | PA_SUBSCRIPTION_MASK_SERVER);
    pulse::OperationHandle subscribing(pa_context_subscribe(context_, mask, nullptr, nullptr));
    noticed();
    operations_.push_back(std::move(subscribing));
}

void SoundDirectory::leave() {
    if (context_ != nullptr) {
        pa_context_set_subscribe_callback(context_, nullptr, nullptr);
    }
    observers_.clear();
    forget();
}

void SoundDirectory::forget() {
    settling_.end();
    answer_.end();
    inquiry_.reset();
    correction_.reset();
    operations_.clear();
    awaited_ = 0;
    outdated_ = false;
    context_ = nullptr;
}

void SoundDirectory::serverLost() {
    forget();
    if (listing().known) {
        publish({});
    }
}

void SoundDirectory::noticed() {
    read();
    settling_ = thread_.after(kSettling, [this] { inquire(); });
}

// While a client connects, PipeWire tells a new default to that client alone, and goes on telling the old one
// to those it already has (0.3.65: a headset that came back stayed unknown until the program was restarted).
// So once the notices have settled, a new connection is asked what the default really is.
void SoundDirectory::inquire() {
    if (!mayMissChanges_) {
        return;
    }
    inquiry_ = std::make_unique<DefaultSourceInquiry>(
        thread_.api(), pa_context_get_server(context_), [this](std::string actual) {
            answer_ = thread_.after(Seconds(0), [this, actual = std::move(actual)] {
                inquiry_.reset();
                correctDefault(actual);
            });
        });
}

void SoundDirectory::correctDefault(std::string actual) {
    if (actual == listing().defaultSource) {
        return;
    }
    correction_ = Correction{toldDefault_, std::move(actual)};
    read();
}

// One reading at a time: notices come in swarms, and a reading that begins after the last of them sees all.
void SoundDirectory::read() {
    if (awaited_ > 0) {
        outdated_ = true;
        return;
    }
    outdated_ = false;
    next_ = {};
    next_.known = true;
    operations_.clear();
    awaited_ = 3;
    operations_.emplace_back(pa_context_get_server_info(
        context_,
        [](pa_context*, const pa_server_info* info, void* data) {
            auto* self = static_cast<SoundDirectory*>(data);
            if (info != nullptr) {
                self->next_.defaultSource = text(info->default_source_name);
                self->mayMissChanges_ = text(info->server_name).find("PipeWire") != std::string::npos;
            }
            self->answered();
        },
        this));
    operations_.emplace_back(pa_context_get_source_info_list(
        context_,
        [](pa_context*, const pa_source_info* info, int end, void* data) {
            auto* self = static_cast<SoundDirectory*>(data);
            if (end != 0) {
                self->answered();
                return;
            }
            self->next_.sources.push_back({info->index, text(info->name), text(info->description),
                                           info->monitor_of_sink != PA_INVALID_INDEX, info->sample_spec,
                                           info->channel_map});
        },
        this));
    operations_.emplace_back(pa_context_get_sink_info_list(
        context_,
        [](pa_context*, const pa_sink_info* info, int end, void* data) {
            auto* self = static_cast<SoundDirectory*>(data);
            if (end != 0) {
                self->answered();
                return;
            }
            self->next_.sinks.push_back({info->index, text(info->description)});
        },
        this));
}

void SoundDirectory::answered() {
    if (--awaited_ > 0) {
        return;
    }
    toldDefault_ = next_.defaultSource;
    if (correction_ && correction_->told != toldDefault_) {
        correction_.reset();
    }
    if (correction_) {
        next_.defaultSource = correction_->actual;
    }
    publish(std::exchange(next_, {}));
    if (outdated_) {
        read();
    }
}

void SoundDirectory::publish(SoundListing listing) {
    {
        const std::lock_guard lock(mutex_);
        listing_ = std::move(listing);
    }
    for (const auto& observer : observers_) {
        observer();
    }
}

} // namespace tovik

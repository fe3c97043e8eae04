// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Linux/PulseAudio/PulseAudioConnection.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace tovik {

class DefaultSourceInquiry;

struct SoundSource {
    std::uint32_t index = 0;
    std::string name;
    std::string description;
    bool isMonitor = false;
    pa_sample_spec spec{};
    pa_channel_map channels{};
};

struct SoundSink {
    std::uint32_t index = 0;
    std::string description;
};

/// What the server told of its devices, in its own order.
struct SoundListing {
    /// False until the server has told, and again once it is lost; then all else is empty.
    bool known = false;
    std::string defaultSource;
    std::vector<SoundSource> sources;
    std::vector<SoundSink> sinks;

    [[nodiscard]] const SoundSource* find(const std::string& name) const;
    /// Nothing when the server names a default that is not listed, or only the stand-in that it makes for a
    /// machine without sound hardware, on which nothing can ever be heard.
    [[nodiscard]] const SoundSource* usableDefault() const;
    [[nodiscard]] bool hasRealMicrophone() const;
    /// The sources that people would call a microphone. Monitors, which hear what an output plays, are among
    /// them only where they are asked for or nothing else is there.
    [[nodiscard]] std::vector<SoundSource> microphones(bool withMonitors) const;
};

/// Keeps the listing up to date from the server's own notices. Create it as a shared pointer, add it to the
/// connection, and let it leave at the end.
class SoundDirectory : public PulseAudioConnection::Client,
                       public std::enable_shared_from_this<SoundDirectory> {
public:
    /// The thread outlives the directory's time on the connection.
    explicit SoundDirectory(SoundThread& thread);
    ~SoundDirectory() override;

    /// Any thread. From the next change of the listing on, calls the observer on the sound thread.
    void observe(PulseAudioConnection& connection, std::function<void()> observer);

    /// Any thread; answers at once.
    [[nodiscard]] SoundListing listing() const;

    /// Sound thread only; before the last reference is dropped. The listing stays as it is.
    void leave();

    void serverReady(pa_context& context) override;
    void serverLost() override;

private:
    /// What the lasting connection is told of the default, against what is true.
    struct Correction {
        std::string told;
        std::string actual;
    };

    void noticed();
    void inquire();
    void correctDefault(std::string actual);
    void read();
    void answered();
    void forget();
    void publish(SoundListing listing);

    SoundThread& thread_;
    mutable std::mutex mutex_;
    SoundListing listing_;

    // Sound thread only.
    Subscription settling_;
    Subscription answer_;
    std::unique_ptr<DefaultSourceInquiry> inquiry_;
    std::optional<Correction> correction_;
    std::string toldDefault_;
    bool mayMissChanges_ = false;
    std::vector<std::function<void()>> observers_;
    pa_context* context_ = nullptr;
    SoundListing next_;
    /// Dropped ones do not answer any more.
    std::vector<pulse::OperationHandle> operations_;
    int awaited_ = 0;
    bool outdated_ = false;
};

} // namespace tovik

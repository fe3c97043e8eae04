// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "support/SoundServerView.h"
#include "support/VirtualMicrophone.h"

#include <sys/types.h>

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tovik::test {

/// A real sound server of a test's own, in a temporary folder, without any device at first. The user's own
/// server and files are never touched. Needs pulseaudio and pulseaudio-utils, or pipewire, pipewire-pulse,
/// wireplumber and dbus-daemon.
class SoundServer {
public:
    enum class Kind { pulseAudio, pipeWire };

    /// Makes the folder; start() starts the server.
    explicit SoundServer(Kind kind);
    ~SoundServer();
    SoundServer(const SoundServer&) = delete;
    SoundServer& operator=(const SoundServer&) = delete;

    [[nodiscard]] Kind kind() const { return kind_; }
    /// Where clients find the server, whether it runs or not.
    [[nodiscard]] std::string address() const;
    [[nodiscard]] const std::string& folder() const { return folder_; }

    /// Returns when the server answers. Throws when it does not within ten seconds.
    void start();
    /// Ends it as a crash would. Its microphones are gone.
    void kill();
    /// It neither runs nor ends until thaw().
    void freeze();
    void thaw();

    /// Adds a microphone in which nobody speaks yet; returns when the server lists it. PipeWire suspends it
    /// when nobody has listened for a second.
    VirtualMicrophone& plugIn(const std::string& name, const std::string& description,
                              unsigned sampleRate = 48000, unsigned channelCount = 1);
    /// Returns when the server no longer lists it.
    void unplug(const std::string& name);
    /// Returns when the server has taken it.
    void setDefaultSource(const std::string& name);

    /// Runs a command of the server's own control program and gives what it prints. Throws when it fails.
    std::string control(const std::vector<std::string>& command) const;

private:
    /// Nothing when the command fails.
    [[nodiscard]] std::optional<std::string> run(const std::vector<std::string>& command) const;
    void spawn(const std::vector<std::string>& command);
    void waitForSocket(const std::string& path) const;
    void waitUntil(const std::string& what, const std::function<bool()>& holds) const;

    const Kind kind_;
    std::string folder_;
    std::vector<std::string> environment_;
    std::vector<pid_t> processes_;
    std::unique_ptr<SoundServerView> view_;
    std::map<std::string, std::unique_ptr<VirtualMicrophone>> microphones_;
    std::map<std::string, std::string> modules_;
};

/// Points this process's own client library away from the user's files. Call it before any thread starts.
void isolateSoundClient();

} // namespace tovik::test

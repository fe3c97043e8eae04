// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Linux/DBus/MicrophonePortal.h"
#include "Platform/Authorization.h"
#include "Platform/Subscription.h"
#include "Platform/SystemLog.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace tovik {

/// By what a process can tell that it runs in a sandbox.
struct SandboxSigns {
    /// The content of /.flatpak-info, which Flatpak puts into each of its sandboxes.
    std::optional<std::string> flatpakInfo;
    /// The variables SNAP and SNAP_NAME. Programs that were started from within a snap inherit them.
    std::string snapFolder;
    std::string snapName;
    /// Of the running program's file.
    std::string executablePath;

    /// The signs of this process.
    [[nodiscard]] static SandboxSigns ofThisProcess();
};

/// The sandbox that a process runs in.
struct Sandbox {
    enum class Kind { none, flatpak, snap };

    [[nodiscard]] static Sandbox recognise(const SandboxSigns& signs);

    Kind kind = Kind::none;
    /// The one that the sandbox's own commands take; empty outside.
    std::string name;
    /// Whether the sound server's socket is there. Flatpak tells; a snap has to try.
    bool hasSoundSocket = true;

    bool operator==(const Sandbox&) const = default;
};

/// Whether this program may hear the microphone, in a sandbox and outside. Outside the sound server says.
/// Inside the desktop's portal says, where it has a say, and then the sound server. Main thread; never waits.
///
/// What the portal said holds while the program runs: nobody but the portal could say it again, and that
/// could ask the user.
class SandboxedMicrophone {
public:
    struct Services {
        SystemLog& log;
        MicrophonePortal& portal;
        /// What the sound server says, and what is wrong, in a sentence for the user.
        std::function<MicrophoneStatus()> serverStatus;
        std::function<std::string()> serverExplanation;
        /// Called when the portal has told something new.
        std::function<void()> changed;
    };

    /// Looks at the portal at once. The services outlive it.
    SandboxedMicrophone(Sandbox sandbox, Services services);

    /// As far as is known. Looks at the portal again meanwhile, which asks nothing of the user.
    [[nodiscard]] MicrophoneStatus status();

    /// What is wrong and how to mend it, in sentences for the user; empty when nothing is, or when asking
    /// comes first.
    [[nodiscard]] std::string explanation() const;

    /// Asks the portal, where it has a say. Whoever asks while a question is open hears the same answer.
    /// isRefused: the user has just said no.
    void ask(std::function<void(bool isRefused)> whenAnswered);

    /// Whether the portal has told if it has a say, where there could be one.
    [[nodiscard]] bool isKnown() const { return verdict_.has_value() || !isPortalConcerned(); }

private:
    [[nodiscard]] bool isPortalConcerned() const;
    [[nodiscard]] bool isSaid(MicrophonePortal::Verdict verdict) const { return verdict_ == verdict; }
    void look();
    void learn(const MicrophonePortal::Answer& answer);

    const Sandbox sandbox_;
    const Services services_;
    /// None until the portal has told for the first time.
    std::optional<MicrophonePortal::Verdict> verdict_;
    bool isLooking_ = false;
    std::vector<std::function<void(bool)>> waiting_;
    Lifetime lifetime_;
};

} // namespace tovik

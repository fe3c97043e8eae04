// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Linux/DBus/SandboxedMicrophone.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string_view>
#include <system_error>
#include <utility>

namespace tovik {

namespace {

constexpr auto kFlatpakInfo = "/.flatpak-info";

std::string environment(const char* variable) {
    const char* const value = std::getenv(variable);
    return value == nullptr ? "" : value;
}

std::string ownFile() {
    std::error_code failure;
    return std::filesystem::read_symlink("/proc/self/exe", failure).string();
}

/// The value of a key in a file of groups, keys and values, as desktops have them; empty without one.
std::string valueOf(const std::string& keyFile, std::string_view group, std::string_view key) {
    std::istringstream lines(keyFile);
    bool isInGroup = false;
    for (std::string line; std::getline(lines, line);) {
        if (line.starts_with('[')) {
            isInGroup = line.starts_with('[' + std::string(group) + ']');
        } else if (isInGroup && line.starts_with(std::string(key) + '=')) {
            return line.substr(key.size() + 1);
        }
    }
    return {};
}

bool listHas(const std::string& list, std::string_view wanted) {
    std::istringstream entries(list);
    for (std::string entry; std::getline(entries, entry, ';');) {
        if (entry == wanted) {
            return true;
        }
    }
    return false;
}

using Verdict = MicrophonePortal::Verdict;

constexpr auto kThenStartAgain = "\n\nThen start Tovik Record again.";

} // namespace

SandboxSigns SandboxSigns::ofThisProcess() {
    SandboxSigns signs{std::nullopt, environment("SNAP"), environment("SNAP_NAME"), ownFile()};
    if (std::ifstream file(kFlatpakInfo); file) {
        signs.flatpakInfo.emplace(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
    }
    return signs;
}

Sandbox Sandbox::recognise(const SandboxSigns& signs) {
    if (signs.flatpakInfo) {
        return {Kind::flatpak, valueOf(*signs.flatpakInfo, "Application", "name"),
                listHas(valueOf(*signs.flatpakInfo, "Context", "sockets"), "pulseaudio")};
    }
    const bool isOfTheSnap =
        !signs.snapFolder.empty() && signs.executablePath.starts_with(signs.snapFolder + '/');
    if (isOfTheSnap && !signs.snapName.empty()) {
        return {Kind::snap, signs.snapName, true};
    }
    return {};
}

SandboxedMicrophone::SandboxedMicrophone(Sandbox sandbox, Services services)
    : sandbox_(std::move(sandbox)),
      services_(std::move(services)) {
    look();
}

bool SandboxedMicrophone::isPortalConcerned() const {
    return sandbox_.kind != Sandbox::Kind::none && sandbox_.hasSoundSocket;
}

MicrophoneStatus SandboxedMicrophone::status() {
    look();
    if (!sandbox_.hasSoundSocket || isSaid(Verdict::denied)) {
        return MicrophoneStatus::denied;
    }
    if (isSaid(Verdict::switchedOff)) {
        return MicrophoneStatus::restricted;
    }
    return !isKnown() || isSaid(Verdict::undecided) ? MicrophoneStatus::notDetermined
                                                    : services_.serverStatus();
}

std::string SandboxedMicrophone::explanation() const {
    if (!sandbox_.hasSoundSocket) {
        return "Flatpak keeps the sound server away from Tovik Record. Let it in with this command:\n\n"
               "flatpak override --user --socket=pulseaudio " +
               sandbox_.name + kThenStartAgain;
    }
    if (isSaid(Verdict::switchedOff)) {
        return "Microphones are switched off for every application on this desktop. Switch them on in its "
               "privacy settings.";
    }
    if (isSaid(Verdict::denied)) {
        return "You did not allow Tovik Record to use the microphone. Allow it in the privacy settings" +
               (sandbox_.kind == Sandbox::Kind::flatpak
                    ? ", or with this command:\n\nflatpak permission-set devices microphone " +
                          sandbox_.name + " yes"
                    : ".") +
               kThenStartAgain;
    }
    if (!isKnown() || isSaid(Verdict::undecided)) {
        return {};
    }
    const auto status = services_.serverStatus();
    // A snap without the plug may not even see the sound server, or may play but not record.
    if (sandbox_.kind == Sandbox::Kind::snap && status != MicrophoneStatus::authorized &&
        status != MicrophoneStatus::restricted) {
        return "The snap may not have been given the microphone. Give it with this command:\n\n"
               "sudo snap connect " +
               sandbox_.name + ":audio-record" + kThenStartAgain;
    }
    return services_.serverExplanation();
}

void SandboxedMicrophone::ask(std::function<void(bool isRefused)> whenAnswered) {
    if (!isPortalConcerned()) {
        whenAnswered(false);
        return;
    }
    waiting_.push_back(std::move(whenAnswered));
    if (waiting_.size() > 1) {
        return;
    }
    services_.portal.ask(lifetime_.guard([this](const MicrophonePortal::Answer& answer) {
        learn(answer);
        for (const auto& answered : std::exchange(waiting_, {})) {
            answered(answer.verdict == Verdict::denied);
        }
    }));
}

void SandboxedMicrophone::look() {
    if (!isPortalConcerned() || std::exchange(isLooking_, true)) {
        return;
    }
    services_.portal.look(lifetime_.guard([this](const MicrophonePortal::Answer& answer) {
        isLooking_ = false;
        // That it decides is no news once it has.
        if (answer.verdict != Verdict::undecided || !(isSaid(Verdict::granted) || isSaid(Verdict::denied))) {
            learn(answer);
        }
    }));
}

void SandboxedMicrophone::learn(const MicrophonePortal::Answer& answer) {
    if (isSaid(answer.verdict)) {
        return;
    }
    verdict_ = answer.verdict;
    if (answer.verdict == Verdict::leavesItToTheServer) {
        services_.log.printLine(
            "[TovikVoice] The desktop portal leaves the microphone to the sound server (" + answer.reason +
            ")");
    }
    services_.changed();
}

} // namespace tovik

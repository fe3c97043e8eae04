// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Linux/Desktop/Sandbox.h"

#include "Linux/Desktop/ProgramPaths.h"

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string_view>

namespace tovik {

namespace {

constexpr auto kFlatpakInfo = "/.flatpak-info";

std::string environment(const char* variable) {
    const char* const value = std::getenv(variable);
    return value == nullptr ? "" : value;
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

} // namespace

SandboxSigns SandboxSigns::ofThisProcess() {
    SandboxSigns signs{std::nullopt, environment("SNAP"), environment("SNAP_NAME"), runningExecutable()};
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

} // namespace tovik

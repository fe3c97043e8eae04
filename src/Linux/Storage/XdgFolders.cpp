// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Linux/Storage/XdgFolders.h"

#include <pwd.h>
#include <unistd.h>

#include <cstdlib>

namespace tovik {

namespace {

std::optional<std::string> processEnvironment(const char* variable) {
    const auto* value = std::getenv(variable);
    return value ? std::optional<std::string>(value) : std::nullopt;
}

/// A folder that is not named from the root means another one after every change of the working folder; the
/// base directory rules say to ignore it, as an empty one.
std::optional<std::string> absolute(std::optional<std::string> path) {
    if (!path || !path->starts_with('/')) {
        return std::nullopt;
    }
    while (path->size() > 1 && path->ends_with('/')) {
        path->pop_back();
    }
    return path;
}

std::optional<std::string> accountHome() {
    const auto* account = ::getpwuid(::getuid());
    return account && account->pw_dir ? std::optional<std::string>(account->pw_dir) : std::nullopt;
}

} // namespace

XdgFolders::XdgFolders() : XdgFolders(processEnvironment) {}

XdgFolders::XdgFolders(const Environment& environment) {
    const auto folder = [&](const char* variable, const std::string& otherwise) {
        return absolute(environment(variable)).value_or(otherwise);
    };
    home_ = folder("HOME", absolute(accountHome()).value_or("/"));
    const auto below = home_ == "/" ? std::string() : home_;
    config_ = folder("XDG_CONFIG_HOME", below + "/.config");
    data_ = folder("XDG_DATA_HOME", below + "/.local/share");
    state_ = folder("XDG_STATE_HOME", below + "/.local/state");
    runtime_ = folder("XDG_RUNTIME_DIR", "/tmp/tovik-record-" + std::to_string(::getuid()));
}

} // namespace tovik

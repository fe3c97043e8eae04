// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Linux/Desktop/ProgramPaths.h"

#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <system_error>

namespace tovik {

namespace {

std::vector<std::string> piecesBetweenColons(std::string_view list) {
    std::vector<std::string> pieces;
    for (std::size_t begin = 0; begin <= list.size();) {
        const auto end = std::min(list.find(':', begin), list.size());
        if (end > begin) {
            pieces.emplace_back(list.substr(begin, end - begin));
        }
        begin = end + 1;
    }
    return pieces;
}

} // namespace

std::string runningExecutable() {
    std::error_code error;
    const auto path = std::filesystem::read_symlink("/proc/self/exe", error);
    return error ? std::string() : path.string();
}

bool isInSearchPath(const std::string& program, std::string_view searchPath) {
    const auto folders = piecesBetweenColons(searchPath);
    return std::any_of(folders.begin(), folders.end(), [&](const std::string& folder) {
        const auto path = folder + "/" + program;
        std::error_code error;
        return std::filesystem::is_regular_file(path, error) && ::access(path.c_str(), X_OK) == 0;
    });
}

std::vector<std::string> desktopNames(std::string_view currentDesktop) {
    return piecesBetweenColons(currentDesktop);
}

} // namespace tovik

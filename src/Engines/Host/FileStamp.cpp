// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Engines/Host/FileStamp.h"

#include <algorithm>
#include <system_error>

namespace tovik {

namespace {

namespace fs = std::filesystem;

std::string stampOf(const fs::path& file) {
    std::error_code none;
    const auto size = fs::file_size(file, none);
    const auto written = fs::last_write_time(file, none).time_since_epoch().count();
    return file.string() + ' ' + std::to_string(size) + ' ' + std::to_string(written) + '\n';
}

} // namespace

std::string fileStamp(const std::vector<fs::path>& filesAndFolders) {
    std::vector<std::string> stamps;
    for (const auto& place : filesAndFolders) {
        stamps.push_back(stampOf(place));
        std::error_code end;
        for (fs::recursive_directory_iterator entry(place, end), last; !end && entry != last;
             entry.increment(end)) {
            stamps.push_back(stampOf(entry->path()));
        }
    }
    // A folder tells its files in any order.
    std::sort(stamps.begin(), stamps.end());
    std::string all;
    for (const auto& stamp : stamps) {
        all += stamp;
    }
    return all;
}

} // namespace tovik

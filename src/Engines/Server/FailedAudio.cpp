// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Engines/Server/FailedAudio.h"

#include "Engines/Server/SoundEncoding.h"
#include "Linux/Storage/LocalFiles.h"

#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <ctime>
#include <filesystem>
#include <system_error>
#include <vector>

namespace tovik {

namespace {

namespace fs = std::filesystem;

constexpr auto kPrefix = "dictation-";
constexpr mode_t kOwnerOnly = 0700;

/// By name, which is by time.
std::vector<fs::path> keptIn(const std::string& folder) {
    std::vector<fs::path> files;
    std::error_code error;
    for (const auto& entry : fs::directory_iterator(folder, error)) {
        const auto name = entry.path().filename().string();
        if (name.starts_with(kPrefix) && name.ends_with(".wav")) {
            files.push_back(entry.path());
        }
    }
    std::sort(files.begin(), files.end());
    return files;
}

/// Sorts by time and tells two of the same second apart.
std::string nameForNow() {
    const auto now = std::chrono::system_clock::now();
    const auto second = std::chrono::system_clock::to_time_t(now);
    const auto rest =
        std::chrono::duration_cast<std::chrono::microseconds>(now.time_since_epoch()).count() % 1000000;
    std::tm local{};
    localtime_r(&second, &local);
    std::array<char, 64> text{};
    const auto size = std::strftime(text.data(), text.size(), "%Y-%m-%dT%H-%M-%S", &local);
    const auto digits = std::to_string(rest);
    return kPrefix + std::string(text.data(), size) + "." + std::string(6 - digits.size(), '0') + digits +
           ".wav";
}

} // namespace

Result<std::string> FailedAudio::keep(std::span<const std::int16_t> samples, int sampleRate) {
    if (auto made = createPrivateFolder(folder_); !made) {
        return made.error();
    }
    // The folder may have been made by somebody more careless.
    if (::chmod(folder_.c_str(), kOwnerOnly) != 0) {
        return Error{"SpeechRecognition", 1, "The folder " + folder_ + " is not ours"};
    }
    auto files = keptIn(folder_);
    std::error_code ignored;
    for (std::size_t i = 0; i + mostFiles <= files.size(); ++i) {
        fs::remove(files[i], ignored);
    }
    auto path = folder_ + "/" + nameForNow();
    if (auto written = createFile(path, wavFile(samples, sampleRate)); !written) {
        return written.error();
    }
    return path;
}

void FailedAudio::forgetAll() {
    std::error_code ignored;
    for (const auto& file : keptIn(folder_)) {
        fs::remove(file, ignored);
    }
}

} // namespace tovik

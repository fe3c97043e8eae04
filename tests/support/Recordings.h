// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <vector>

namespace tovik::test {

/// Recordings of people, from Debian's package pocketsphinx-testdata.
inline const std::string kRecordings = "/usr/share/pocketsphinx/test/data/";
/// "go forward ten meters".
inline const std::string kGoForward = kRecordings + "goforward.raw";
/// "go somewhere and do something".
inline const std::string kGoSomewhere = kRecordings + "something.raw";
inline constexpr double kRecordingRate = 16000;

/// The samples of a headerless 16-bit recording, or of a plain WAV file.
inline std::vector<float> readRecording(const std::string& file) {
    std::ifstream stream(file, std::ios::binary);
    if (!stream) {
        throw std::runtime_error(file + " is missing: install pocketsphinx-testdata");
    }
    std::vector<char> bytes{std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
    constexpr std::size_t header = 44;
    const std::size_t begin = file.ends_with(".wav") ? header : 0;
    std::vector<float> samples;
    for (auto i = begin; i + 1 < bytes.size(); i += 2) {
        const auto low = static_cast<unsigned char>(bytes[i]);
        const auto high = static_cast<unsigned char>(bytes[i + 1]);
        const auto value = static_cast<std::int16_t>(static_cast<std::uint16_t>(low | high << 8));
        samples.push_back(static_cast<float>(value) / 32768.0F);
    }
    return samples;
}

} // namespace tovik::test

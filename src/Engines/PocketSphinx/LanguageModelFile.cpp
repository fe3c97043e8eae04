// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Engines/PocketSphinx/LanguageModelFile.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <string>

namespace tovik {

namespace {

constexpr std::streamoff kBeginning = 19; // "Trie Language Model"
/// Far more than any word takes on average.
constexpr std::uint64_t kBytesPerWord = 64;

std::uint32_t number(const char* bytes) {
    std::uint32_t value = 0;
    std::memcpy(&value, bytes, sizeof value);
    return value;
}

} // namespace

bool isWholeLanguageModel(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    std::array<char, 5> head{};
    if (!stream.seekg(kBeginning) || !stream.read(head.data(), head.size())) {
        return false;
    }
    const std::uint64_t words = number(head.data() + 1);
    stream.seekg(0, std::ios::end);
    const auto size = static_cast<std::uint64_t>(std::max<std::streamoff>(stream.tellg(), 0));
    const auto tailSize = std::min(size, words * kBytesPerWord + sizeof(std::uint32_t));
    std::string tail(tailSize, '\1');
    stream.seekg(-static_cast<std::streamoff>(tailSize), std::ios::end);
    if (words == 0 || !stream.read(tail.data(), static_cast<std::streamsize>(tailSize)) ||
        tail.back() != '\0') {
        return false;
    }
    // Each word ends at a NUL, and the first begins where the number ends, whose last byte is one as well.
    auto end = tail.size() - 1;
    for (std::uint64_t word = 0; word < words; ++word) {
        end = end == 0 ? std::string::npos : tail.rfind('\0', end - 1);
        if (end == std::string::npos) {
            return false;
        }
    }
    const auto begin = end + 1;
    return begin >= sizeof(std::uint32_t) &&
           number(tail.data() + begin - sizeof(std::uint32_t)) == tail.size() - begin;
}

} // namespace tovik

// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "SoundFile.h"

#include <sndfile.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>

namespace tovik {

namespace {

struct CloseFile {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

struct CloseSound {
    void operator()(SNDFILE* sound) const { sf_close(sound); }
};

Error failure(const std::string& path, const std::string& why) {
    return {"tovik-transcribe", 1, path + ": " + why};
}

} // namespace

Result<SoundFile> SoundFile::read(const std::string& path) {
    // Asked here, because the library says no more than "System error".
    const std::unique_ptr<std::FILE, CloseFile> file(std::fopen(path.c_str(), "rb"));
    if (!file) {
        return failure(path, std::strerror(errno));
    }
    SF_INFO info{};
    const std::unique_ptr<SNDFILE, CloseSound> sound(
        sf_open_fd(fileno(file.get()), SFM_READ, &info, SF_FALSE));
    if (!sound) {
        return failure(path, "not a sound file (" + std::string(sf_strerror(nullptr)) + ")");
    }
    if (info.channels < 1 || info.samplerate < 1) {
        return failure(path, "no sound in it");
    }

    SoundFile result;
    result.sampleRate = info.samplerate;
    constexpr sf_count_t framesAtOnce = 4096;
    const auto channels = static_cast<std::size_t>(info.channels);
    std::vector<float> interleaved(static_cast<std::size_t>(framesAtOnce) * channels);
    while (const auto count = sf_readf_float(sound.get(), interleaved.data(), framesAtOnce)) {
        for (std::size_t frame = 0; frame < static_cast<std::size_t>(count); ++frame) {
            result.frames.push_back(interleaved[frame * channels]);
        }
    }
    if (sf_error(sound.get()) != SF_ERR_NO_ERROR) {
        return failure(path, "cannot be read to its end (" + std::string(sf_strerror(sound.get())) + ")");
    }
    return result;
}

} // namespace tovik

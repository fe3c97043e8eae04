// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Engines/Server/SoundFiles.h"

#include "Engines/Host/RecognitionError.h"
#include "Platform/Posix.h"

#include <fcntl.h>
#include <sndfile.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <memory>
#include <system_error>
#include <vector>

namespace tovik {

namespace {

namespace fs = std::filesystem;

/// Fast; the stronger levels save little speech. Of 1.
constexpr double kFlacCompression = 3.0 / 8;
constexpr auto kPrefix = "dictation-";
constexpr mode_t kOwnerOnly = 0700;

/// What libsndfile writes; it comes back to the beginning at the end.
struct Output {
    std::string bytes;
    std::size_t position = 0;

    static sf_count_t size(void* self) {
        return static_cast<sf_count_t>(static_cast<Output*>(self)->bytes.size());
    }
    static sf_count_t tell(void* self) {
        return static_cast<sf_count_t>(static_cast<Output*>(self)->position);
    }
    static sf_count_t seek(sf_count_t offset, int whence, void* self) {
        auto& output = *static_cast<Output*>(self);
        const auto from = whence == SEEK_SET ? 0 : whence == SEEK_CUR ? tell(self) : size(self);
        output.position = static_cast<std::size_t>(from + offset);
        return tell(self);
    }
    static sf_count_t read(void* to, sf_count_t count, void* self) {
        auto& output = *static_cast<Output*>(self);
        const auto there = output.bytes.size() - std::min(output.position, output.bytes.size());
        const auto given = std::min(static_cast<std::size_t>(count), there);
        std::memcpy(to, output.bytes.data() + output.position, given);
        output.position += given;
        return static_cast<sf_count_t>(given);
    }
    static sf_count_t write(const void* from, sf_count_t count, void* self) {
        auto& output = *static_cast<Output*>(self);
        const auto size = static_cast<std::size_t>(count);
        output.bytes.resize(std::max(output.bytes.size(), output.position + size));
        std::memcpy(output.bytes.data() + output.position, from, size);
        output.position += size;
        return count;
    }
};

struct CloseSound {
    void operator()(SNDFILE* file) const { sf_close(file); }
};

/// By name, which is by time.
std::vector<std::string> keptIn(const std::string& folder) {
    std::vector<std::string> files;
    std::error_code error;
    for (const auto& entry : fs::directory_iterator(folder, error)) {
        const auto name = entry.path().filename().string();
        if (name.starts_with(kPrefix) && name.ends_with(".wav")) {
            files.push_back(entry.path().string());
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

/// With the folders above it; those that are there stay as they are.
Result<void> makePrivateFolder(const std::string& folder) {
    fs::path made;
    for (const auto& part : fs::path(folder)) {
        made /= part;
        if (::mkdir(made.c_str(), kOwnerOnly) != 0 && errno != EEXIST && !fs::exists(made)) {
            return posixError(errno, "Cannot create the folder " + made.string());
        }
    }
    // It may have been made by somebody more careless.
    if (::chmod(folder.c_str(), kOwnerOnly) != 0) {
        return Error{"SpeechRecognition", 1, "The folder " + folder + " is not ours"};
    }
    return {};
}

Result<void> writeNewFile(const std::string& path, std::string_view content) {
    const UnixFd file(::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600));
    bool isWritten = static_cast<bool>(file);
    while (isWritten && !content.empty()) {
        const auto written = ::write(file.get(), content.data(), content.size());
        isWritten = written >= 0 || errno == EINTR;
        content.remove_prefix(written > 0 ? static_cast<std::size_t>(written) : 0);
    }
    if (isWritten && ::fsync(file.get()) == 0) {
        return {};
    }
    const auto failure = posixError(errno, "Cannot write " + path);
    if (file) {
        ::unlink(path.c_str());
    }
    return failure;
}

} // namespace

Result<std::string> soundFile(std::span<const std::int16_t> samples, int sampleRate, SoundFormat format) {
    const bool isFlac = format == SoundFormat::flac;
    SF_INFO info{};
    info.samplerate = sampleRate;
    info.channels = 1;
    info.format = (isFlac ? SF_FORMAT_FLAC : SF_FORMAT_WAV) | SF_FORMAT_PCM_16;
    Output output;
    output.bytes.reserve(isFlac ? samples.size() : samples.size_bytes() + 64);
    SF_VIRTUAL_IO functions{Output::size, Output::seek, Output::read, Output::write, Output::tell};
    std::unique_ptr<SNDFILE, CloseSound> file(sf_open_virtual(&functions, SFM_WRITE, &info, &output));
    auto compression = kFlacCompression;
    if (file && isFlac) {
        sf_command(file.get(), SFC_SET_COMPRESSION_LEVEL, &compression, sizeof compression);
    }
    const auto count = static_cast<sf_count_t>(samples.size());
    const bool isWritten = file && sf_writef_short(file.get(), samples.data(), count) == count;
    if (!isWritten || sf_close(file.release()) != 0) {
        return recognitionError(RecognitionCode::failed, "The sound could not be encoded");
    }
    return std::move(output.bytes);
}

Result<std::string> FailedAudio::keep(std::span<const std::int16_t> samples, int sampleRate) {
    const std::lock_guard lock(mutex_);
    if (auto made = makePrivateFolder(folder_); !made) {
        return made.error();
    }
    auto files = keptIn(folder_);
    std::error_code ignored;
    for (std::size_t i = 0; i + mostFiles <= files.size(); ++i) {
        fs::remove(files[i], ignored);
    }
    const auto content = soundFile(samples, sampleRate, SoundFormat::wav);
    if (!content) {
        return content.error();
    }
    auto path = folder_ + "/" + nameForNow();
    if (auto written = writeNewFile(path, content.value()); !written) {
        return written.error();
    }
    return path;
}

std::vector<std::string> FailedAudio::kept() {
    const std::lock_guard lock(mutex_);
    return keptIn(folder_);
}

void FailedAudio::forget(const std::vector<std::string>& files) {
    const std::lock_guard lock(mutex_);
    std::error_code ignored;
    for (const auto& file : files) {
        fs::remove(file, ignored);
    }
}

} // namespace tovik

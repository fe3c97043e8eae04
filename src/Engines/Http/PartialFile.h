// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <string_view>

namespace tovik {

/// A file that may come in several transfers. Beside it stands which version of the server's file it is a
/// part of; without that nothing is gone on with. One thread.
class PartialFile {
public:
    explicit PartialFile(std::string path) : path_(std::move(path)) {}

    /// Bytes that are there and may be gone on with.
    [[nodiscard]] std::uint64_t size() const;
    /// As the server named it; empty when it did not.
    [[nodiscard]] std::string version() const;

    /// Drops what is there. The next bytes are those of this version.
    bool beginAnew(const std::string& version);
    /// The next bytes follow what is there.
    bool goOn();
    bool write(std::string_view bytes);
    /// False when something did not reach the disk.
    bool close();
    /// All of it has come: which version it is matters no more.
    bool finish();
    void drop();

private:
    struct Close {
        void operator()(std::FILE* file) const { std::fclose(file); }
    };
    [[nodiscard]] std::string versionPath() const { return path_ + ".etag"; }
    bool open(const char* mode);

    const std::string path_;
    std::unique_ptr<std::FILE, Close> file_;
};

} // namespace tovik

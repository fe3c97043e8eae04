// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Linux/Storage/JsonDocument.h"
#include "Platform/UnixFd.h"
#include "Platform/Result.h"

#include <sys/types.h>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace tovik {

/// The newest state of a file that holds one JSON object and that other processes change too. Parses only
/// when the file has changed. Not for several threads at once.
class JsonFile {
public:
    enum class State {
        absent,
        readable,
        /// There is something that is not one JSON object.
        unreadable,
        /// The system refuses to say what is there.
        unreachable,
    };

    explicit JsonFile(std::string path) : path_(std::move(path)) {}

    /// Looks at the file. True when there is other content or another state than before.
    bool refresh();

    /// The caller has just written this text, which holds this document.
    void adopt(std::shared_ptr<const JsonDocument> document, std::string_view text);

    [[nodiscard]] State state() const { return state_; }
    /// Never null. Empty while absent or unreadable; the last known one while unreachable.
    [[nodiscard]] const std::shared_ptr<const JsonDocument>& document() const { return document_; }
    /// Only while unreachable.
    [[nodiscard]] const Error& error() const { return *error_; }
    /// Only while unreadable: what is there instead, and since when.
    [[nodiscard]] const std::string& unreadableBytes() const { return unreadableBytes_; }
    [[nodiscard]] std::chrono::system_clock::time_point unreadableSince() const;

private:
    struct Identity {
        dev_t device = 0;
        ino_t inode = 0;
        std::int64_t modifiedNanoseconds = 0;
        off_t size = 0;

        bool operator==(const Identity&) const = default;
    };

    [[nodiscard]] static std::optional<Identity> identityOf(int fd);
    [[nodiscard]] bool isAsLastSeen() const;
    [[nodiscard]] bool mayHaveChangedUnnoticed() const;
    bool becomeAbsent();
    bool becomeUnreachable(int code);
    bool readFrom(UnixFd file);

    const std::string path_;
    State state_ = State::absent;
    std::shared_ptr<const JsonDocument> document_ = std::make_shared<JsonDocument>();
    std::optional<Error> error_;
    std::string unreadableBytes_;
    /// Kept open, so that its inode number cannot come back as another file.
    UnixFd file_;
    Identity seen_;
    std::int64_t seenAtNanoseconds_ = 0;
    std::size_t seenHash_ = 0;
};

} // namespace tovik

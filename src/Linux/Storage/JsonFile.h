// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/Posix.h"
#include "Platform/Result.h"
#include "Platform/UserDefaults.h"

#include <sys/stat.h>
#include <sys/types.h>

#include <chrono>
#include <cstddef>
#include <map>
#include <memory>
#include <mutex>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace tovik {

/// A value together with its text as JSON, which is made once, when it is first needed. Any thread.
class JsonValue {
public:
    explicit JsonValue(PropertyValue value) : value_(std::move(value)) {}
    /// The text must be the value's.
    JsonValue(PropertyValue value, std::string text);

    /// For values that were not read from JSON: bytes that are no UTF-8 become replacement characters.
    [[nodiscard]] static std::shared_ptr<const JsonValue> checked(PropertyValue value);

    [[nodiscard]] const PropertyValue& value() const { return value_; }
    [[nodiscard]] const std::string& text() const;

private:
    PropertyValue value_;
    mutable std::once_flag isTextMade_;
    mutable std::string text_;
};

/// One JSON object. Copies share the values, so that copying a document with a long list in it, and writing
/// it after a change elsewhere, stays cheap.
class JsonDocument {
public:
    using Value = std::shared_ptr<const JsonValue>;

    /// Nothing when the text is not one JSON object, or is nested beyond reason.
    [[nodiscard]] static std::optional<JsonDocument> parse(std::string_view text);

    /// Null when the key is absent.
    [[nodiscard]] Value find(std::string_view key) const;
    /// Null removes the key.
    void put(std::string_view key, Value value);

    /// One line for each key, in the order of the keys.
    [[nodiscard]] std::string serialize() const;

private:
    std::map<std::string, Value, std::less<>> values_;
};

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
    [[nodiscard]] std::chrono::system_clock::time_point unreadableSince() const { return seen_.modified; }

private:
    using Time = std::chrono::system_clock::time_point;

    struct Identity {
        dev_t device = 0;
        ino_t inode = 0;
        Time modified;
        off_t size = 0;

        bool operator==(const Identity&) const = default;
    };

    /// Nothing where there is something else than a file.
    [[nodiscard]] static std::optional<Identity> identityOf(const struct stat& status);
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
    Time seenAt_;
    std::size_t seenHash_ = 0;
};

} // namespace tovik

// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Linux/Storage/JsonFile.h"

#include "Platform/JsonNesting.h"
#include "Platform/Posix.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <functional>
#include <utility>

namespace tovik {

namespace {

using Json = nlohmann::json;

/// Deeper than any setting, and far from what would exhaust the stack when a value is copied or written.
constexpr int kDeepestNesting = 256;

std::string dump(const Json& value) {
    return value.dump(-1, ' ', false, Json::error_handler_t::replace);
}

constexpr off_t kLargestFile = 256 << 20;

/// File times advance in steps of a few milliseconds: a file changed in place within the step in which it
/// was read keeps its time.
constexpr std::chrono::milliseconds kTimeStep(50);

std::size_t hashOf(std::string_view text) {
    return std::hash<std::string_view>()(text);
}

/// 0 or errno.
int readAll(int fd, std::string& content) {
    std::array<char, 16384> piece{};
    while (true) {
        const auto got = ::pread(fd, piece.data(), piece.size(), static_cast<off_t>(content.size()));
        if (got == 0) {
            return 0;
        }
        if (got > 0) {
            content.append(piece.data(), static_cast<std::size_t>(got));
        } else if (errno != EINTR) {
            return errno;
        }
        if (content.size() > static_cast<std::size_t>(kLargestFile)) {
            return EFBIG;
        }
    }
}

} // namespace

JsonValue::JsonValue(PropertyValue value, std::string text)
    : value_(std::move(value)),
      text_(std::move(text)) {
    std::call_once(isTextMade_, [] {});
}

std::shared_ptr<const JsonValue> JsonValue::checked(PropertyValue value) {
    std::string text;
    try {
        text = value.dump(-1, ' ', false, Json::error_handler_t::strict);
    } catch (const Json::type_error&) {
        text = dump(value);
        value = Json::parse(text);
    }
    return std::make_shared<const JsonValue>(std::move(value), std::move(text));
}

const std::string& JsonValue::text() const {
    std::call_once(isTextMade_, [this] { text_ = dump(value_); });
    return text_;
}

std::optional<JsonDocument> JsonDocument::parse(std::string_view text) {
    if (isNestedDeeper(text, kDeepestNesting)) {
        return std::nullopt;
    }
    auto parsed = Json::parse(text, nullptr, false);
    if (!parsed.is_object()) {
        return std::nullopt;
    }
    JsonDocument document;
    for (auto& [key, value] : parsed.get_ref<Json::object_t&>()) {
        document.values_.emplace(key, std::make_shared<const JsonValue>(std::move(value)));
    }
    return document;
}

JsonDocument::Value JsonDocument::find(std::string_view key) const {
    const auto found = values_.find(key);
    return found == values_.end() ? nullptr : found->second;
}

void JsonDocument::put(std::string_view key, Value value) {
    if (value) {
        values_.insert_or_assign(std::string(key), std::move(value));
    } else if (const auto found = values_.find(key); found != values_.end()) {
        values_.erase(found);
    }
}

std::string JsonDocument::serialize() const {
    std::string text = "{";
    const char* separator = "\n  ";
    for (const auto& [key, value] : values_) {
        text += separator;
        text += dump(Json(key));
        text += ": ";
        text += value->text();
        separator = ",\n  ";
    }
    text += "\n}\n";
    return text;
}

std::optional<JsonFile::Identity> JsonFile::identityOf(const struct stat& status) {
    if (!S_ISREG(status.st_mode)) {
        return std::nullopt;
    }
    const auto modified =
        std::chrono::seconds(status.st_mtim.tv_sec) + std::chrono::nanoseconds(status.st_mtim.tv_nsec);
    return Identity{status.st_dev, status.st_ino, Time(modified), status.st_size};
}

std::optional<JsonFile::Identity> JsonFile::identityOf(int fd) {
    struct stat status {};
    return ::fstat(fd, &status) == 0 ? identityOf(status) : std::nullopt;
}

bool JsonFile::isAsLastSeen() const {
    struct stat status {};
    return file_ && ::stat(path_.c_str(), &status) == 0 && identityOf(status) == seen_;
}

bool JsonFile::mayHaveChangedUnnoticed() const {
    return std::chrono::abs(seenAt_ - seen_.modified) < kTimeStep;
}

bool JsonFile::refresh() {
    if (isAsLastSeen() && !mayHaveChangedUnnoticed()) {
        return false;
    }
    // Whatever else lies there, a pipe for instance, must not make the program wait.
    UnixFd file(::open(path_.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    if (!file) {
        return errno == ENOENT ? becomeAbsent() : becomeUnreachable(errno);
    }
    return readFrom(std::move(file));
}

bool JsonFile::becomeAbsent() {
    const bool isNews = state_ != State::absent;
    state_ = State::absent;
    file_.reset();
    unreadableBytes_.clear();
    if (isNews) {
        document_ = std::make_shared<JsonDocument>();
    }
    return isNews;
}

bool JsonFile::becomeUnreachable(int code) {
    const bool isNews = state_ != State::unreachable || error_->code != code;
    state_ = State::unreachable;
    file_.reset();
    error_ = posixError(code, "Cannot read " + path_);
    return isNews;
}

bool JsonFile::readFrom(UnixFd file) {
    const auto identity = identityOf(file.get());
    if (!identity) {
        return becomeUnreachable(EINVAL);
    }
    if (identity->size > kLargestFile) {
        return becomeUnreachable(EFBIG);
    }
    const auto readAt = std::chrono::system_clock::now();
    std::string content;
    if (const auto code = readAll(file.get(), content)) {
        return becomeUnreachable(code);
    }
    const auto hash = hashOf(content);
    const bool isKnown = file_ && identity == seen_ && hash == seenHash_;
    file_ = std::move(file);
    seen_ = *identity;
    seenAt_ = readAt;
    seenHash_ = hash;
    if (isKnown) {
        return false;
    }
    if (auto parsed = JsonDocument::parse(content)) {
        state_ = State::readable;
        document_ = std::make_shared<const JsonDocument>(std::move(*parsed));
        unreadableBytes_.clear();
    } else {
        state_ = State::unreadable;
        document_ = std::make_shared<JsonDocument>();
        unreadableBytes_ = std::move(content);
    }
    return true;
}

void JsonFile::adopt(std::shared_ptr<const JsonDocument> document, std::string_view text) {
    UnixFd file(::open(path_.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    const auto identity = file ? identityOf(file.get()) : std::nullopt;
    file_.reset();
    if (identity) {
        file_ = std::move(file);
        seen_ = *identity;
        // Should somebody have changed the file since, its time is as young as this and it is read again.
        seenAt_ = std::chrono::system_clock::now();
        seenHash_ = hashOf(text);
    }
    state_ = State::readable;
    document_ = std::move(document);
    unreadableBytes_.clear();
}

} // namespace tovik

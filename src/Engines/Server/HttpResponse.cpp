// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Engines/Server/HttpResponse.h"

#include "Platform/AsciiCase.h"

#include <algorithm>
#include <charconv>

namespace tovik {

namespace {

constexpr std::string_view kLineEnd = "\r\n";
constexpr int kNoContent = 204;
constexpr int kFinal = 200;

std::string_view trimmed(std::string_view text) {
    const auto begin = text.find_first_not_of(" \t");
    const auto end = text.find_last_not_of(" \t");
    return begin == std::string_view::npos ? std::string_view() : text.substr(begin, end - begin + 1);
}

std::optional<std::size_t> number(std::string_view text, int base) {
    std::size_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value, base);
    return error == std::errc() && end == text.data() + text.size() && !text.empty() ? std::optional(value)
                                                                                     : std::nullopt;
}

} // namespace

std::string HttpResponse::header(const std::string& name) const {
    const auto found = headers.find(name);
    return found == headers.end() ? "" : found->second;
}

HttpResponseReader::State HttpResponseReader::take(std::string_view bytes) {
    if (state_ != State::reading) {
        return state_;
    }
    if (buffer_.size() + response_.body.size() + bytes.size() > mostBytes) {
        return state_ = State::malformed;
    }
    buffer_ += bytes;
    return state_ = read();
}

HttpResponseReader::State HttpResponseReader::end() {
    if (state_ == State::reading) {
        state_ = headIsRead_ && body_ == Body::untilEnd ? State::complete : State::malformed;
    }
    return state_;
}

HttpResponseReader::State HttpResponseReader::read() {
    while (!headIsRead_) {
        if (const auto head = readHead(); head != State::complete) {
            return head;
        }
        // A provisional answer; the real one follows.
        headIsRead_ = response_.status >= kFinal;
        if (!headIsRead_) {
            response_ = {};
        }
    }
    return readBody();
}

/// Complete when a whole head was taken from the buffer.
HttpResponseReader::State HttpResponseReader::readHead() {
    const auto end = buffer_.find("\r\n\r\n");
    if (end == std::string::npos) {
        return State::reading;
    }
    const std::string head = buffer_.substr(0, end + kLineEnd.size());
    buffer_.erase(0, end + 2 * kLineEnd.size());
    const auto firstEnd = head.find(kLineEnd);
    const auto first = head.substr(0, firstEnd);
    if (!first.starts_with("HTTP/1.") || first.size() < 12) {
        return State::malformed;
    }
    const auto status = number(std::string_view(first).substr(9, 3), 10);
    if (!status) {
        return State::malformed;
    }
    response_.status = static_cast<int>(*status);
    for (auto begin = firstEnd + kLineEnd.size(); begin < head.size();) {
        const auto lineEnd = head.find(kLineEnd, begin);
        if (!readHeaderLine(std::string_view(head).substr(begin, lineEnd - begin))) {
            return State::malformed;
        }
        begin = lineEnd + kLineEnd.size();
    }
    return chooseBody() ? State::complete : State::malformed;
}

bool HttpResponseReader::readHeaderLine(std::string_view line) {
    const auto colon = line.find(':');
    if (colon == std::string_view::npos || colon == 0) {
        return false;
    }
    response_.headers[asciiLowerCased(line.substr(0, colon))] = trimmed(line.substr(colon + 1));
    return true;
}

bool HttpResponseReader::chooseBody() {
    if (response_.status < kFinal || response_.status == kNoContent) {
        body_ = Body::none;
    } else if (asciiLowerCased(response_.header("transfer-encoding")).ends_with("chunked")) {
        body_ = Body::chunked;
    } else if (const auto length = response_.header("content-length"); !length.empty()) {
        const auto count = number(length, 10);
        if (!count || *count > mostBytes) {
            return false;
        }
        body_ = Body::counted;
        left_ = *count;
    } else {
        body_ = Body::untilEnd;
    }
    return true;
}

HttpResponseReader::State HttpResponseReader::readBody() {
    switch (body_) {
    case Body::none:
        return State::complete;
    case Body::chunked:
        return readChunks();
    case Body::untilEnd:
        response_.body += buffer_;
        buffer_.clear();
        return State::reading;
    case Body::counted:
        break;
    }
    const auto taken = std::min(left_, buffer_.size());
    response_.body.append(buffer_, 0, taken);
    buffer_.erase(0, taken);
    left_ -= taken;
    return left_ == 0 ? State::complete : State::reading;
}

HttpResponseReader::State HttpResponseReader::readChunks() {
    for (;;) {
        if (left_ > 0) {
            // What is left of a chunk, with the line end behind it.
            if (buffer_.size() < left_ + kLineEnd.size()) {
                return State::reading;
            }
            response_.body.append(buffer_, 0, left_);
            buffer_.erase(0, left_ + kLineEnd.size());
            left_ = 0;
        }
        const auto end = buffer_.find(kLineEnd);
        if (end == std::string::npos) {
            return State::reading;
        }
        const auto line = buffer_.substr(0, end);
        buffer_.erase(0, end + kLineEnd.size());
        if (inTrailer_) {
            if (line.empty()) {
                return State::complete;
            }
            continue;
        }
        const auto size = number(trimmed(std::string_view(line).substr(0, line.find(';'))), 16);
        if (!size || *size > mostBytes) {
            return State::malformed;
        }
        left_ = *size;
        inTrailer_ = left_ == 0;
    }
}

} // namespace tovik

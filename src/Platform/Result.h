// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <utility>
#include <variant>

namespace tovik {

/// A failure as a value: who reports it, a number for programs and a sentence for people.
struct Error {
    std::string domain;
    int code = 0;
    std::string description;

    bool operator==(const Error&) const = default;
};

/// Either the value that an operation was asked for, or why there is none.
template <typename T>
class [[nodiscard]] Result {
public:
    Result(T value) : outcome_(std::move(value)) {}
    Result(Error error) : outcome_(std::move(error)) {}

    [[nodiscard]] bool ok() const { return std::holds_alternative<T>(outcome_); }
    explicit operator bool() const { return ok(); }

    /// Only when ok().
    [[nodiscard]] const T& value() const { return std::get<T>(outcome_); }
    [[nodiscard]] T& value() { return std::get<T>(outcome_); }
    /// Only when not ok().
    [[nodiscard]] const Error& error() const { return std::get<Error>(outcome_); }

private:
    std::variant<T, Error> outcome_;
};

/// The outcome of an operation that yields nothing but success or an error.
template <>
class [[nodiscard]] Result<void> {
public:
    Result() = default;
    Result(Error error) : error_(std::move(error)) {}

    [[nodiscard]] bool ok() const { return !error_; }
    explicit operator bool() const { return ok(); }

    /// Only when not ok().
    [[nodiscard]] const Error& error() const { return *error_; }

private:
    std::optional<Error> error_;
};

} // namespace tovik

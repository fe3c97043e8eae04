// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace tovik {

/// Where a web server is: the parts of an http or https address.
struct WebAddress {
    bool isEncrypted = false;
    /// A name in ASCII, or an address without brackets.
    std::string host;
    std::uint16_t port = 0;
    /// Empty, or begins with a slash and does not end with one.
    std::string path;

    bool operator==(const WebAddress&) const = default;

    /// Nothing when the text is no such address.
    [[nodiscard]] static std::optional<WebAddress> parse(const std::string& text);

    /// Whether what is sent there stays on this machine.
    [[nodiscard]] bool isThisMachine() const;
    /// Whether a key may be sent there: nobody on the way must be able to read it.
    [[nodiscard]] bool isSafeForKeys() const { return isEncrypted || isThisMachine(); }

    /// Without a path, for people: "https://speech.example:443".
    [[nodiscard]] std::string origin() const;
    /// The address of another path on the same server.
    [[nodiscard]] std::string url(const std::string& otherPath) const;
};

} // namespace tovik

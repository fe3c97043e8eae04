// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Engines/Http/WebAddress.h"

#include "Platform/AsciiCase.h"

#include <arpa/inet.h>
#include <curl/curl.h>
#include <unicode/bytestream.h>
#include <unicode/idna.h>

#include <algorithm>
#include <charconv>
#include <memory>

namespace tovik {

namespace {

struct FreeUrl {
    void operator()(CURLU* url) const { curl_url_cleanup(url); }
};

std::optional<std::string> part(CURLU* url, CURLUPart which, unsigned flags) {
    char* text = nullptr;
    if (curl_url_get(url, which, &text, flags) != CURLUE_OK) {
        return std::nullopt;
    }
    std::string copy(text);
    curl_free(text);
    return copy;
}

/// As it is looked up: in lower case, and in ASCII where it has other letters.
std::string asciiName(const std::string& host) {
    if (std::all_of(host.begin(), host.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; })) {
        return asciiLowerCased(host);
    }
    auto failure = U_ZERO_ERROR;
    const std::unique_ptr<icu::IDNA> rules(
        icu::IDNA::createUTS46Instance(UIDNA_NONTRANSITIONAL_TO_ASCII, failure));
    std::string name;
    icu::StringByteSink<std::string> sink(&name);
    icu::IDNAInfo info;
    if (U_SUCCESS(failure)) {
        rules->nameToASCII_UTF8(host, sink, info, failure);
    }
    return U_SUCCESS(failure) && !info.hasErrors() ? name : std::string();
}

bool isLoopback(const in_addr& address) {
    constexpr int kNetworkBits = 24;
    return ntohl(address.s_addr) >> kNetworkBits == IN_LOOPBACKNET;
}

} // namespace

std::optional<WebAddress> WebAddress::parse(const std::string& text) {
    // libcurl forgives a third slash and takes the path for the host.
    if (text.find(":///") != std::string::npos || text.find(' ') != std::string::npos) {
        return std::nullopt;
    }
    const std::unique_ptr<CURLU, FreeUrl> url(curl_url());
    if (curl_url_set(url.get(), CURLUPART_URL, text.c_str(), CURLU_URLENCODE) != CURLUE_OK) {
        return std::nullopt;
    }
    const auto scheme = part(url.get(), CURLUPART_SCHEME, 0).value_or("");
    auto host = asciiName(part(url.get(), CURLUPART_HOST, 0).value_or(""));
    if (host.empty() || (scheme != "http" && scheme != "https")) {
        return std::nullopt;
    }
    if (host.starts_with('[')) {
        host = host.substr(1, host.size() - 2);
    }
    WebAddress address{scheme == "https", std::move(host), 0, {}};
    const auto port = part(url.get(), CURLUPART_PORT, CURLU_DEFAULT_PORT).value_or("");
    std::from_chars(port.data(), port.data() + port.size(), address.port);
    address.path = part(url.get(), CURLUPART_PATH, 0).value_or("");
    while (address.path.ends_with('/')) {
        address.path.pop_back();
    }
    return address;
}

bool WebAddress::isThisMachine() const {
    in_addr old{};
    if (::inet_pton(AF_INET, host.c_str(), &old) == 1) {
        return isLoopback(old);
    }
    in6_addr address{};
    if (::inet_pton(AF_INET6, host.c_str(), &address) == 1) {
        return IN6_IS_ADDR_LOOPBACK(&address);
    }
    return host == "localhost";
}

std::string WebAddress::origin() const {
    return (isEncrypted ? "https://" : "http://") + host + ":" + std::to_string(port);
}

std::string WebAddress::url(const std::string& otherPath) const {
    const bool isIpv6 = host.find(':') != std::string::npos;
    return (isEncrypted ? "https://" : "http://") + (isIpv6 ? "[" + host + "]" : host) + ":" +
           std::to_string(port) + otherPath;
}

} // namespace tovik

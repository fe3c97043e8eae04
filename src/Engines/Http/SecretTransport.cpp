// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Engines/Http/SecretTransport.h"

#include <arpa/inet.h>

namespace tovik {

namespace {

bool isLoopback(const in_addr& address) {
    constexpr int kNetworkBits = 24;
    return ntohl(address.s_addr) >> kNetworkBits == IN_LOOPBACKNET;
}

} // namespace

bool isThisMachine(const std::string& host) {
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

} // namespace tovik

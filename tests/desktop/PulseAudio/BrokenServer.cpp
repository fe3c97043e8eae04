// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "BrokenServer.h"

#include <stdlib.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <filesystem>
#include <stdexcept>

namespace tovik::test {

BrokenServer::BrokenServer(Manner manner) : manner_(manner), folder_("/tmp/tovik-broken-XXXXXX") {
    if (mkdtemp(folder_.data()) == nullptr) {
        throw std::runtime_error("cannot make a folder below /tmp");
    }
    path_ = folder_ + "/native";
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path_.copy(address.sun_path, sizeof address.sun_path - 1);
    listening_ = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (bind(listening_, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
        listen(listening_, 8) != 0) {
        throw std::runtime_error("cannot listen on " + path_);
    }
    thread_ = std::thread([this] { run(); });
}

BrokenServer::~BrokenServer() {
    shutdown(listening_, SHUT_RDWR);
    thread_.join();
    for (const int connection : stalled_) {
        close(connection);
    }
    close(listening_);
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
}

void BrokenServer::run() {
    for (int connection = -1; (connection = accept(listening_, nullptr, nullptr)) >= 0;) {
        ++accepted_;
        if (manner_ == Manner::stalls) {
            stalled_.push_back(connection);
        } else {
            close(connection);
        }
    }
}

} // namespace tovik::test

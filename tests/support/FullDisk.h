// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include <signal.h>
#include <sys/resource.h>

namespace tovik::test {

/// As long as it lives, no file of this process can grow beyond the limit, as on a full disk.
class FullDisk {
public:
    explicit FullDisk(rlim_t limit) {
        ::getrlimit(RLIMIT_FSIZE, &before_);
        signalBefore_ = ::signal(SIGXFSZ, SIG_IGN);
        const rlimit full{limit, before_.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &full);
    }
    FullDisk(const FullDisk&) = delete;
    FullDisk& operator=(const FullDisk&) = delete;
    ~FullDisk() {
        ::setrlimit(RLIMIT_FSIZE, &before_);
        ::signal(SIGXFSZ, signalBefore_);
    }

private:
    rlimit before_{};
    sighandler_t signalBefore_ = SIG_DFL;
};

} // namespace tovik::test

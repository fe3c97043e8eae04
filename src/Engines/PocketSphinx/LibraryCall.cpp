// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Engines/PocketSphinx/LibraryCall.h"

#include <sphinxbase/err.h>

#include <array>
#include <csetjmp>
#include <cstdarg>
#include <cstdio>
#include <mutex>

namespace tovik {

namespace {

/// The call that runs on this thread.
struct RunningCall {
    std::jmp_buf giveUp;
    std::array<char, 1024> text{};
    std::size_t length = 0;
};

thread_local RunningCall* runningCall = nullptr;

/// Holds nothing to destroy, since it may leave by a jump.
void hear(void*, err_lvl_t level, const char* format, ...) {
    if (runningCall == nullptr || level < ERR_ERROR) {
        return;
    }
    auto& call = *runningCall;
    const auto room = call.text.size() - call.length;
    va_list arguments;
    va_start(arguments, format);
    const int written = std::vsnprintf(call.text.data() + call.length, room, format, arguments);
    va_end(arguments);
    if (written > 0) {
        call.length += std::min(static_cast<std::size_t>(written), room - 1);
    }
    if (level == ERR_FATAL) {
        // Returning from here would let the library end the process.
        std::longjmp(call.giveUp, 1);
    }
}

void installOnce() {
    static std::once_flag installed;
    std::call_once(installed, [] {
        err_set_logfp(nullptr);
        err_set_callback(hear, nullptr);
    });
}

bool runGuarded(RunningCall& call, void (*function)(void*), void* argument) {
    if (setjmp(call.giveUp) != 0) {
        return false;
    }
    function(argument);
    return true;
}

} // namespace

bool LibraryCall::run(void (*function)(void*), void* argument) {
    installOnce();
    RunningCall call;
    auto* const outer = runningCall;
    runningCall = &call;
    const bool returned = runGuarded(call, function, argument);
    runningCall = outer;

    std::string line;
    for (std::size_t i = 0; i < call.length; ++i) {
        if (call.text[i] != '\n') {
            line += call.text[i];
        } else if (!line.empty()) {
            complaints_.push_back(std::move(line));
            line.clear();
        }
    }
    if (!line.empty()) {
        complaints_.push_back(std::move(line));
    }
    return returned;
}

std::string LibraryCall::complaintsLine() const {
    std::string joined;
    for (const auto& complaint : complaints_) {
        joined += (joined.empty() ? "" : "; ") + complaint;
    }
    return joined;
}

} // namespace tovik

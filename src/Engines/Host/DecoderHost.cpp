// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Engines/Host/DecoderHost.h"

#include "Engines/Host/Protocol.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <thread>

namespace tovik {

namespace {

/// Half the share of the processor that others get, and a bit less.
constexpr int kLoadingNiceness = 5;

/// The other side's ends of our pipes.
class Desk {
public:
    Desk() : answers_(::fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1)) {
        ::dup2(STDERR_FILENO, STDOUT_FILENO);
    }

    void say(Frame kind, std::string_view content) const {
        std::string bytes;
        appendFrame(bytes, kind, content);
        for (std::string_view left = bytes; !left.empty();) {
            const auto written = ::write(answers_, left.data(), left.size());
            if (written < 0 && errno != EINTR) {
                ::_exit(0);
            }
            left.remove_prefix(static_cast<std::size_t>(std::max<ssize_t>(written, 0)));
        }
    }

    void say(const Result<std::string>& answer) const {
        if (answer) {
            say(Frame::done, answer.value());
        } else {
            say(Frame::failed, packError(answer.error()));
        }
    }

    void say(const Result<void>& answer) const {
        say(answer ? Result<std::string>(std::string()) : Result<std::string>(answer.error()));
    }

    /// Waits for the next request; at the end of them this process ends.
    std::pair<Frame, std::string> next() {
        for (;;) {
            if (auto frame = requests_.next()) {
                return std::move(*frame);
            }
            std::array<char, 65536> buffer{};
            const auto got = ::read(STDIN_FILENO, buffer.data(), buffer.size());
            if (got == 0 || (got < 0 && errno != EINTR) || requests_.isTooLong()) {
                ::_exit(0);
            }
            requests_.bytes().append(buffer.data(), static_cast<std::size_t>(std::max<ssize_t>(got, 0)));
        }
    }

private:
    const int answers_;
    FrameReader requests_;
};

class Server {
public:
    Server(Desk& desk, UtteranceDecoder& decoder) : desk_(desk), decoder_(decoder) {}

    [[noreturn]] void run() {
        for (;;) {
            const auto [request, content] = desk_.next();
            answer(request, content);
        }
    }

private:
    void answer(Frame request, const std::string& content) {
        switch (request) {
        case Frame::learn:
            desk_.say(decoder_.prepare(unpackStrings(content)));
            return;
        case Frame::begin:
            trouble_ = decoder_.begin(unpackStrings(content));
            isBegun_ = trouble_.ok();
            break;
        case Frame::sound:
            if (trouble_) {
                trouble_ = decoder_.accept(unpackSamples(content));
            }
            break;
        case Frame::hypothesis:
            desk_.say(Result<std::string>(trouble_ ? decoder_.hypothesis() : ""));
            return;
        case Frame::finish: {
            // Also after trouble, or the library may refuse the next utterance.
            const auto text = isBegun_ ? decoder_.finish() : Result<std::string>(trouble_.error());
            desk_.say(trouble_ ? text : Result<std::string>(trouble_.error()));
            return;
        }
        default:
            ::_exit(1);
        }
        desk_.say(Frame::done, "");
    }

    Desk& desk_;
    UtteranceDecoder& decoder_;
    /// What has gone wrong in the present utterance.
    Result<void> trouble_;
    bool isBegun_ = false;
};

/// No core files of crashes that are expected, with somebody's words in them; and no life without the one who
/// asks.
void settleIn() {
    ::prctl(PR_SET_DUMPABLE, 0);
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    // He may have gone before that was said.
    pollfd input{STDIN_FILENO, POLLIN, 0};
    if (::poll(&input, 1, 0) == 1 && (input.revents & POLLHUP) != 0) {
        ::_exit(0);
    }
}

} // namespace

void serveDecoder(const std::function<Result<std::unique_ptr<UtteranceDecoder>>()>& load) {
    Desk desk;
    settleIn();
    desk.say(Frame::hello, kProtocolVersion);
    Result<std::unique_ptr<UtteranceDecoder>> decoder = std::unique_ptr<UtteranceDecoder>();
    // A thread that has lowered its priority may not raise it again.
    std::thread([&] {
        ::setpriority(PRIO_PROCESS, static_cast<id_t>(::syscall(SYS_gettid)), kLoadingNiceness);
        decoder = load();
    }).join();
    if (!decoder) {
        desk.say(Frame::failed, packError(decoder.error()));
        ::_exit(0);
    }
    desk.say(Frame::done, "");
    Server(desk, *decoder.value()).run();
}

} // namespace tovik

// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/MainQueue.h"
#include "Platform/Subscription.h"
#include "Platform/SystemLog.h"

#include <pulse/pulseaudio.h>

#include <chrono>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace tovik {

namespace pulse {

struct MainloopDeleter {
    void operator()(pa_mainloop* loop) const { pa_mainloop_free(loop); }
};
struct ContextDeleter {
    void operator()(pa_context* context) const {
        pa_context_set_state_callback(context, nullptr, nullptr);
        pa_context_set_subscribe_callback(context, nullptr, nullptr);
        pa_context_disconnect(context);
        pa_context_unref(context);
    }
};
struct StreamDeleter {
    void operator()(pa_stream* stream) const {
        pa_stream_set_read_callback(stream, nullptr, nullptr);
        pa_stream_set_moved_callback(stream, nullptr, nullptr);
        if (pa_stream_get_state(stream) == PA_STREAM_CREATING) {
            // The library cannot take leave of a stream that the server is just opening; without this the
            // microphone would stay open for good.
            pa_stream_set_state_callback(stream, &leaveOnceOpen, nullptr);
            return;
        }
        pa_stream_set_state_callback(stream, nullptr, nullptr);
        pa_stream_disconnect(stream);
        pa_stream_unref(stream);
    }

    static void leaveOnceOpen(pa_stream* stream, void*) {
        if (pa_stream_get_state(stream) == PA_STREAM_READY) {
            pa_stream_set_state_callback(stream, nullptr, nullptr);
            pa_stream_disconnect(stream);
            pa_stream_unref(stream);
        } else if (!PA_STREAM_IS_GOOD(pa_stream_get_state(stream))) {
            pa_stream_set_state_callback(stream, nullptr, nullptr);
            pa_stream_unref(stream);
        }
    }
};
struct OperationDeleter {
    void operator()(pa_operation* operation) const {
        pa_operation_cancel(operation);
        pa_operation_unref(operation);
    }
};
struct ProplistDeleter {
    void operator()(pa_proplist* properties) const { pa_proplist_free(properties); }
};

// Dropping a context or a stream silences its callbacks and takes leave of the server; dropping an operation
// takes its answer back.
using MainloopHandle = std::unique_ptr<pa_mainloop, MainloopDeleter>;
using ContextHandle = std::unique_ptr<pa_context, ContextDeleter>;
using StreamHandle = std::unique_ptr<pa_stream, StreamDeleter>;
using OperationHandle = std::unique_ptr<pa_operation, OperationDeleter>;
using ProplistHandle = std::unique_ptr<pa_proplist, ProplistDeleter>;

} // namespace pulse

/// The one thread on which the sound server is talked to. No other thread ever calls the client library, so
/// nobody waits for it, whatever the server does.
class SoundThread {
public:
    SoundThread();
    /// Runs what was posted, then ends the thread.
    ~SoundThread();
    SoundThread(const SoundThread&) = delete;
    SoundThread& operator=(const SoundThread&) = delete;

    /// From any thread. In the order of the calls, never before this call returns.
    void post(std::function<void()> work);

    /// Sound thread only.
    [[nodiscard]] pa_mainloop_api& api();
    /// Sound thread only, its token too. Runs the work once.
    [[nodiscard]] Subscription after(Seconds delay, std::function<void()> work);
    /// Sound thread only, its token too, which is not dropped within the work. Runs it again and again,
    /// without allocating anything.
    [[nodiscard]] Subscription every(Seconds interval, std::function<void()> work);

private:
    void run();
    void runPosted();

    int wakeUp_ = -1;
    pulse::MainloopHandle loop_;
    std::mutex mutex_;
    std::vector<std::function<void()>> posted_;
    std::thread thread_;
};

/// What is known of the sound server at one moment.
struct SoundServerStatus {
    enum class State {
        /// A server was found and has not answered yet.
        connecting,
        ready,
        /// A server is there and turns this program away.
        refused,
        absent
    };

    State state = State::connecting;
    /// The client library's number of what went wrong, 0 when nothing has.
    int error = 0;
    /// When the server, which lets the program in, refused its last recording; nothing if it did not.
    std::optional<std::chrono::steady_clock::time_point> recordingRefused;
    /// When the state began.
    std::chrono::steady_clock::time_point since;

    /// Whether the server turns away the program or its recordings. A refused recording counts for 10 s: no
    /// server tells when the user has allowed recording, so it has to be tried again.
    [[nodiscard]] bool turnsAway(std::chrono::steady_clock::time_point now) const;
};

/// The conversation with the user's sound server, PulseAudio or PipeWire. Kept open as long as this lives;
/// when the server goes away or was never there, it is looked for again, ever less often, up to once a
/// second. Logs one line when the server is lost and one when it is back.
///
/// A server is started for the user only where the user's client configuration says so, and only at launch
/// and when somebody hurries: a server that the user stopped on purpose must not rise again by itself.
class PulseAudioConnection {
public:
    /// Somebody who uses the server. All calls come on the sound thread.
    class Client {
    public:
        virtual ~Client() = default;
        /// The context stays valid until serverLost().
        virtual void serverReady(pa_context& context) = 0;
        /// There is no server; said again after every vain attempt to reach one.
        virtual void serverLost() = 0;
    };

    /// An empty address means the server of the user's session.
    explicit PulseAudioConnection(SystemLog& log, std::string address = {});
    ~PulseAudioConnection();
    PulseAudioConnection(const PulseAudioConnection&) = delete;
    PulseAudioConnection& operator=(const PulseAudioConnection&) = delete;

    /// Any thread; answers at once.
    [[nodiscard]] SoundServerStatus status() const;

    /// Any thread. Remembers whether the server let a recording happen.
    void noteRecording(bool refused);

    /// Any thread. Looks for a missing server now rather than later.
    void hurry();

    /// Any thread. The client hears of the server for as long as it exists, also of one that is there
    /// already.
    void add(std::weak_ptr<Client> client);

    /// Any thread. Runs the work on the sound thread, in the order of the calls.
    void post(std::function<void()> work) { thread_.post(std::move(work)); }

    /// Sound thread only.
    [[nodiscard]] SoundThread& thread() { return thread_; }
    /// Any thread. One line for the program's log, marked as all its lines are.
    void log(const std::string& text);

private:
    enum class Announced { nothing, lost };

    void connect(bool mayStartServer);
    void stateChanged();
    void becomeReady();
    void lose(int error);
    void retryLater();
    void announceSilence();
    void announceLoss(const std::string& text);
    void setState(SoundServerStatus::State state, int error);
    void tellClients(const std::function<void(Client&)>& what);

    SystemLog& log_;
    const std::string address_;
    mutable std::mutex mutex_;
    SoundServerStatus status_;

    // Sound thread only.
    pulse::ContextHandle context_;
    std::vector<std::weak_ptr<Client>> clients_;
    Subscription retry_;
    Subscription silence_;
    Seconds retryDelay_;
    Announced announced_ = Announced::nothing;
    bool wasReady_ = false;

    // Last: everything above must still be there when its last work runs.
    SoundThread thread_;
};

} // namespace tovik

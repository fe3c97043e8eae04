// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Linux/DBus/LibsecretStore.h"

#include <libsecret/secret.h>

#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>
#include <utility>

namespace tovik {

namespace {

constexpr auto kApplication = "tovik-record";

struct ObjectRelease {
    void operator()(gpointer object) const { g_object_unref(object); }
};
using Cancellable = std::unique_ptr<GCancellable, ObjectRelease>;

struct PasswordRelease {
    void operator()(gchar* password) const { secret_password_free(password); }
};
using Password = std::unique_ptr<gchar, PasswordRelease>;

/// Receives the error of one call.
class CallError {
public:
    CallError() = default;
    CallError(const CallError&) = delete;
    CallError& operator=(const CallError&) = delete;
    ~CallError() { g_clear_error(&error_); }

    [[nodiscard]] GError** receiver() { return &error_; }
    explicit operator bool() const { return error_ != nullptr; }
    [[nodiscard]] Error value() const {
        return {g_quark_to_string(error_->domain), error_->code,
                std::string("Secret store: ") + error_->message};
    }

private:
    GError* error_ = nullptr;
};

const SecretSchema* schema() {
    // Without a match of the schema's name, so that secrets kept with secret-tool are found too.
    static const SecretSchema ours = {"example.tovik.Record",
                                      SECRET_SCHEMA_DONT_MATCH_NAME,
                                      {{"application", SECRET_SCHEMA_ATTRIBUTE_STRING},
                                       {"name", SECRET_SCHEMA_ATTRIBUTE_STRING},
                                       {nullptr, SECRET_SCHEMA_ATTRIBUTE_STRING}},
                                      0,
                                      nullptr,
                                      nullptr,
                                      nullptr,
                                      nullptr,
                                      nullptr,
                                      nullptr,
                                      nullptr};
    return &ours;
}

/// A connection to the session bus ends its process together with the bus, unless it is told not to.
void surviveTheSessionBus(GCancellable* cancellable) {
    const std::unique_ptr<GDBusConnection, ObjectRelease> bus(
        g_bus_get_sync(G_BUS_TYPE_SESSION, cancellable, nullptr));
    if (bus) {
        g_dbus_connection_set_exit_on_close(bus.get(), FALSE);
    }
}

Result<std::optional<std::string>> lookUpNow(const std::string& name, GCancellable* cancellable) {
    CallError error;
    const Password found(secret_password_lookup_sync(schema(), cancellable, error.receiver(), "application",
                                                     kApplication, "name", name.c_str(), nullptr));
    if (error) {
        return error.value();
    }
    return found ? std::optional<std::string>(found.get()) : std::nullopt;
}

} // namespace

/// A thread on which the calls may wait for the desktop, one after the other.
class LibsecretStore::Worker {
public:
    using Job = std::function<void(GCancellable*)>;

    explicit Worker(MainQueue& queue) : queue_(queue), cancellable_(g_cancellable_new()) {}

    Worker(const Worker&) = delete;
    Worker& operator=(const Worker&) = delete;

    ~Worker() {
        {
            const std::lock_guard lock(mutex_);
            isEnding_ = true;
            jobs_.clear();
        }
        g_cancellable_cancel(cancellable_.get());
        changed_.notify_all();
        if (thread_.joinable()) {
            thread_.join();
        }
    }

    void add(Job job) {
        const std::lock_guard lock(mutex_);
        jobs_.push_back(std::move(job));
        if (!thread_.joinable()) {
            thread_ = std::thread([this] { run(); });
        }
        changed_.notify_all();
    }

    template <typename Outcome, typename Completion>
    void answer(Outcome outcome, const Completion& completion) {
        queue_.async([alive = std::weak_ptr(alive_), outcome = std::move(outcome), completion] {
            if (!alive.expired()) {
                completion(outcome);
            }
        });
    }

private:
    void run() {
        std::unique_lock lock(mutex_);
        while (true) {
            changed_.wait(lock, [this] { return isEnding_ || !jobs_.empty(); });
            if (isEnding_) {
                return;
            }
            const auto job = std::move(jobs_.front());
            jobs_.pop_front();
            lock.unlock();
            surviveTheSessionBus(cancellable_.get());
            job(cancellable_.get());
            // Otherwise what was agreed with the key ring would be used on after the key ring started again.
            secret_service_disconnect();
            lock.lock();
        }
    }

    MainQueue& queue_;
    const Cancellable cancellable_;
    std::mutex mutex_;
    std::condition_variable changed_;
    std::deque<Job> jobs_;
    bool isEnding_ = false;
    std::thread thread_;
    std::shared_ptr<char> alive_ = std::make_shared<char>();
};

LibsecretStore::LibsecretStore(MainQueue& queue) : worker_(std::make_unique<Worker>(queue)) {}

LibsecretStore::~LibsecretStore() = default;

void LibsecretStore::lookUp(const std::string& name,
                            std::function<void(const Result<std::optional<std::string>>&)> completion) {
    worker_->add(
        [worker = worker_.get(), name, completion = std::move(completion)](GCancellable* cancellable) {
            worker->answer(lookUpNow(name, cancellable), completion);
        });
}

} // namespace tovik

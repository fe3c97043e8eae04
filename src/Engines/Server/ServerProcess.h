// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Engines/Host/SharedLog.h"
#include "Platform/Clock.h"

#include <QProcess>
#include <QTimer>

#include <sys/types.h>

#include <memory>
#include <string>
#include <vector>

namespace tovik {

/// The speech server as a program that is ours to run. It is started when it is needed first and started
/// anew when it ends by itself, after longer and longer pauses. What it has started ends with it. All end
/// with this object, and with this process however that ends. For one thread that has a Qt event loop.
class ServerProcess {
public:
    struct Pauses {
        Seconds first{1};
        Seconds longest{60};
        /// One that has run this long counts as good: the pauses begin anew.
        Seconds good{60};
        /// How long it may take to end when asked to.
        Seconds goodbye{2};
    };

    ServerProcess(std::shared_ptr<SharedLog> log, Pauses pauses);
    ~ServerProcess();
    ServerProcess(const ServerProcess&) = delete;
    ServerProcess& operator=(const ServerProcess&) = delete;

    /// Starts the program unless it runs or waits to be started anew. Another command replaces it; an empty
    /// one ends it.
    void need(const std::vector<std::string>& command);

    /// 0 when it does not run.
    [[nodiscard]] qint64 processIdentifier() const { return process_ ? process_->processId() : 0; }

private:
    void start();
    void startWatcher();
    void endWatcher();
    void ended(const std::string& how);
    void end();
    void killGroup();

    const std::shared_ptr<SharedLog> log_;
    const Pauses pauses_;
    std::vector<std::string> command_;
    std::unique_ptr<QProcess> process_;
    /// Of the server's process and those it has started; 0 when there is none.
    pid_t group_ = 0;
    /// Ends the server's processes when this one has died, which it sees at the end of its input.
    std::unique_ptr<QProcess> watcher_;
    QTimer startAgain_;
    QTimer runsWell_;
    Seconds pause_;
};

} // namespace tovik

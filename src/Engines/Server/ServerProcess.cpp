// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Engines/Server/ServerProcess.h"

#include <sys/prctl.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <utility>

namespace tovik {

namespace {

/// The server's first process hears of our end from the system. Those that it has started itself, as a script
/// does, are reached by their group. The number stays the group's as long as one of them lives.
constexpr auto kWatch = "read -r _; kill -s TERM -- \"-$0\"; sleep 2; kill -s KILL -- \"-$0\"";

std::chrono::milliseconds milliseconds(Seconds time) {
    return std::chrono::duration_cast<std::chrono::milliseconds>(time);
}

} // namespace

ServerProcess::ServerProcess(std::shared_ptr<SharedLog> log, Pauses pauses)
    : log_(std::move(log)),
      pauses_(pauses),
      pause_(pauses.first) {
    startAgain_.setSingleShot(true);
    runsWell_.setSingleShot(true);
    QObject::connect(&startAgain_, &QTimer::timeout, &startAgain_, [this] { start(); });
    QObject::connect(&runsWell_, &QTimer::timeout, &runsWell_, [this] { pause_ = pauses_.first; });
}

ServerProcess::~ServerProcess() {
    end();
}

void ServerProcess::need(const std::vector<std::string>& command) {
    if (command != command_) {
        end();
        command_ = command;
        pause_ = pauses_.first;
    }
    if (!command_.empty() && !process_ && !startAgain_.isActive()) {
        start();
    }
}

void ServerProcess::start() {
    process_ = std::make_unique<QProcess>();
    process_->setStandardInputFile(QProcess::nullDevice());
    process_->setStandardOutputFile(QProcess::nullDevice());
    process_->setStandardErrorFile(QProcess::nullDevice());
    // System calls only: this runs between fork and exec.
    process_->setChildProcessModifier([parent = ::getpid()] {
        ::setpgid(0, 0);
        ::prctl(PR_SET_PDEATHSIG, SIGTERM);
        if (::getppid() != parent) {
            ::_exit(1);
        }
    });
    QObject::connect(process_.get(), &QProcess::started, process_.get(), [this] {
        log_->logLine("[TovikVoice] The speech server " + command_.front() + " was started, process " +
                      std::to_string(process_->processId()));
    });
    QObject::connect(process_.get(), &QProcess::finished, process_.get(),
                     [this](int code, QProcess::ExitStatus status) {
                         // Its children hold the port and the memory that the next one needs. At once, since
                         // the number is the group's only as long as one of them lives.
                         killGroup();
                         ended(status == QProcess::NormalExit ? "ended with " + std::to_string(code)
                                                              : "was killed by a signal");
                     });
    QObject::connect(process_.get(), &QProcess::errorOccurred, process_.get(),
                     [this](QProcess::ProcessError error) {
                         if (error == QProcess::FailedToStart) {
                             ended("cannot be started: " + process_->errorString().toStdString());
                         }
                     });
    QStringList arguments;
    for (std::size_t i = 1; i < command_.size(); ++i) {
        arguments << QString::fromStdString(command_[i]);
    }
    runsWell_.start(milliseconds(pauses_.good));
    group_ = 0;
    process_->start(QString::fromStdString(command_.front()), arguments);
    if (process_ && process_->processId() > 0) {
        group_ = static_cast<pid_t>(process_->processId());
        startWatcher();
    }
}

void ServerProcess::startWatcher() {
    watcher_ = std::make_unique<QProcess>();
    watcher_->setStandardOutputFile(QProcess::nullDevice());
    watcher_->setStandardErrorFile(QProcess::nullDevice());
    // What ends our group must not end the one that cleans up after us.
    watcher_->setChildProcessModifier([] { ::setpgid(0, 0); });
    watcher_->start("/bin/sh", {"-c", kWatch, QString::number(group_)});
}

void ServerProcess::endWatcher() {
    if (watcher_) {
        watcher_->disconnect();
        watcher_->kill();
        watcher_->waitForFinished(-1);
        watcher_.reset();
    }
}

void ServerProcess::ended(const std::string& how) {
    runsWell_.stop();
    endWatcher();
    log_->logLine("[TovikVoice] The speech server " + command_.front() + " " + how +
                  "; it is started anew after " + std::to_string(milliseconds(pause_).count()) + " ms");
    startAgain_.start(milliseconds(pause_));
    pause_ = std::min(pause_ * 2, pauses_.longest);
    // It is the one that reports this.
    process_.release()->deleteLater();
}

void ServerProcess::killGroup() {
    if (const auto group = std::exchange(group_, 0); group > 0) {
        ::kill(-group, SIGKILL);
    }
}

void ServerProcess::end() {
    startAgain_.stop();
    runsWell_.stop();
    endWatcher();
    if (!process_) {
        return;
    }
    process_->disconnect();
    // With whatever it has started itself.
    if (group_ > 0) {
        ::kill(-group_, SIGTERM);
        if (!process_->waitForFinished(static_cast<int>(milliseconds(pauses_.goodbye).count()))) {
            ::kill(-group_, SIGKILL);
            process_->waitForFinished(-1);
        }
        killGroup();
    }
    process_.reset();
}

} // namespace tovik

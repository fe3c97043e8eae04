// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "support/KeyRing.h"

#include "support/EventLoop.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QStringList>

#include <signal.h>

#include <stdexcept>

namespace tovik::test {

namespace {

constexpr auto kConnectionName = "key ring of the test";

QStringList stringList(const std::vector<std::string>& texts) {
    QStringList list;
    for (const auto& text : texts) {
        list.append(QString::fromStdString(text));
    }
    return list;
}

void end(QProcess& process) {
    process.kill();
    process.waitForFinished();
}

} // namespace

KeyRing::KeyRing() {
    QDBusConnection::connectToBus(QString::fromStdString(bus_.address()), kConnectionName);
    start();
}

KeyRing::~KeyRing() {
    QDBusConnection::disconnectFromBus(kConnectionName);
    end(keyRing_);
}

void KeyRing::start() {
    auto environment = QProcessEnvironment::systemEnvironment();
    for (const auto* variable :
         {"HOME", "XDG_DATA_HOME", "XDG_CONFIG_HOME", "XDG_CACHE_HOME", "XDG_RUNTIME_DIR"}) {
        environment.insert(variable, QString::fromStdString(bus_.folder().path()));
    }
    environment.remove("DISPLAY");
    keyRing_.setProcessEnvironment(environment);
    keyRing_.setStandardOutputFile(QProcess::nullDevice());
    keyRing_.setStandardErrorFile(QProcess::nullDevice());
    keyRing_.start("gnome-keyring-daemon",
                   {"--foreground", "--unlock", "--components=secrets", "--control-directory",
                    QString::fromStdString(bus_.folder() / "control")});
    keyRing_.write("password of the test");
    keyRing_.closeWriteChannel();
    if (!runUntil([this] { return answers(); })) {
        throw std::runtime_error("the test's key ring did not start");
    }
}

bool KeyRing::answers() const {
    const QDBusConnection bus(kConnectionName);
    return bus.isConnected() && bus.interface()->isServiceRegistered("org.freedesktop.secrets");
}

void KeyRing::kill() {
    end(keyRing_);
    if (!runUntil([this] { return !answers(); })) {
        throw std::runtime_error("the test's key ring did not end");
    }
}

void KeyRing::freeze() {
    ::kill(static_cast<pid_t>(keyRing_.processId()), SIGSTOP);
}

void KeyRing::thaw() {
    ::kill(static_cast<pid_t>(keyRing_.processId()), SIGCONT);
}

std::string KeyRing::secretTool(const std::vector<std::string>& arguments, const std::string& input) const {
    QProcess tool;
    tool.start("secret-tool", stringList(arguments));
    tool.write(input.data(), static_cast<qint64>(input.size()));
    tool.closeWriteChannel();
    if (!tool.waitForFinished() || tool.exitCode() != 0) {
        throw std::runtime_error("secret-tool failed: " + tool.readAllStandardError().toStdString());
    }
    return tool.readAllStandardOutput().toStdString();
}

} // namespace tovik::test

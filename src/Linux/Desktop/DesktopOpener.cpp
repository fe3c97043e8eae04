// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Linux/Desktop/DesktopOpener.h"

#include <QProcess>
#include <QStandardPaths>

#include <array>

namespace tovik {
namespace {

struct Opener {
    const char* program;
    QStringList leadingArguments;
};

} // namespace

bool openOnDesktop(const std::string& addressOrPath) {
    // An opener would take a leading dash for an option.
    if (addressOrPath.empty() || addressOrPath.front() == '-') {
        return false;
    }
    const std::array openers{Opener{"xdg-open", {}}, Opener{"gio", {"open"}}};
    for (const auto& opener : openers) {
        const auto program = QStandardPaths::findExecutable(opener.program);
        if (program.isEmpty()) {
            continue;
        }
        QProcess process;
        process.setProgram(program);
        process.setArguments(opener.leadingArguments + QStringList{QString::fromStdString(addressOrPath)});
        process.setStandardOutputFile(QProcess::nullDevice());
        process.setStandardErrorFile(QProcess::nullDevice());
        if (process.startDetached()) {
            return true;
        }
    }
    return false;
}

} // namespace tovik

// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "AppDelegate.h"
#include "Linux/Desktop/ProgramEnd.h"
#include "Linux/Desktop/SingleInstance.h"
#include "Linux/LinuxPlatform.h"
#include "Linux/Storage/StandardLog.h"
#include "Linux/Storage/XdgFolders.h"
#include "Linux/X11/X11Connection.h"

#include <QApplication>
#include <QTimer>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

namespace {

/// Windows that float above all others without taking the keyboard exist under X only; on a Wayland desktop
/// X programs are shown just as well.
void chooseWindowSystem() {
    const auto* const chosen = std::getenv("QT_QPA_PLATFORM");
    // Many sessions ask this of all programs.
    const bool isWayland = chosen != nullptr && std::string_view(chosen).starts_with("wayland");
    setenv("QT_QPA_PLATFORM", "xcb", isWayland ? 1 : 0);
}

/// Not quit(), which asks every window first: ours answers a request to close by hiding, and that counts as a
/// refusal.
void endEventLoop() {
    QApplication::exit(EXIT_SUCCESS);
}

int refuse(const std::string& sentence) {
    std::fprintf(stderr, "Tovik Record cannot start: %s\n", sentence.c_str());
    return EXIT_FAILURE;
}

} // namespace

int main(int argc, char** argv) {
    using namespace tovik;

    // Whoever started us may ignore it, and that is inherited: then nobody would learn how a child ended.
    std::signal(SIGCHLD, SIG_DFL);
    if (!X11Connection::open()) {
        return refuse(X11Session::noDisplayError().description);
    }
    chooseWindowSystem();
    StandardLog log;
    log.logLine("[TovikVoice] Starting application...");
    QApplication application(argc, argv);
    QApplication::setApplicationName("tovik-record");
    QApplication::setApplicationDisplayName("Tovik Record");
    QApplication::setApplicationVersion(TOVIK_VERSION);
    QApplication::setDesktopFileName("tovik-record");

    SingleInstance instance(XdgFolders().runtime() + "/tovik-record", SingleInstance::currentDisplay());
    const auto role = instance.claim();
    if (!role) {
        return refuse(role.error().description);
    }
    if (role.value() == SingleInstance::Role::second) {
        std::printf("Tovik Record is already running; its window has come to the front.\n");
        return EXIT_SUCCESS;
    }

    LinuxPlatform desktop(log, [&instance] {
        instance.release();
        endEventLoop();
    });
    AppDelegate delegate(desktop.ports());
    log.logLine("[TovikVoice] Created AppDelegate");

    QApplication::setQuitOnLastWindowClosed(delegate.applicationShouldTerminateAfterLastWindowClosed());
    QObject::connect(&application, &QApplication::applicationStateChanged,
                     [&delegate](Qt::ApplicationState state) {
                         if (state == Qt::ApplicationActive) {
                             delegate.applicationDidBecomeActive();
                         }
                     });
    const DisplayLoss displayLoss([&delegate] { delegate.displayLost(); });
    const TerminationSignals termination([&delegate] { delegate.sessionWillEnd(); });
    // The window shows how the permissions stand, and the sound server tells within milliseconds.
    Subscription permissions;
    desktop.whenSoundIsKnown([&] {
        delegate.applicationDidFinishLaunching();
        permissions = desktop.onPermissionsChanged([&delegate] { delegate.applicationDidBecomeActive(); });
        instance.onRequest([&delegate] { delegate.applicationShouldHandleReopen(true); });
    });
    log.logLine("[TovikVoice] Set delegate, calling app.run()");
    const int exitCode = QApplication::exec();
    log.logLine("[TovikVoice] app.run() returned!");
    return exitCode;
}

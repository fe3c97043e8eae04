// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Linux/Storage/LocalFiles.h"
#include "Platform/MainQueue.h"
#include "Platform/Posix.h"
#include "Platform/Result.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>

class QLocalServer;
class QLocalSocket;
class QString;

namespace tovik {

/// Sees to it that the program runs once for each user and display. The first copy holds a lock, which ends
/// with its process whatever kills it, and listens on a socket; a later copy asks it there to come forward.
/// Nobody who connects and says nothing is waited for.
class SingleInstance {
public:
    enum class Role {
        /// Nobody else runs; this copy is the one from now on.
        first,
        /// Another copy runs and has come forward; this one should end.
        second,
    };

    /// The folder is the user's own, made if need be; the display is whatever names the desktop session. A
    /// copy that does not answer is waited for so long.
    SingleInstance(std::string folder, const std::string& display, Seconds patience = Seconds(5));
    SingleInstance(const SingleInstance&) = delete;
    SingleInstance& operator=(const SingleInstance&) = delete;
    ~SingleInstance();

    /// Before anything that a second copy must not do. Fails with a sentence for the user when another copy
    /// runs and does not answer, or when the folder cannot be used.
    Result<Role> claim();

    /// For the first copy, once the event loop can run: the handler brings the main window forward, on the
    /// main thread. Requests that came before are answered then.
    void onRequest(std::function<void()> handler);

    /// Lets another copy be the first from now on. A program that is about to end calls this, so that the
    /// copy that it has started in its place takes over. Harmless twice.
    void release();

    /// The X or Wayland display of this process; empty without one.
    [[nodiscard]] static std::string currentDisplay();

private:
    enum class Answer { cameForward, nobodyThere, silence };

    [[nodiscard]] Result<void> prepareFolder();
    [[nodiscard]] Result<void> listen();
    [[nodiscard]] Answer askFirst() const;
    [[nodiscard]] QString socketPath() const;
    static void hearOut(QLocalSocket& caller, const std::function<void()>& handler);

    const std::string folder_;
    const std::string name_;
    const Seconds patience_;
    UnixFd folderFd_;
    std::optional<FileLock> lock_;
    std::unique_ptr<QLocalServer> server_;
};

} // namespace tovik

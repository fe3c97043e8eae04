// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Linux/Desktop/QtUserDefaultsChanges.h"

#include "Linux/Storage/LocalFiles.h"

#include <QSocketNotifier>

#include <sys/inotify.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <utility>

namespace tovik {

namespace {

/// Not every single write: what reads then would find half a file.
constexpr std::uint32_t kContent = IN_CLOSE_WRITE | IN_MOVED_TO | IN_MOVED_FROM | IN_DELETE;
/// A new link; an ordinary file that is created is still empty.
constexpr std::uint32_t kCreation = IN_CREATE;
constexpr std::uint32_t kLostFolder = IN_DELETE_SELF | IN_MOVE_SELF;

} // namespace

QtUserDefaultsChanges::QtUserDefaultsChanges(std::string path, SystemLog& log) : path_(std::move(path)) {
    if (const auto started = start(); !started) {
        log.printLine("[TovikVoice] " + started.error().description +
                      "; settings that another program changes are not shown at once");
        return;
    }
    notifier_ = std::make_unique<QSocketNotifier>(inotify_.get(), QSocketNotifier::Read);
    QObject::connect(notifier_.get(), &QSocketNotifier::activated, notifier_.get(),
                     [this] { takeNotices(); });
}

QtUserDefaultsChanges::~QtUserDefaultsChanges() = default;

Result<void> QtUserDefaultsChanges::start() {
    if (auto created = createPrivateFolder(std::filesystem::path(path_).parent_path().string()); !created) {
        return created;
    }
    inotify_ = UnixFd(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC));
    return inotify_ ? watchPlaces() : posixError(errno, "Cannot watch " + path_);
}

Result<void> QtUserDefaultsChanges::watchPlaces() {
    places_.clear();
    if (auto watched = watchFile(path_); !watched) {
        return watched;
    }
    const auto target = followLinks(path_);
    // A link that leads in circles or into a missing folder is watched itself: it may be mended.
    if (target && target.value() != path_) {
        (void)watchFile(target.value());
    }
    return {};
}

Result<void> QtUserDefaultsChanges::watchFile(const std::string& file) {
    const std::filesystem::path place(file);
    const auto folder = place.parent_path().string();
    const int watch =
        ::inotify_add_watch(inotify_.get(), folder.c_str(), kContent | kCreation | kLostFolder | IN_ONLYDIR);
    if (watch < 0) {
        return posixError(errno, "Cannot watch " + folder);
    }
    places_.push_back({watch, place.filename().string()});
    return {};
}

void QtUserDefaultsChanges::takeNotices() {
    alignas(inotify_event) std::array<char, 16384> buffer{};
    bool isChanged = false;
    bool havePlacesMoved = false;
    ssize_t length = 0;
    while ((length = ::read(inotify_.get(), buffer.data(), buffer.size())) > 0) {
        for (std::ptrdiff_t at = 0; at < length;) {
            inotify_event event{};
            std::memcpy(&event, buffer.data() + at, sizeof event);
            const std::string name = event.len > 0 ? buffer.data() + at + sizeof event : "";
            at += static_cast<std::ptrdiff_t>(sizeof event + event.len);
            const bool isOurs =
                std::any_of(places_.begin(), places_.end(), [&, watch = event.wd](const auto& place) {
                    return place.watch == watch && place.name == name;
                });
            const bool isContent = isOurs && (event.mask & kContent) != 0;
            const bool isCreation = isOurs && (event.mask & kCreation) != 0;
            const bool isMissed = (event.mask & (IN_Q_OVERFLOW | kLostFolder)) != 0;
            havePlacesMoved = havePlacesMoved || isContent || isCreation || isMissed;
            isChanged =
                isChanged || isContent || isMissed || (isCreation && std::filesystem::is_symlink(path_));
        }
    }
    if (havePlacesMoved) {
        // A folder that is gone for good cannot be watched; the one that takes its place is, from the next
        // change of what is still watched on.
        (void)watchPlaces();
    }
    if (isChanged) {
        changed_.tell();
    }
}

} // namespace tovik

// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Linux/Desktop/QtUserDefaultsChanges.h"

#include "Linux/Storage/LocalFiles.h"
#include "Platform/Posix.h"

#include <QSocketNotifier>

#include <sys/inotify.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <utility>
#include <vector>

namespace tovik {

namespace {

/// Not every single write: what reads then would find half a file.
constexpr std::uint32_t kContent = IN_CLOSE_WRITE | IN_MOVED_TO | IN_MOVED_FROM | IN_DELETE;
/// A link that is made anew; an ordinary file that is created is still empty.
constexpr std::uint32_t kFolder = IN_CREATE | IN_DELETE_SELF | IN_MOVE_SELF;

} // namespace

/// Notices when a file has got new content, by whatever way: written in place, replaced, removed, or reached
/// through a link that leads elsewhere. Works on the folders, which stay when files are replaced.
class FileWatch {
public:
    /// Creates the file's folder when it is missing.
    [[nodiscard]] static Result<FileWatch> start(const std::string& path);

    /// Readable when there is something to take.
    [[nodiscard]] int fd() const { return inotify_.get(); }

    /// Takes what has been noticed since the last time. True: the file may have changed. Does not wait.
    [[nodiscard]] bool takeChanges();

private:
    struct Place {
        int watch;
        std::string folder;
        std::string name;
    };

    FileWatch(UnixFd inotify, std::string path) : inotify_(std::move(inotify)), path_(std::move(path)) {}
    [[nodiscard]] Result<void> watchPlaces();
    [[nodiscard]] Result<void> watchFile(const std::string& file);

    UnixFd inotify_;
    std::string path_;
    /// The path itself and, when that is a link, where it leads.
    std::vector<Place> places_;
};

Result<FileWatch> FileWatch::start(const std::string& path) {
    if (auto created = createPrivateFolder(std::filesystem::path(path).parent_path().string()); !created) {
        return created.error();
    }
    FileWatch watch(UnixFd(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC)), path);
    if (!watch.inotify_) {
        return posixError(errno, "Cannot watch " + path);
    }
    if (auto watched = watch.watchPlaces(); !watched) {
        return watched.error();
    }
    return watch;
}

Result<void> FileWatch::watchPlaces() {
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

Result<void> FileWatch::watchFile(const std::string& file) {
    const std::filesystem::path place(file);
    const auto folder = place.parent_path().string();
    const int watch = ::inotify_add_watch(inotify_.get(), folder.c_str(), kContent | kFolder | IN_ONLYDIR);
    if (watch < 0) {
        return posixError(errno, "Cannot watch " + folder);
    }
    places_.push_back({watch, folder, place.filename().string()});
    return {};
}

bool FileWatch::takeChanges() {
    alignas(inotify_event) std::array<char, 16384> buffer{};
    bool changed = false;
    bool placesMoved = false;
    while (true) {
        const auto length = ::read(inotify_.get(), buffer.data(), buffer.size());
        if (length <= 0) {
            break;
        }
        for (std::ptrdiff_t at = 0; at < length;) {
            inotify_event event{};
            std::memcpy(&event, buffer.data() + at, sizeof event);
            const char* name = event.len > 0 ? buffer.data() + at + sizeof event : "";
            at += static_cast<std::ptrdiff_t>(sizeof event + event.len);
            const bool isOurs = std::any_of(places_.begin(), places_.end(), [&](const Place& place) {
                return place.watch == event.wd && place.name == name;
            });
            if ((event.mask & (IN_Q_OVERFLOW | IN_DELETE_SELF | IN_MOVE_SELF)) != 0) {
                changed = placesMoved = true;
            } else if (isOurs && (event.mask & IN_CREATE) != 0) {
                placesMoved = true;
                changed = changed || std::filesystem::is_symlink(path_);
            } else if (isOurs && (event.mask & kContent) != 0) {
                changed = placesMoved = true;
            }
        }
    }
    if (placesMoved) {
        // A folder that is gone for good cannot be watched; the one that takes its place is, from the next
        // change of what is still watched on.
        (void)watchPlaces();
    }
    return changed;
}

QtUserDefaultsChanges::QtUserDefaultsChanges(const std::string& path, SystemLog& log) {
    auto watch = FileWatch::start(path);
    if (!watch) {
        log.printLine("[TovikVoice] " + watch.error().description +
                      "; settings that another program changes are not shown at once");
        return;
    }
    watch_ = std::make_unique<FileWatch>(std::move(watch.value()));
    notifier_ = std::make_unique<QSocketNotifier>(watch_->fd(), QSocketNotifier::Read);
    QObject::connect(notifier_.get(), &QSocketNotifier::activated, notifier_.get(), [this] {
        if (watch_->takeChanges()) {
            changed_.tell();
        }
    });
}

QtUserDefaultsChanges::~QtUserDefaultsChanges() = default;

} // namespace tovik

// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Linux/Storage/JsonUserDefaults.h"

#include "Linux/Storage/FileLock.h"
#include "Linux/Storage/FileReplacement.h"

#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <utility>

namespace tovik {

namespace {

/// Another process holds the lock for one write; this much longer, and it hangs.
constexpr Seconds kLockPatience(2);

/// Others may not look into the program's own folder. One that the user has put there as a link is theirs to
/// guard, and so is any other folder that settings were told to lie in.
void closeToOthers(const std::string& folder) {
    struct stat status {};
    if (std::filesystem::path(folder).filename() == "tovik-record" && ::lstat(folder.c_str(), &status) == 0 &&
        S_ISDIR(status.st_mode) && status.st_uid == ::geteuid() && (status.st_mode & 077) != 0) {
        ::chmod(folder.c_str(), 0700);
    }
}

} // namespace

JsonUserDefaults::JsonUserDefaults(std::string path, SystemLog& log, std::function<void()> onUnsaved)
    : path_(std::move(path)),
      log_(log),
      onUnsaved_(std::move(onUnsaved)),
      view_(path_) {}

JsonUserDefaults::~JsonUserDefaults() {
    // There is no next time.
    if (!saveAgain(kLockPatience)) {
        complain("The settings and transcripts that could not be saved in " + path_ + " are lost");
    }
}

std::optional<PropertyValue> JsonUserDefaults::value(std::string_view key) const {
    const auto found = newest()->find(key);
    return found ? std::optional(found->value()) : std::nullopt;
}

void JsonUserDefaults::set(std::string_view key, PropertyValue value) {
    change(key, JsonValue::checked(std::move(value)));
}

void JsonUserDefaults::remove(std::string_view key) {
    if (newest()->find(key)) {
        change(key, nullptr);
    }
}

std::shared_ptr<const JsonDocument> JsonUserDefaults::newest() const {
    std::shared_ptr<const JsonDocument> document;
    std::vector<std::string> complaints;
    {
        const std::lock_guard lock(viewing_);
        view_.refresh();
        document = view_.document();
        complaints = view_.takeComplaints();
    }
    for (const auto& complaint : complaints) {
        complain(complaint);
    }
    return document;
}

bool JsonUserDefaults::isSaved(std::string_view key) const {
    (void)newest();
    const std::lock_guard lock(viewing_);
    return !view_.hasUnsaved(key);
}

bool JsonUserDefaults::hasUnsaved() const {
    const std::lock_guard lock(viewing_);
    return view_.hasUnsaved();
}

void JsonUserDefaults::change(std::string_view key, const JsonDocument::Value& value) {
    const auto saved = [&] {
        const std::lock_guard lock(writing_);
        return save([&] { view_.put(key, value); }, kLockPatience);
    }();
    if (saved) {
        return;
    }
    complain("Failed to save the setting " + std::string(key) + ": " + saved.error().description +
             ". It holds until the program ends and is saved as soon as that works.");
    if (onUnsaved_) {
        onUnsaved_();
    }
}

bool JsonUserDefaults::saveAgain(Seconds patience) {
    const std::lock_guard lock(writing_);
    (void)newest();
    if (!hasUnsaved()) {
        return true;
    }
    if (!save([] {}, patience)) {
        return false;
    }
    complain("The settings that could not be saved are saved now");
    return true;
}

Result<void> JsonUserDefaults::save(const std::function<void()>& change, Seconds patience) {
    auto ready = prepareFolder();
    // Held until this function returns, so that no other process writes between our reading and writing.
    const auto lock = ready ? FileLock::acquire(path_ + ".lock", patience) : Result<FileLock>(ready.error());
    (void)newest();
    std::shared_ptr<const JsonDocument> document;
    {
        const std::lock_guard viewing(viewing_);
        change();
        document = view_.document();
        ready = lock ? view_.mayBeOverwritten() : Result<void>(lock.error());
    }
    if (!ready) {
        return ready;
    }
    const auto target = followLinks(path_);
    if (!target) {
        return target.error();
    }
    const auto text = document->serialize();
    if (auto written = replaceFile(target.value(), target.value() + ".new", text); !written) {
        return written;
    }
    const std::lock_guard viewing(viewing_);
    view_.wasSaved(std::move(document), text);
    return {};
}

Result<void> JsonUserDefaults::prepareFolder() const {
    const auto folder = std::filesystem::path(path_).parent_path().string();
    auto created = createPrivateFolder(folder);
    if (created) {
        closeToOthers(folder);
    }
    return created;
}

void JsonUserDefaults::complain(const std::string& complaint) const {
    log_.printLine("[TovikVoice] " + complaint);
}

} // namespace tovik

// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Linux/Storage/JsonUserDefaults.h"

#include "Linux/Storage/LocalFiles.h"

#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <system_error>
#include <utility>
#include <vector>

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

/// Within one second.
constexpr int kMostCopies = 100;
/// The first is what the user had; of what a broken program writes over and over, the last few are enough.
constexpr std::size_t kKeptCopies = 5;

std::string timeInName(std::chrono::system_clock::time_point time) {
    const auto seconds = std::chrono::system_clock::to_time_t(time);
    tm utc{};
    ::gmtime_r(&seconds, &utc);
    std::array<char, 64> text{};
    const auto length = std::strftime(text.data(), text.size(), "%Y%m%dT%H%M%SZ", &utc);
    return {text.data(), length};
}

bool holds(const std::string& path, std::string_view content) {
    std::ifstream file(path, std::ios::binary);
    return file && std::string(std::istreambuf_iterator<char>(file), {}) == content;
}

/// Drops copies of unreadable content, whose paths begin like this, save for the first and the last few.
void thinOutCopies(const std::string& beginning) {
    std::vector<std::pair<std::filesystem::file_time_type, std::filesystem::path>> copies;
    std::error_code failure;
    for (std::filesystem::directory_iterator at(std::filesystem::path(beginning).parent_path(), failure), end;
         !failure && at != end; at.increment(failure)) {
        std::error_code gone;
        const auto time = at->last_write_time(gone);
        if (!gone && at->path().native().starts_with(beginning)) {
            copies.emplace_back(time, at->path());
        }
    }
    std::sort(copies.begin(), copies.end());
    for (std::size_t copy = 1; copy + kKeptCopies - 1 < copies.size(); ++copy) {
        std::filesystem::remove(copies[copy].second, failure);
    }
}

bool isSame(const JsonDocument::Value& left, const JsonDocument::Value& right) {
    if (!left || !right) {
        return left == right;
    }
    return left == right || left->value() == right->value();
}

} // namespace

/// What this process sees of the settings: what the file holds, with the changes on it that could not be
/// saved yet. A key that somebody else has changed in the file since is theirs. Not for several threads at
/// once.
class SettingsView {
public:
    SettingsView(std::string path, SystemLog& log) : path_(path), log_(log), file_(std::move(path)) {}

    /// Takes in what has changed on the disk. Unreadable content is kept beside the file. What the user
    /// should know of it is logged, once.
    void refresh();

    /// The change holds from now on. Null removes the key.
    void put(std::string_view key, JsonDocument::Value value);

    /// Whether changes are still to be written: any, or those of a key.
    [[nodiscard]] bool hasUnsaved() const { return !unsaved_.empty(); }
    [[nodiscard]] bool hasUnsaved(std::string_view key) const { return unsaved_.contains(key); }

    /// The document with all changes on it has been written, as this text.
    void wasSaved(std::shared_ptr<const JsonDocument> document, std::string_view text);

    /// Never null.
    [[nodiscard]] const std::shared_ptr<const JsonDocument>& document() const { return visible_; }

    /// Fails as long as writing the file could lose what it holds.
    [[nodiscard]] Result<void> mayBeOverwritten();

private:
    struct Unsaved {
        JsonDocument::Value value;
        /// What the file held when the change was made.
        JsonDocument::Value replaced;
    };

    void dropOvertaken();
    void layUnsavedOverFile();
    void keepUnreadableBytes();
    void complain(const std::string& complaint);

    const std::string path_;
    SystemLog& log_;
    JsonFile file_;
    std::map<std::string, Unsaved, std::less<>> unsaved_;
    std::shared_ptr<const JsonDocument> visible_ = std::make_shared<JsonDocument>();
    Result<void> keeping_;
    std::string lastComplaint_;
};

void SettingsView::refresh() {
    if (!file_.refresh()) {
        return;
    }
    keeping_ = {};
    switch (file_.state()) {
    case JsonFile::State::unreachable:
        complain(file_.error().description + ". The settings stay as they were last known.");
        break;
    case JsonFile::State::unreadable:
        keepUnreadableBytes();
        break;
    case JsonFile::State::readable:
        lastComplaint_.clear();
        [[fallthrough]];
    case JsonFile::State::absent:
        dropOvertaken();
        break;
    }
    layUnsavedOverFile();
}

void SettingsView::put(std::string_view key, JsonDocument::Value value) {
    auto replaced = file_.document()->find(key);
    unsaved_.insert_or_assign(std::string(key), Unsaved{std::move(value), std::move(replaced)});
    layUnsavedOverFile();
}

void SettingsView::wasSaved(std::shared_ptr<const JsonDocument> document, std::string_view text) {
    unsaved_.clear();
    keeping_ = {};
    file_.adopt(document, text);
    visible_ = std::move(document);
}

Result<void> SettingsView::mayBeOverwritten() {
    if (file_.state() == JsonFile::State::unreachable) {
        return file_.error();
    }
    if (!keeping_) {
        keepUnreadableBytes();
    }
    return keeping_;
}

void SettingsView::dropOvertaken() {
    std::erase_if(unsaved_, [this](const auto& item) {
        return !isSame(file_.document()->find(item.first), item.second.replaced);
    });
}

void SettingsView::layUnsavedOverFile() {
    if (unsaved_.empty()) {
        visible_ = file_.document();
        return;
    }
    auto document = std::make_shared<JsonDocument>(*file_.document());
    for (const auto& [key, change] : unsaved_) {
        document->put(key, change.value);
    }
    visible_ = std::move(document);
}

void SettingsView::keepUnreadableBytes() {
    const auto& bytes = file_.unreadableBytes();
    const auto beginning = path_ + ".unreadable-";
    const auto name = beginning + timeInName(file_.unreadableSince());
    for (int copy = 1; copy <= kMostCopies; ++copy) {
        const auto path = copy == 1 ? name : name + "-" + std::to_string(copy);
        const auto kept = createFile(path, bytes);
        if (kept || holds(path, bytes)) {
            keeping_ = {};
            if (kept) {
                thinOutCopies(beginning);
            }
            complain("The settings in " + path_ +
                     " cannot be understood and count as empty. What the file held is kept as " + path + ".");
            return;
        }
        keeping_ = kept.error();
        if (keeping_.error().code != EEXIST) {
            break;
        }
    }
    complain("The settings in " + path_ + " cannot be understood and count as empty. " +
             keeping_.error().description + ", so nothing is saved until that works.");
}

void SettingsView::complain(const std::string& complaint) {
    if (std::exchange(lastComplaint_, complaint) != complaint) {
        log_.printLine("[TovikVoice] " + complaint);
    }
}

JsonUserDefaults::JsonUserDefaults(std::string path, SystemLog& log, std::function<void()> onUnsaved)
    : path_(std::move(path)),
      log_(log),
      onUnsaved_(std::move(onUnsaved)),
      view_(std::make_unique<SettingsView>(path_, log_)) {}

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
    const std::lock_guard lock(viewing_);
    view_->refresh();
    return view_->document();
}

bool JsonUserDefaults::isSaved(std::string_view key) const {
    const std::lock_guard lock(viewing_);
    view_->refresh();
    return !view_->hasUnsaved(key);
}

bool JsonUserDefaults::hasUnsaved() const {
    const std::lock_guard lock(viewing_);
    view_->refresh();
    return view_->hasUnsaved();
}

void JsonUserDefaults::change(std::string_view key, const JsonDocument::Value& value) {
    const auto saved = [&] {
        const std::lock_guard lock(writing_);
        return save([&] { view_->put(key, value); }, kLockPatience);
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
    std::shared_ptr<const JsonDocument> document;
    {
        const std::lock_guard viewing(viewing_);
        view_->refresh();
        change();
        document = view_->document();
        ready = lock ? view_->mayBeOverwritten() : Result<void>(lock.error());
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
    view_->wasSaved(std::move(document), text);
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

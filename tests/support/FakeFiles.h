// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/Files.h"

#include <algorithm>
#include <cerrno>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tovik::test {

/// A file system in memory. Folders exist as soon as a file lies in them or createFolder() made them.
class FakeFiles : public Files {
public:
    Result<void> createFolder(const std::string& path) override {
        record("createFolder", path);
        if (failure_) {
            return *failure_;
        }
        for (auto folder = path; !folder.empty() && folder != "/"; folder = parentOf(folder)) {
            if (contents_.contains(folder)) {
                return posixError(ENOTDIR, path);
            }
        }
        addFolder(path);
        return {};
    }

    Result<void> writeAtomically(const std::string& path, std::string_view content) override {
        record("writeAtomically", path);
        if (failure_) {
            return *failure_;
        }
        if (isFolder(path)) {
            return posixError(EISDIR, path);
        }
        if (!isFolder(parentOf(path))) {
            return posixError(ENOENT, path);
        }
        contents_.insert_or_assign(path, std::string(content));
        return {};
    }

    Result<void> append(const std::string& path, std::string_view content) override {
        record("append", path);
        if (failure_ || appendFailure_) {
            return failure_ ? *failure_ : *appendFailure_;
        }
        const auto found = contents_.find(path);
        if (found == contents_.end()) {
            return posixError(isFolder(path) ? EISDIR : ENOENT, path);
        }
        found->second += content;
        return {};
    }

    Result<void> remove(const std::string& path) override {
        record("remove", path);
        if (failure_) {
            return *failure_;
        }
        dates_.erase(path);
        if (contents_.erase(path) == 0) {
            return posixError(isFolder(path) ? EISDIR : ENOENT, path);
        }
        return {};
    }

    [[nodiscard]] bool exists(const std::string& path) const override {
        return contents_.contains(path) || isFolder(path);
    }

    [[nodiscard]] Result<std::vector<FolderEntry>> contentsOfFolder(const std::string& path) const override {
        if (!isFolder(path) || unreadableFolders_.contains(path)) {
            return posixError(isFolder(path) ? EACCES : ENOENT, path);
        }
        std::vector<FolderEntry> entries;
        for (const auto& [name, unused] : contents_) {
            addEntry(entries, path, name);
        }
        for (const auto& name : folders_) {
            addEntry(entries, path, name);
        }
        return entries;
    }

    /// From now on every change fails with this error; nullopt ends the failing.
    void fail(std::optional<Error> error) { failure_ = std::move(error); }
    /// The same for append() alone.
    void failToAppend(std::optional<Error> error) { appendFailure_ = std::move(error); }
    /// The folder is there, but listing it is refused.
    void makeUnreadable(const std::string& folder) {
        addFolder(folder);
        unreadableFolders_.insert(folder);
    }

    /// Puts a file there without a recorded call, with the folders above it.
    void addFile(const std::string& path, std::string content = {},
                 std::optional<Date> contentModificationDate = std::nullopt) {
        addFolder(parentOf(path));
        contents_.insert_or_assign(path, std::move(content));
        setDate(path, contentModificationDate);
    }
    /// Puts a folder there without a recorded call, with the folders above it.
    void addFolder(const std::string& path, std::optional<Date> contentModificationDate = std::nullopt) {
        for (auto folder = path; !folder.empty() && folder != "/"; folder = parentOf(folder)) {
            folders_.insert(folder);
        }
        setDate(path, contentModificationDate);
    }

    [[nodiscard]] std::optional<std::string> contentOf(const std::string& path) const {
        const auto found = contents_.find(path);
        return found == contents_.end() ? std::nullopt : std::optional(found->second);
    }
    /// Every change asked for, in order: "operation path".
    [[nodiscard]] const std::vector<std::string>& calls() const { return calls_; }

private:
    static std::string parentOf(const std::string& path) {
        const auto slash = path.rfind('/');
        return slash == std::string::npos || slash == 0 ? "/" : path.substr(0, slash);
    }
    static Error posixError(int code, const std::string& path) {
        return {"POSIX", code, "No access to " + path + " (error " + std::to_string(code) + ")"};
    }
    [[nodiscard]] bool isFolder(const std::string& path) const {
        return path == "/" || folders_.contains(path);
    }
    void record(const char* operation, const std::string& path) {
        calls_.push_back(std::string(operation) + " " + path);
    }
    void setDate(const std::string& path, std::optional<Date> date) {
        dates_.erase(path);
        if (date) {
            dates_.emplace(path, *date);
        }
    }
    void addEntry(std::vector<FolderEntry>& entries, const std::string& folder,
                  const std::string& path) const {
        const auto name = path.substr(path.rfind('/') + 1);
        if (path == folder || parentOf(path) != folder || name.starts_with('.')) {
            return;
        }
        const auto date = dates_.find(path);
        entries.push_back({path, date == dates_.end() ? std::nullopt : std::optional(date->second)});
    }

    std::map<std::string, std::string> contents_;
    std::set<std::string> folders_;
    std::set<std::string> unreadableFolders_;
    std::map<std::string, Date> dates_;
    std::vector<std::string> calls_;
    std::optional<Error> failure_;
    std::optional<Error> appendFailure_;
};

} // namespace tovik::test

// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Linux/Storage/SettingsView.h"

#include "Linux/Storage/FileReplacement.h"

#include <time.h>

#include <array>
#include <cerrno>
#include <fstream>
#include <iterator>
#include <utility>

namespace tovik {

namespace {

constexpr int kMostCopies = 100;

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

bool isSame(const JsonDocument::Value& left, const JsonDocument::Value& right) {
    if (!left || !right) {
        return left == right;
    }
    return left == right || left->value() == right->value();
}

} // namespace

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

std::vector<std::string> SettingsView::takeComplaints() {
    return std::exchange(complaints_, {});
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
    const auto name = path_ + ".unreadable-" + timeInName(file_.unreadableSince());
    for (int copy = 1; copy <= kMostCopies; ++copy) {
        const auto path = copy == 1 ? name : name + "-" + std::to_string(copy);
        const auto kept = createFile(path, bytes);
        if (kept || holds(path, bytes)) {
            keeping_ = {};
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

void SettingsView::complain(std::string complaint) {
    if (complaint != lastComplaint_) {
        lastComplaint_ = complaint;
        complaints_.push_back(std::move(complaint));
    }
}

} // namespace tovik

// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Speech/History/TranscriptHistoryStore.h"

#include "Speech/Text/Unicode.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <utility>

namespace tovik {

namespace {

constexpr auto kTextKey = "text";
constexpr auto kCreatedAtKey = "createdAt";
/// How many characters of a transcript a title has.
constexpr std::size_t kTitleLength = 42;

double secondsSince1970(Date date) {
    return Seconds(date.time_since_epoch()).count();
}

Date dateFromSecondsSince1970(double seconds) {
    // A stored number may lie beyond what a date can hold.
    constexpr auto kMost = 9.2e9;
    const auto bounded = std::isnan(seconds) ? 0.0 : std::clamp(seconds, -kMost, kMost);
    return Date(std::chrono::duration_cast<Date::duration>(Seconds(bounded)));
}

std::optional<TranscriptHistoryEntry> entryFrom(const PropertyValue& element) {
    const auto text = element.find(kTextKey);
    const auto createdAt = element.find(kCreatedAtKey);
    if (text == element.end() || !text->is_string() || createdAt == element.end() ||
        !createdAt->is_number()) {
        return std::nullopt;
    }
    return TranscriptHistoryEntry{text->get<std::string>(),
                                  dateFromSecondsSince1970(createdAt->get<double>())};
}

void trimToMost(std::vector<TranscriptHistoryEntry>& entries) {
    if (entries.size() > TranscriptHistoryStore::maxEntries) {
        entries.resize(TranscriptHistoryStore::maxEntries);
    }
}

} // namespace

std::string transcriptTitle(std::string_view text) {
    std::string line(text);
    std::replace(line.begin(), line.end(), '\n', ' ');
    const auto whole = trimmed(std::string_view(line));
    auto title = firstCharacters(whole, kTitleLength);
    if (title.size() < whole.size()) {
        title += "...";
    }
    return title;
}

TranscriptHistoryStore::TranscriptHistoryStore(UserDefaults& defaults, const Clock& clock)
    : defaults_(defaults),
      clock_(clock) {
    load();
}

void TranscriptHistoryStore::add(std::string_view text) {
    const auto kept = trimmed(text);
    if (kept.empty()) {
        return;
    }
    // Whoever else writes to the same list must find his entries there afterwards.
    (void)loadIfChanged();
    // What is stored must be well-formed, whoever handed it in. An entry equals itself when it is loaded
    // again.
    const auto createdAt = dateFromSecondsSince1970(secondsSince1970(clock_.now()));
    const TranscriptHistoryEntry entry{toUtf8(toUtf16(kept)), createdAt};
    entries_.insert(entries_.begin(), entry);
    unsaved_.insert(unsaved_.begin(), entry);
    trimToMost(entries_);
    trimToMost(unsaved_);
    save();
}

bool TranscriptHistoryStore::remove(std::size_t index) {
    if (index >= entries_.size()) {
        return false;
    }
    const auto entry = entries_.begin() + static_cast<std::ptrdiff_t>(index);
    std::erase(unsaved_, *entry);
    entries_.erase(entry);
    return true;
}

void TranscriptHistoryStore::load() {
    entries_.clear();
    const auto stored = defaults_.value(storageKey);
    known_ = stored;
    const auto isMap = [](const PropertyValue& element) { return element.is_object(); };
    if (!stored || !stored->is_array() || !std::all_of(stored->begin(), stored->end(), isMap)) {
        storedHoldsMore_ = stored.has_value();
        return;
    }
    for (const auto& element : *stored) {
        if (auto entry = entryFrom(element)) {
            entries_.push_back(std::move(*entry));
        }
    }
    storedHoldsMore_ = entries_.size() < stored->size();
}

void TranscriptHistoryStore::save() {
    if (std::exchange(storedHoldsMore_, false)) {
        defaults_.keepAside(storageKey);
    }
    auto list = PropertyValue::array();
    for (const auto& entry : entries_) {
        list.push_back({{kTextKey, entry.text}, {kCreatedAtKey, secondsSince1970(entry.createdAt)}});
    }
    defaults_.set(storageKey, std::move(list));
    // A write that failed has left something else there: that is no change by others.
    known_ = defaults_.value(storageKey);
    forgetSaved();
}

bool TranscriptHistoryStore::loadIfChanged() {
    if (defaults_.value(storageKey) == known_) {
        forgetSaved();
        return false;
    }
    const auto unsaved = unsaved_;
    load();
    if (!unsaved.empty()) {
        putBack(unsaved);
        save();
    }
    return true;
}

/// A write that failed may have been made up for since.
void TranscriptHistoryStore::forgetSaved() {
    if (defaults_.isSaved(storageKey)) {
        unsaved_.clear();
    }
}

void TranscriptHistoryStore::putBack(const std::vector<TranscriptHistoryEntry>& unsaved) {
    for (const auto& entry : unsaved) {
        if (std::find(entries_.begin(), entries_.end(), entry) != entries_.end()) {
            continue;
        }
        const auto older = std::find_if(entries_.begin(), entries_.end(),
                                        [&](const auto& other) { return other.createdAt < entry.createdAt; });
        entries_.insert(older, entry);
    }
    trimToMost(entries_);
    unsaved_ = unsaved;
}

} // namespace tovik

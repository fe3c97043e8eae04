// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Speech/TranscriptHistoryStore.h"

#include "Speech/CharacterClasses.h"
#include "Speech/Utf16.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <utility>

namespace tovik {

namespace {

constexpr auto kTextKey = "text";
constexpr auto kCreatedAtKey = "createdAt";

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

} // namespace

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
    // What is stored must be well-formed, whoever handed it in. An entry equals itself when it is loaded
    // again.
    const auto createdAt = dateFromSecondsSince1970(secondsSince1970(clock_.now()));
    entries_.insert(entries_.begin(), {toUtf8(toUtf16(kept)), createdAt});
    if (entries_.size() > maxEntries) {
        entries_.resize(maxEntries);
    }
    save();
}

bool TranscriptHistoryStore::remove(std::size_t index) {
    if (index >= entries_.size()) {
        return false;
    }
    entries_.erase(entries_.begin() + static_cast<std::ptrdiff_t>(index));
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
}

bool TranscriptHistoryStore::loadIfChanged() {
    if (defaults_.value(storageKey) == known_) {
        return false;
    }
    load();
    return true;
}

} // namespace tovik

// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/MainQueue.h"
#include "Platform/UserDefaults.h"

#include <cstddef>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tovik {

/// A delivered transcript. It has no identity of its own: its place in the history is its address.
struct TranscriptHistoryEntry {
    /// Trimmed and not empty when it was added by this program.
    std::string text;
    Date createdAt;

    bool operator==(const TranscriptHistoryEntry&) const = default;
};

/// A transcript in one short line, for a menu: line feeds become spaces, the ends are trimmed, and a text of
/// 43 characters or more shows its first 42 and "...".
[[nodiscard]] std::string transcriptTitle(std::string_view text);

/// The last 100 transcripts, newest first, kept in the user defaults. Main thread.
class TranscriptHistoryStore {
public:
    static constexpr std::string_view storageKey = "transcription.history";
    static constexpr std::size_t maxEntries = 100;

    /// Loads what is stored. Both outlive the store.
    TranscriptHistoryStore(UserDefaults& defaults, const Clock& clock);

    /// Index 0 is the newest. More than maxEntries only when that many were stored, until the next add().
    [[nodiscard]] const std::vector<TranscriptHistoryEntry>& entries() const { return entries_; }

    /// Puts the trimmed text first, before what others have stored by now, and saves; nothing at all when
    /// only white space is in it. An entry that cannot be saved stays in the list until it can, whatever
    /// others store meanwhile.
    void add(std::string_view text);

    /// Takes an entry out of the list without saving; false, and no change, when there is none at the index.
    bool remove(std::size_t index);

    /// Replaces the entries by what is stored. Stored elements that are no entries are skipped, and nothing
    /// is written.
    void load();

    /// As load(), when something else is stored than this store has loaded or written last, as after a change
    /// by another process; entries that could not be saved are put among the others and saved with them.
    /// Whether it was.
    bool loadIfChanged();

    /// Writes all entries. Before it overwrites stored elements that could not be loaded, they are kept aside
    /// (UserDefaults::keepAside).
    void save();

private:
    void forgetSaved();
    void putBack(const std::vector<TranscriptHistoryEntry>& unsaved);

    UserDefaults& defaults_;
    const Clock& clock_;
    std::vector<TranscriptHistoryEntry> entries_;
    /// Those of the entries that were added and never written, newest first.
    std::vector<TranscriptHistoryEntry> unsaved_;
    bool storedHoldsMore_ = false;
    /// What is stored, as far as this store knows.
    std::optional<PropertyValue> known_;
};

} // namespace tovik

// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/UserInterface.h"
#include "Platform/Workspace.h"
#include "Speech/History/TranscriptHistoryStore.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace tovik {

/// An entry of the history that a filter let through, and where it stands in the whole history.
struct FilteredHistoryEntry {
    std::size_t index = 0;
    TranscriptHistoryEntry entry;

    bool operator==(const FilteredHistoryEntry&) const = default;
};

/// Finds transcripts by a piece of their text, capitals or not. Remembers texts it has seen, since the user
/// asks anew with each key. Main thread.
class TranscriptHistoryFilter {
public:
    /// All entries when nothing but white space is in the query, else those whose text holds the trimmed
    /// query as it stands. The order stays.
    [[nodiscard]] std::vector<FilteredHistoryEntry> apply(const std::vector<TranscriptHistoryEntry>& entries,
                                                          std::string_view query);

private:
    const std::string& lowerCasedText(const std::string& text);

    std::unordered_map<std::string, std::string> lowerCasedTexts_;
};

/// What the list of past transcripts shows and does. A row is a place in the filtered list, an index one in
/// the store; both are counted from 0, newest first, and those that do not exist are ignored. Main thread.
class TranscriptHistoryBrowser {
public:
    /// All of them outlive the browser. The window's list is told to reload whenever it has to.
    TranscriptHistoryBrowser(TranscriptHistoryStore& store, Pasteboard& pasteboard, MainWindow& mainWindow);

    /// The user typed in the search field.
    void historySearchChanged(std::string_view query);
    [[nodiscard]] const std::string& historySearchQuery() const { return historySearchQuery_; }

    /// Filters the store as it stands now.
    void reload();
    /// The rows, as they stood at the last reload.
    [[nodiscard]] const std::vector<FilteredHistoryEntry>& filteredHistoryEntries() const { return rows_; }
    /// "3 of 12": the rows and all transcripts; empty without transcripts.
    [[nodiscard]] std::string countText() const;
    /// The row that shows the transcript at an index.
    [[nodiscard]] std::optional<std::size_t> rowOf(std::size_t index) const;

    /// Puts the row's text on the clipboard and says so. False: there is no such row.
    bool copyRow(std::size_t row);
    void copyHistoryEntry(std::size_t index);

    void deleteRow(std::size_t row);
    void deleteHistoryEntry(std::size_t index);

    /// Where a transcript stands now that was shown before the store changed; nothing when it has gone.
    [[nodiscard]] std::optional<std::size_t> currentIndexOf(const FilteredHistoryEntry& shown) const;

private:
    void copy(const TranscriptHistoryEntry& entry);

    TranscriptHistoryStore& store_;
    Pasteboard& pasteboard_;
    MainWindow& mainWindow_;
    TranscriptHistoryFilter filter_;
    std::string historySearchQuery_;
    std::vector<FilteredHistoryEntry> rows_;
};

} // namespace tovik

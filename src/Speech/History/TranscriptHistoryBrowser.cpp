// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Speech/History/TranscriptHistoryBrowser.h"

#include <algorithm>

namespace tovik {

TranscriptHistoryBrowser::TranscriptHistoryBrowser(TranscriptHistoryStore& store, Pasteboard& pasteboard,
                                                   MainWindow& mainWindow)
    : store_(store),
      pasteboard_(pasteboard),
      mainWindow_(mainWindow) {
    reload();
}

void TranscriptHistoryBrowser::historySearchChanged(std::string_view query) {
    historySearchQuery_ = query;
    mainWindow_.reloadHistoryTable();
}

void TranscriptHistoryBrowser::reload() {
    rows_ = filter_.apply(store_.entries(), historySearchQuery_);
}

std::string TranscriptHistoryBrowser::countText() const {
    const auto total = store_.entries().size();
    return total == 0 ? "" : std::to_string(rows_.size()) + " of " + std::to_string(total);
}

std::optional<std::size_t> TranscriptHistoryBrowser::rowOf(std::size_t index) const {
    const auto found = std::find_if(rows_.begin(), rows_.end(),
                                    [index](const FilteredHistoryEntry& row) { return row.index == index; });
    return found == rows_.end() ? std::nullopt
                                : std::optional(static_cast<std::size_t>(found - rows_.begin()));
}

bool TranscriptHistoryBrowser::copyRow(std::size_t row) {
    if (row >= rows_.size()) {
        return false;
    }
    copy(rows_[row].entry);
    return true;
}

void TranscriptHistoryBrowser::copyHistoryEntry(std::size_t index) {
    if (index < store_.entries().size()) {
        copy(store_.entries()[index]);
    }
}

void TranscriptHistoryBrowser::copy(const TranscriptHistoryEntry& entry) {
    pasteboard_.replaceContents(entry.text);
    mainWindow_.showSavedToast("Copied");
}

void TranscriptHistoryBrowser::deleteRow(std::size_t row) {
    if (row < rows_.size()) {
        deleteHistoryEntry(rows_[row].index);
    }
}

void TranscriptHistoryBrowser::deleteHistoryEntry(std::size_t index) {
    if (store_.remove(index)) {
        store_.save();
    }
    mainWindow_.reloadHistoryTable();
}

std::optional<std::size_t> TranscriptHistoryBrowser::currentIndexOf(const FilteredHistoryEntry& shown) const {
    const auto& entries = store_.entries();
    if (shown.index < entries.size() && entries[shown.index] == shown.entry) {
        return shown.index;
    }
    const auto found = std::find(entries.begin(), entries.end(), shown.entry);
    return found == entries.end() ? std::nullopt
                                  : std::optional(static_cast<std::size_t>(found - entries.begin()));
}

} // namespace tovik

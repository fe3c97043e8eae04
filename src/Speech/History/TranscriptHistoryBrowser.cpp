// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Speech/History/TranscriptHistoryBrowser.h"

#include "Speech/Text/Unicode.h"

#include <algorithm>

namespace tovik {

namespace {

/// How many texts may be remembered that have left the history.
constexpr std::size_t kMostForgotten = 100;

std::string lowerCasedUtf8(std::string_view utf8) {
    return toUtf8(lowerCased(toUtf16(utf8)));
}

} // namespace

std::vector<FilteredHistoryEntry>
TranscriptHistoryFilter::apply(const std::vector<TranscriptHistoryEntry>& entries, std::string_view query) {
    if (lowerCasedTexts_.size() > entries.size() + kMostForgotten) {
        lowerCasedTexts_.clear();
    }
    const auto wanted = lowerCasedUtf8(trimmed(query));
    std::vector<FilteredHistoryEntry> found;
    for (std::size_t index = 0; index < entries.size(); ++index) {
        const auto& entry = entries[index];
        if (wanted.empty() || lowerCasedText(entry.text).find(wanted) != std::string::npos) {
            found.push_back({index, entry});
        }
    }
    return found;
}

const std::string& TranscriptHistoryFilter::lowerCasedText(const std::string& text) {
    auto known = lowerCasedTexts_.find(text);
    if (known == lowerCasedTexts_.end()) {
        known = lowerCasedTexts_.emplace(text, lowerCasedUtf8(text)).first;
    }
    return known->second;
}

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

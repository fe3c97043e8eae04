// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Session/TranscriptHistoryMenu.h"

#include "Speech/History/TranscriptHistoryStore.h"

#include <algorithm>

namespace tovik {

namespace {

constexpr std::size_t kMostItems = 8;

} // namespace

TranscriptHistoryMenu::TranscriptHistoryMenu(const TranscriptHistoryStore& history,
                                             TranscriptDelivery& delivery)
    : history_(history),
      delivery_(delivery) {
    menu_->onWillOpen = [this] { reloadTranscriptHistoryMenu(); };
    reloadTranscriptHistoryMenu();
}

void TranscriptHistoryMenu::reloadTranscriptHistoryMenu() {
    std::vector<MenuItem> items;
    const auto& entries = history_.entries();
    const auto count = std::min(entries.size(), kMostItems);
    for (std::size_t i = 0; i < count; ++i) {
        const auto& text = entries[i].text;
        MenuItem item;
        item.title = transcriptTitle(text);
        item.representedText = text;
        item.action = [this, text] { delivery_.pasteTranscript(text); };
        items.push_back(std::move(item));
    }
    if (items.empty()) {
        MenuItem none;
        none.title = "No transcripts yet";
        none.isEnabled = false;
        items.push_back(std::move(none));
    }
    menu_->setItems(std::move(items));
}

} // namespace tovik

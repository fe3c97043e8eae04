// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/Menu.h"
#include "Session/TranscriptDelivery.h"

#include <memory>

namespace tovik {

/// The "Transcript History" submenu: the newest transcripts, made anew each time it opens. Main thread.
class TranscriptHistoryMenu {
public:
    TranscriptHistoryMenu(const TranscriptHistoryStore& history, TranscriptDelivery& delivery);

    [[nodiscard]] const std::shared_ptr<Menu>& menu() const { return menu_; }

    void reloadTranscriptHistoryMenu();

private:
    const TranscriptHistoryStore& history_;
    TranscriptDelivery& delivery_;
    std::shared_ptr<Menu> menu_ = std::make_shared<Menu>();
};

} // namespace tovik

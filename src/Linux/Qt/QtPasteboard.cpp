// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Linux/Qt/QtPasteboard.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QString>

namespace tovik {

void QtPasteboard::replaceContents(std::string_view text) {
    auto* const clipboard = QGuiApplication::clipboard();
    const auto content = QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
    clipboard->setText(content, QClipboard::Clipboard);
    if (clipboard->supportsSelection()) {
        clipboard->setText(content, QClipboard::Selection);
    }
}

} // namespace tovik

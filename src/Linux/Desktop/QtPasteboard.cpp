// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Linux/Desktop/QtPasteboard.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QString>

/// Exported by Qt, but declared only in a private header, whose package brings drivers along that nothing
/// here needs.
class QX11Info {
public:
    /// The server's present time.
    static quint32 getTimestamp();
    static void setAppTime(quint32 time);
};

namespace tovik {

namespace {

/// An X server takes a selection from its owner only at a later time than it was got. Qt goes by the time of
/// the last event in one of its windows, which may be long past when somebody else has copied since.
void bringTimeUpToDate() {
    if (qGuiApp->nativeInterface<QNativeInterface::QX11Application>()) {
        QX11Info::setAppTime(QX11Info::getTimestamp());
    }
}

} // namespace

void QtPasteboard::replaceContents(std::string_view text) {
    bringTimeUpToDate();
    auto* const clipboard = QGuiApplication::clipboard();
    const auto content = QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
    clipboard->setText(content, QClipboard::Clipboard);
    if (clipboard->supportsSelection()) {
        clipboard->setText(content, QClipboard::Selection);
    }
}

} // namespace tovik

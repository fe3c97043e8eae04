// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/History/ShortDate.h"

#include <QDateTime>
#include <QLocale>

namespace tovik {

QString shortDateAndTime(Date date) {
    using std::chrono::duration_cast;
    using std::chrono::milliseconds;
    const auto since1970 = duration_cast<milliseconds>(date.time_since_epoch());
    return QLocale().toString(QDateTime::fromMSecsSinceEpoch(since1970.count()), QLocale::ShortFormat);
}

} // namespace tovik

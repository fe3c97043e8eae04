// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/Controls/ClampedLabel.h"

#include <QPaintEvent>
#include <QPainter>
#include <QTextLayout>

#include <algorithm>

namespace tovik {

namespace {

/// More than this of a text never fits a line.
constexpr int kMostCharactersInALine = 400;

QString inOneLine(QString text) {
    for (const QChar separator : {QChar(QChar::LineSeparator), QChar(QChar::ParagraphSeparator)}) {
        text.replace(separator, QLatin1Char(' '));
    }
    return text;
}

} // namespace

ClampedLabel::ClampedLabel(int mostLines, QWidget* parent) : QLabel(parent), mostLines_(mostLines) {
    setTextFormat(Qt::PlainText);
}

QStringList ClampedLabel::shownLines(int width) const {
    const QString whole = text();
    QString begin = whole.left(kMostCharactersInALine * mostLines_);
    begin.replace(QLatin1String("\r\n"), QLatin1String("\n"));
    begin.replace(QLatin1Char('\n'), QChar(QChar::LineSeparator));
    const bool isCut = begin.size() < whole.size();

    QTextLayout layout(begin, font());
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    layout.setTextOption(option);
    QStringList lines;
    layout.beginLayout();
    while (lines.size() < mostLines_) {
        QTextLine line = layout.createLine();
        if (!line.isValid()) {
            break;
        }
        line.setLineWidth(width);
        const int end = line.textStart() + line.textLength();
        const bool goesOn = end < begin.size() || isCut;
        if (lines.size() + 1 == mostLines_ && goesOn) {
            const QString rest = inOneLine(begin.mid(line.textStart(), kMostCharactersInALine));
            // The rest may still fit the line when only what was cut away is missing.
            lines.append(fontMetrics().elidedText(rest + QChar(0x2026), Qt::ElideRight, width));
        } else {
            lines.append(inOneLine(begin.mid(line.textStart(), line.textLength())).trimmed());
        }
    }
    layout.endLayout();
    return lines;
}

int ClampedLabel::heightForWidth(int width) const {
    const auto lines = std::max<qsizetype>(1, shownLines(width).size());
    return static_cast<int>(lines) * fontMetrics().lineSpacing();
}

QSize ClampedLabel::sizeHint() const {
    return {0, mostLines_ * fontMetrics().lineSpacing()};
}

QSize ClampedLabel::minimumSizeHint() const {
    return {0, fontMetrics().lineSpacing()};
}

void ClampedLabel::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setPen(palette().color(foregroundRole()));
    const int lineHeight = fontMetrics().lineSpacing();
    int top = 0;
    for (const QString& line : shownLines(width())) {
        painter.drawText(QRect(0, top, width(), lineHeight),
                         static_cast<int>(Qt::AlignLeading | Qt::AlignVCenter | Qt::TextSingleLine), line);
        top += lineHeight;
    }
}

} // namespace tovik

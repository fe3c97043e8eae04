// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/History/SearchField.h"

#include "UserInterface/Controls/HoverFillButton.h"
#include "UserInterface/Controls/SymbolView.h"
#include "UserInterface/Controls/Theme.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPaintEvent>
#include <QPainter>

namespace tovik {

namespace {

constexpr int kSide = 8;
constexpr int kGap = 5;
constexpr int kSymbolSize = 14;
constexpr int kClearSize = 18;
constexpr double kClearSymbolSize = 10;

} // namespace

SearchField::SearchField(const QString& placeholder, const QString& help, QWidget* parent)
    : QWidget(parent),
      lineEdit_(new QLineEdit),
      clearButton_(new HoverFillButton) {
    setFixedHeight(theme::kFieldHeight);
    lineEdit_->setFrame(false);
    lineEdit_->setFont(theme::font(theme::kFieldTextSize));
    lineEdit_->setPlaceholderText(placeholder);
    lineEdit_->setAccessibleName(placeholder);
    lineEdit_->setAccessibleDescription(help);
    lineEdit_->setToolTip(help);
    QPalette palette = lineEdit_->palette();
    palette.setColor(QPalette::Base, theme::color(theme::kFieldBackground));
    palette.setColor(QPalette::Text, theme::color(theme::kRowTitle));
    palette.setColor(QPalette::PlaceholderText, theme::color(theme::kRowDetail));
    lineEdit_->setPalette(palette);
    lineEdit_->installEventFilter(this);

    auto* symbol = new SymbolView(QStringLiteral("magnifyingglass"), {kSymbolSize, kSymbolSize},
                                  theme::color(theme::kRowDetail));
    clearButton_->setSymbol(QStringLiteral("xmark"), kClearSymbolSize);
    clearButton_->setFixedSize(kClearSize, kClearSize);
    clearButton_->setContentTint(theme::color(theme::kRowDetail));
    clearButton_->describe(QStringLiteral("Clear search"), QStringLiteral("Clear search"));
    // Escape does the same from the keyboard.
    clearButton_->setFocusPolicy(Qt::NoFocus);
    clearButton_->hide();

    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(kSide, 0, kSide, 0);
    row->setSpacing(kGap);
    row->addWidget(symbol);
    row->addWidget(lineEdit_, 1);
    row->addWidget(clearButton_);

    connect(clearButton_, &QPushButton::clicked, lineEdit_, &QLineEdit::clear);
    connect(lineEdit_, &QLineEdit::textChanged, this, [this](const QString& text) {
        clearButton_->setVisible(!text.isEmpty());
        emit searchChanged(text);
    });
    connect(lineEdit_, &QLineEdit::returnPressed, this, [this] { emit searchChanged(lineEdit_->text()); });
}

bool SearchField::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::FocusIn || event->type() == QEvent::FocusOut) {
        update();
    } else if (event->type() == QEvent::KeyPress) {
        const auto* key = static_cast<QKeyEvent*>(event);
        if (key->key() == Qt::Key_Escape && !lineEdit_->text().isEmpty()) {
            lineEdit_->clear();
            return true;
        }
        if (key->key() == Qt::Key_Down) {
            emit downPressed();
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}

void SearchField::paintEvent(QPaintEvent* /*event*/) {
    const bool hasRing = lineEdit_->hasFocus();
    const double width = hasRing ? theme::kFocusRingWidth : theme::kRowBorderWidth;
    const double inset = width / 2;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(theme::color(hasRing ? theme::kAccent : theme::kFieldBorder), width));
    painter.setBrush(theme::color(theme::kFieldBackground));
    painter.drawRoundedRect(QRectF(rect()).adjusted(inset, inset, -inset, -inset),
                            theme::kFieldCornerRadius - inset, theme::kFieldCornerRadius - inset);
}

} // namespace tovik

// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/Window/ShortcutRowView.h"

#include "UserInterface/Controls/SymbolView.h"
#include "UserInterface/Controls/Theme.h"

#include <QEvent>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>

namespace tovik {

namespace {

constexpr int kRowHeight = 26;
constexpr int kBadgeSize = 22;
constexpr int kSymbolSize = 14;
constexpr double kBadgeRadius = 6;
constexpr int kBadgeToLabel = 10;
constexpr double kLabelSize = 12;
constexpr double kKeyCapTextSize = 11;
constexpr int kKeyCapHeight = 22;
constexpr int kKeyCapPadding = 9;
constexpr double kKeyCapRadius = 6;
constexpr double kKeyCapFill = 0.06;
constexpr double kKeyCapBorder = 0.16;
constexpr double kLabelAlpha = 0.82;
constexpr double kBadgeFill = 0.12;

/// The picture of a key with its name on it.
class KeyCap : public QLabel {
public:
    explicit KeyCap(const QString& text) : QLabel(text) {
        setAlignment(Qt::AlignCenter);
        setFixedHeight(kKeyCapHeight);
        setContentsMargins(kKeyCapPadding, 0, kKeyCapPadding, 0);
        setFont(theme::font(kKeyCapTextSize, FontWeight::medium));
    }

protected:
    void paintEvent(QPaintEvent* event) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        QColor ink = palette().color(QPalette::WindowText);
        ink.setAlphaF(static_cast<float>(kKeyCapBorder));
        painter.setPen(ink);
        ink.setAlphaF(static_cast<float>(kKeyCapFill));
        painter.setBrush(ink);
        painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), kKeyCapRadius, kKeyCapRadius);
        painter.end();
        QLabel::paintEvent(event);
    }
};

} // namespace

ShortcutRowView::ShortcutRowView(const QString& symbolName, const QString& label, const QString& keyCap,
                                 QWidget* parent)
    : QWidget(parent),
      symbol_(new SymbolView(symbolName, {kSymbolSize, kSymbolSize}, theme::color(theme::kAccent))),
      label_(new QLabel(label)),
      keyCap_(new KeyCap(keyCap)) {
    setFixedHeight(kRowHeight);
    symbol_->setFixedSize(kBadgeSize, kBadgeSize);
    label_->setFont(theme::font(kLabelSize, FontWeight::medium));

    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(0);
    row->addWidget(symbol_);
    row->addSpacing(kBadgeToLabel);
    row->addWidget(label_);
    row->addStretch();
    row->addWidget(keyCap_);
    applyColors();
}

void ShortcutRowView::changeEvent(QEvent* event) {
    if (event->type() == QEvent::ApplicationPaletteChange) {
        applyColors();
    }
    QWidget::changeEvent(event);
}

void ShortcutRowView::applyColors() {
    const QPalette desktop = QGuiApplication::palette();
    const Rgba background = theme::windowBackground(desktop);
    const Rgba text = theme::readableLabelColor(desktop, background, kLabelAlpha);
    const Rgba accent = theme::accentOn(background);
    symbol_->setTint(theme::color(accent));
    symbol_->setGround(theme::color(accent.withAlpha(kBadgeFill)), kBadgeRadius);
    for (QLabel* view : {label_, keyCap_}) {
        QPalette palette = desktop;
        palette.setColor(QPalette::WindowText, theme::color(text));
        view->setPalette(palette);
    }
}

} // namespace tovik

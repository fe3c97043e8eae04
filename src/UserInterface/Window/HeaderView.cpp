// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/Window/HeaderView.h"

#include "UserInterface/Controls/HoverFillButton.h"
#include "UserInterface/Window/MainWindowGeometry.h"
#include "UserInterface/Window/ShortcutRowView.h"
#include "UserInterface/Controls/SymbolImage.h"
#include "UserInterface/Controls/Theme.h"
#include "UserInterface/Window/TovikTinyWaveformView.h"

#include <QEvent>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QStyle>
#include <QVBoxLayout>

namespace tovik {

namespace {

constexpr int kTop = 12;
constexpr int kIconSize = 48;
constexpr double kTitleSize = 18;
constexpr double kSubtitleSize = 12;
constexpr double kStatusSize = 11;
constexpr double kSubtitleAlpha = 0.72;
constexpr double kStatusAlpha = 0.82;
constexpr int kWaveformWidth = 60;
constexpr int kWaveformHeight = 22;
constexpr int kShortcutsWidth = 320;
constexpr int kShortcutSpacing = 2;
constexpr int kMoreOptionsSize = 28;
constexpr double kMoreOptionsSymbol = 18;

QLabel* makeLabel(const QString& text, double size, FontWeight weight) {
    auto* label = new QLabel(text);
    label->setFont(theme::font(size, weight));
    label->setAlignment(Qt::AlignCenter);
    return label;
}

void setTextColor(QWidget& view, const Rgba& color) {
    QPalette palette = QGuiApplication::palette();
    palette.setColor(QPalette::WindowText, theme::color(color));
    view.setPalette(palette);
}

} // namespace

ApplicationIconView::ApplicationIconView(QWidget* parent) : QWidget(parent) {
    setFixedSize(kIconSize, kIconSize);
    setAccessibleName(QStringLiteral("Tovik Record app icon"));
}

void ApplicationIconView::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.drawPixmap(0, 0, symbols::applicationIconPixmap(kIconSize, devicePixelRatioF()));
}

HeaderView::HeaderView(MainQueue& queue, QWidget* parent)
    : QWidget(parent),
      moreOptions_(new HoverFillButton(this)),
      title_(makeLabel(QStringLiteral("Tovik Record"), kTitleSize, FontWeight::semibold)),
      subtitle_(makeLabel(QStringLiteral("Fast dictation with hands-free recording"), kSubtitleSize,
                          FontWeight::regular)) {
    moreOptions_->setSymbol(QStringLiteral("ellipsis.circle"), kMoreOptionsSymbol);
    moreOptions_->setFixedSize(kMoreOptionsSize, kMoreOptionsSize);
    moreOptions_->describe(QStringLiteral("More options"), QStringLiteral("More options"));

    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, kTop + 2, 0, 8);
    column->setSpacing(0);
    column->addWidget(new ApplicationIconView, 0, Qt::AlignHCenter);
    column->addSpacing(4);
    column->addWidget(title_);
    column->addWidget(subtitle_);
    column->addSpacing(4);
    column->addWidget(makeStatusLine(queue), 0, Qt::AlignHCenter);
    column->addStretch();
    column->addWidget(makeShortcutRows(), 0, Qt::AlignHCenter);
    applyColors();
}

QWidget* HeaderView::makeStatusLine(MainQueue& queue) {
    status_ = makeLabel(QStringLiteral("Ready to dictate"), kStatusSize, FontWeight::medium);
    waveform_ = new TovikTinyWaveformView(queue);
    waveform_->setFixedSize(kWaveformWidth, kWaveformHeight);
    auto* line = new QWidget;
    auto* row = new QHBoxLayout(line);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(8);
    row->addWidget(status_);
    row->addWidget(waveform_);
    return line;
}

QWidget* HeaderView::makeShortcutRows() {
    auto* rows = new QWidget;
    rows->setFixedWidth(kShortcutsWidth);
    auto* column = new QVBoxLayout(rows);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(kShortcutSpacing);
    column->addWidget(new ShortcutRowView(QStringLiteral("mic.fill"), QStringLiteral("Dictate"),
                                          QStringLiteral("Hold Fn")));
    column->addWidget(new ShortcutRowView(QStringLiteral("lock.open"), QStringLiteral("Hands-Free Record"),
                                          QStringLiteral("Fn + Shift")));
    column->addWidget(new ShortcutRowView(QStringLiteral("stop.circle"), QStringLiteral("Stop Hands-Free"),
                                          QStringLiteral("Fn + Shift")));
    return rows;
}

void HeaderView::applyColors() {
    const QPalette desktop = QGuiApplication::palette();
    const Rgba background = theme::windowBackground(desktop);
    const Rgba text = theme::labelColor(desktop, background);
    setTextColor(*title_, text);
    setTextColor(*subtitle_, theme::readableLabelColor(desktop, background, kSubtitleAlpha));
    setTextColor(*status_, theme::readableLabelColor(desktop, background, kStatusAlpha));
    moreOptions_->setContentTint(theme::color(text.withAlpha(kSubtitleAlpha)));
    waveform_->setColor(theme::color(theme::accentOn(background)));
}

void HeaderView::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    const int side = (width() - static_cast<int>(mainContentWidth)) / 2;
    const QRect place(width() - side - kMoreOptionsSize, kTop, kMoreOptionsSize, kMoreOptionsSize);
    moreOptions_->setGeometry(QStyle::visualRect(layoutDirection(), rect(), place));
}

void HeaderView::changeEvent(QEvent* event) {
    if (event->type() == QEvent::ApplicationPaletteChange) {
        applyColors();
    }
    QWidget::changeEvent(event);
}

void HeaderView::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.fillRect(rect(), theme::color(theme::windowBackground(QGuiApplication::palette())));
}

} // namespace tovik

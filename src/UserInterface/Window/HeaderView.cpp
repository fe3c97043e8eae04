// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/Window/HeaderView.h"

#include "UserInterface/Controls/Buttons.h"
#include "UserInterface/Controls/Fields.h"
#include "UserInterface/Controls/Painting.h"
#include "UserInterface/Controls/Theme.h"
#include "UserInterface/Window/MainWindowLayout.h"

#include <QEvent>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QPaintEvent>
#include <QPainter>
#include <QStyle>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>

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

constexpr int kShortcutHeight = 26;
constexpr int kBadgeSize = 22;
constexpr int kShortcutSymbolSize = 14;
constexpr double kBadgeRadius = 6;
constexpr int kBadgeToLabel = 10;
constexpr double kShortcutTextSize = 12;
constexpr double kKeyCapTextSize = 11;
constexpr int kKeyCapHeight = 22;
constexpr int kKeyCapPadding = 9;
constexpr double kKeyCapRadius = 6;
constexpr double kKeyCapFill = 0.06;
constexpr double kKeyCapBorder = 0.16;
constexpr double kShortcutAlpha = 0.82;
constexpr double kBadgeFill = 0.12;

QLabel* makeLabel(const QString& text, double size, FontWeight weight) {
    auto* label = new QLabel(text);
    label->setFont(theme::font(size, weight));
    label->setAlignment(Qt::AlignCenter);
    return label;
}

void setTextColor(QWidget& view, const QColor& color) {
    QPalette palette = QGuiApplication::palette();
    palette.setColor(QPalette::WindowText, color);
    view.setPalette(palette);
}

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

/// A line of the header that names a shortcut: a symbol, what it does, and the keys.
class ShortcutRowView : public QWidget {
public:
    ShortcutRowView(const QString& symbolName, const QString& label, const QString& keyCap);

protected:
    void changeEvent(QEvent* event) override;

private:
    void applyColors();

    SymbolView* symbol_;
    QLabel* label_;
    QLabel* keyCap_;
};

ShortcutRowView::ShortcutRowView(const QString& symbolName, const QString& label, const QString& keyCap)
    : symbol_(new SymbolView(symbolName, {kShortcutSymbolSize, kShortcutSymbolSize}, theme::kAccent)),
      label_(new QLabel(label)),
      keyCap_(new KeyCap(keyCap)) {
    setFixedHeight(kShortcutHeight);
    symbol_->setFixedSize(kBadgeSize, kBadgeSize);
    label_->setFont(theme::font(kShortcutTextSize, FontWeight::medium));

    auto* row = makeTightLayout<QHBoxLayout>(this, 0);
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
    const QColor background = theme::windowBackground(desktop);
    const QColor text = theme::readableLabelColor(desktop, background, kShortcutAlpha);
    const QColor accent = theme::accentOn(background);
    symbol_->setTint(accent);
    symbol_->setGround(theme::withAlpha(accent, kBadgeFill), kBadgeRadius);
    setTextColor(*label_, text);
    setTextColor(*keyCap_, text);
}

} // namespace

double tinyWaveformBarHeight(int barIndex, double phase) {
    // Two waves that drift through each other; neither factor is a multiple of the other.
    const double slow = std::abs(std::sin(barIndex * 0.55 + phase));
    const double fast = std::abs(std::sin(barIndex * 1.35 + phase));
    return std::max(18 * (slow * fast) + 3, 2.0);
}

TovikTinyWaveformView::TovikTinyWaveformView(MainQueue& queue, QWidget* parent)
    : QWidget(parent),
      queue_(queue),
      color_(theme::kAccent) {}

void TovikTinyWaveformView::setColor(const QColor& color) {
    color_ = color;
    update();
}

void TovikTinyWaveformView::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    if (!timer_) {
        timer_ = queue_.every(kTinyWaveformInterval, [this] {
            phase_ += kTinyWaveformPhaseStep;
            update();
        });
    }
}

void TovikTinyWaveformView::hideEvent(QHideEvent* event) {
    timer_.end();
    QWidget::hideEvent(event);
}

void TovikTinyWaveformView::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(color_);
    const double middle = height() / 2.0;
    int index = 0;
    for (double x = kTinyWaveformStart; x < width(); x += kTinyWaveformStep) {
        const double barHeight = tinyWaveformBarHeight(index++, phase_);
        painter.drawRoundedRect(QRectF(x, middle - barHeight / 2, kTinyWaveformBarWidth, barHeight),
                                kTinyWaveformBarRadius, kTinyWaveformBarRadius);
    }
}

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
    auto* row = makeTightLayout<QHBoxLayout>(line, 8);
    row->addWidget(status_);
    row->addWidget(waveform_);
    return line;
}

QWidget* HeaderView::makeShortcutRows() {
    auto* rows = new QWidget;
    rows->setFixedWidth(kShortcutsWidth);
    auto* column = makeTightLayout<QVBoxLayout>(rows, kShortcutSpacing);
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
    const QColor background = theme::windowBackground(desktop);
    const QColor text = theme::labelColor(desktop, background);
    setTextColor(*title_, text);
    setTextColor(*subtitle_, theme::readableLabelColor(desktop, background, kSubtitleAlpha));
    setTextColor(*status_, theme::readableLabelColor(desktop, background, kStatusAlpha));
    moreOptions_->setContentTint(theme::withAlpha(text, kSubtitleAlpha));
    waveform_->setColor(theme::accentOn(background));
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
    painter.fillRect(rect(), theme::windowBackground(QGuiApplication::palette()));
}

} // namespace tovik

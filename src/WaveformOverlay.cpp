// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "WaveformOverlay.h"

#include "Audio/RecordingDisplay.h"
#include "UserInterface/Controls/Fields.h"
#include "UserInterface/Controls/Theme.h"
#include "UserInterface/Overlay/FloatingPanel.h"

#include <QFontMetricsF>
#include <QPaintEvent>
#include <QPainter>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <optional>

namespace tovik {

WaveformView::WaveformView(QWidget* parent) : QWidget(parent), samples_(sampleCount, 0.0) {}

void WaveformView::setLevel(float level) {
    level_ = level;
    samples_.push_back(std::clamp(static_cast<double>(level), 0.0, 1.0));
    samples_.erase(samples_.begin(), samples_.end() - sampleCount);
    update();
}

void WaveformView::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    const double left = width() / 2.0 - 128.5;
    const double middle = height() / 2.0;
    for (std::size_t bar = 0; bar < samples_.size(); ++bar) {
        const auto look = WaveformBar::forSample(samples_[bar]);
        painter.setBrush(theme::rgb(look.red, look.green, look.blue, look.alpha));
        painter.drawRoundedRect(
            QRectF(left + 6.5 * static_cast<double>(bar), middle - look.height / 2, 3.5, look.height), 1.75,
            1.75);
    }
}

namespace {

double widestDigit(const QFontMetricsF& metrics) {
    double widest = 0;
    for (char digit = '0'; digit <= '9'; ++digit) {
        widest = std::max(widest, metrics.horizontalAdvance(QLatin1Char(digit)));
    }
    return widest;
}

} // namespace

QList<double> TabularDigitsLabel::characterPositions() const {
    const QFontMetricsF metrics(font());
    const double digitWidth = widestDigit(metrics);
    QList<double> positions{0};
    for (const QChar character : text()) {
        const double width = character.isDigit() ? digitWidth : metrics.horizontalAdvance(character);
        positions.append(positions.last() + width);
    }
    return positions;
}

QSize TabularDigitsLabel::sizeHint() const {
    const QFontMetricsF metrics(font());
    return {static_cast<int>(std::ceil(characterPositions().last())),
            static_cast<int>(std::ceil(metrics.height()))};
}

void TabularDigitsLabel::paintEvent(QPaintEvent* /*event*/) {
    const QFontMetricsF metrics(font());
    const double digitWidth = widestDigit(metrics);
    const double baseline = (height() - metrics.height()) / 2 + metrics.ascent();
    const QList<double> positions = characterPositions();
    QPainter painter(this);
    painter.setFont(font());
    painter.setPen(palette().color(foregroundRole()));
    for (qsizetype index = 0; index < text().size(); ++index) {
        const QChar character = text().at(index);
        const double slack = character.isDigit() ? digitWidth - metrics.horizontalAdvance(character) : 0;
        painter.drawText(QPointF(positions.at(index) + slack / 2, baseline), character);
    }
}

namespace {

constexpr Size kSize{theme::kPillWidth, theme::kPillHeight};
constexpr double kDistanceFromBottom = 30;

bool contains(const Rect& frame, Point point) {
    return point.x >= frame.x && point.x < frame.right() && point.y >= frame.y && point.y < frame.bottom();
}

std::optional<Screen> screenWithPointer(const Screens& screens) {
    const Point pointer = screens.pointerLocation();
    for (const Screen& screen : screens.screens()) {
        if (contains(screen.frame, pointer)) {
            return screen;
        }
    }
    return screens.mainScreen();
}

} // namespace

Point overlayOrigin(const Screens& screens, Size size) {
    const auto screen = screenWithPointer(screens);
    if (!screen) {
        return {-size.width / 2, kDistanceFromBottom};
    }
    return {screen->frame.midX() - size.width / 2,
            screen->visibleFrame.bottom() - kDistanceFromBottom - size.height};
}

bool isWorthMoving(Point from, Point to) {
    return std::abs(from.x - to.x) > 1 || std::abs(from.y - to.y) > 1;
}

WaveformOverlay::WaveformOverlay(const Clock& clock, MainQueue& queue, const Screens& screens,
                                 Workspace& workspace, const Compositing& compositing)
    : clock_(clock),
      queue_(queue),
      screens_(screens),
      workspace_(workspace),
      compositing_(compositing),
      fade_(clock, queue),
      movement_(clock, queue),
      beat_(clock, queue) {}

WaveformOverlay::~WaveformOverlay() = default;

void WaveformOverlay::show(Date startedAt) {
    startedAt_ = startedAt;
    if (window_) {
        updateElapsedLabel();
        startElapsedTimer();
        reposition(false);
        return;
    }
    makeWindow();
    window_->orderFront();
    startFollowingActiveSpace();
    startElapsedTimer();
    fadeIn();
}

void WaveformOverlay::hide() {
    if (!window_) {
        return;
    }
    followTimer_.end();
    spaceObserver_.end();
    elapsedTimer_.end();
    fadeOut();
}

void WaveformOverlay::tovik() {
    if (!window_) {
        return;
    }
    const auto grow = [this](double done) {
        window_->setContentScale(1 + (theme::kPillBeatScale - 1) * done);
    };
    beat_.start(theme::kPillBeat, curve::linear, grow, [this, grow] {
        beat_.start(theme::kPillBeat, curve::linear, [grow](double done) { grow(1 - done); });
    });
}

void WaveformOverlay::setLevel(float level) {
    if (waveformView_) {
        waveformView_->setLevel(level);
    }
}

void WaveformOverlay::makeWindow() {
    const Point corner = origin();
    window_ =
        std::make_unique<FloatingPanel>(PanelStyle{.background = theme::kPillBackground,
                                                   .cornerRadius = theme::kPanelCornerRadius,
                                                   .borderWidth = theme::kPillBorderWidth,
                                                   .borderColor = theme::kPillBorder},
                                        Rect{corner.x, corner.y, kSize.width, kSize.height}, compositing_);
    window_->setObjectName(QStringLiteral("waveformOverlay"));

    elapsedLabel_ = new TabularDigitsLabel(QStringLiteral("0:00"), &window_->content());
    elapsedLabel_->setFont(theme::font(theme::kPillTextSize, FontWeight::medium));
    setInk(*elapsedLabel_, theme::kPillText);
    elapsedLabel_->setAccessibleName(QStringLiteral("Elapsed recording time"));

    waveformView_ = new WaveformView(&window_->content());
    updateElapsedLabel();
}

void WaveformOverlay::layOutContent() {
    const QRect bounds = window_->content().rect();
    const QSize wanted = elapsedLabel_->sizeHint();
    const int width = std::max(theme::kPillTextMinWidth, wanted.width());
    const QRect label(bounds.right() + 1 - theme::kPillTextTrailing - width,
                      (bounds.height() - wanted.height()) / 2, width, wanted.height());
    elapsedLabel_->setGeometry(label);
    waveformView_->setGeometry(QRect(
        QPoint(theme::kPillBarsLeading, theme::kPillBarsInset),
        QPoint(label.left() - theme::kPillBarsToText - 1, bounds.height() - theme::kPillBarsInset - 1)));
}

void WaveformOverlay::fadeIn() {
    fade_.start(theme::kPillFadeIn, curve::easeOut, [this](double done) { window_->setAlpha(done); });
}

void WaveformOverlay::fadeOut() {
    const double from = window_->alpha();
    fade_.start(
        theme::kPillFadeOut, curve::easeOut,
        [this, from](double done) { window_->setAlpha(from * (1 - done)); },
        [this] {
            movement_.stop();
            beat_.stop();
            // A show() during the fade has started it again, for a window that is gone now.
            elapsedTimer_.end();
            window_->orderOut();
            waveformView_ = nullptr;
            elapsedLabel_ = nullptr;
            window_.reset();
            startedAt_.reset();
        });
}

void WaveformOverlay::updateElapsedLabel() {
    if (!elapsedLabel_) {
        return;
    }
    elapsedLabel_->setText(
        startedAt_ ? QString::fromStdString(formattedElapsedTime(elapsedSeconds(*startedAt_, clock_.now())))
                   : QStringLiteral("0:00"));
    layOutContent();
}

void WaveformOverlay::startElapsedTimer() {
    elapsedTimer_ = queue_.every(theme::kPillElapsedInterval, [this] { updateElapsedLabel(); });
}

void WaveformOverlay::startFollowingActiveSpace() {
    spaceObserver_ = workspace_.onActiveSpaceChanged([this] { activeSpaceChanged(); });
    followTimer_ = queue_.every(theme::kPillFollowInterval, [this] { reposition(true); });
}

void WaveformOverlay::activeSpaceChanged() {
    reposition(false);
}

void WaveformOverlay::reposition(bool animated) {
    if (!window_) {
        return;
    }
    const Rect frame = window_->panelFrame();
    const Point from{frame.x, frame.y};
    const Point to = origin();
    if (!isWorthMoving(from, to)) {
        return;
    }
    movement_.stop();
    if (!animated) {
        window_->setOrigin(to);
        return;
    }
    movement_.start(theme::kPillMove, curve::easeOut, [this, from, to](double done) {
        window_->setOrigin({from.x + (to.x - from.x) * done, from.y + (to.y - from.y) * done});
    });
}

Point WaveformOverlay::origin() const {
    return overlayOrigin(screens_, kSize);
}

} // namespace tovik

// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/Window/ToastView.h"

#include "UserInterface/Controls/Fields.h"
#include "UserInterface/Controls/Painting.h"
#include "UserInterface/Controls/Theme.h"

#include <QAccessible>
#include <QEvent>
#include <QGraphicsOpacityEffect>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QPaintEvent>
#include <QPainter>

#include <algorithm>

namespace tovik {

namespace {

// Beyond this width a message goes on in another line.
constexpr int kFreeSide = 20;

} // namespace

/// Lies beneath the pill, which is exactly as large as it looks.
class ToastView::Shadow : public QWidget {
public:
    explicit Shadow(QWidget* host) : QWidget(host) {
        setAttribute(Qt::WA_TransparentForMouseEvents);
        hide();
    }

    void follow(const QRect& pill) {
        const int reach = shadowReach(theme::kToastShadow);
        setGeometry(pill.adjusted(-reach, -reach, reach, reach));
    }
    void setAlpha(double alpha) {
        alpha_ = alpha;
        update();
    }

protected:
    void paintEvent(QPaintEvent* /*event*/) override {
        const int reach = shadowReach(theme::kToastShadow);
        QPainter painter(this);
        painter.setOpacity(alpha_);
        paintShadow(painter, QRectF(rect()).adjusted(reach, reach, -reach, -reach), theme::kToastCornerRadius,
                    theme::kToastShadow);
    }

private:
    double alpha_ = 0;
};

ToastView::ToastView(const Clock& clock, MainQueue& queue, QWidget* host)
    : QWidget(host),
      queue_(queue),
      host_(host),
      label_(new QLabel(QStringLiteral("Saved"))),
      shadow_(new Shadow(host)),
      effect_(new QGraphicsOpacityEffect(this)),
      fade_(clock, queue) {
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setObjectName(QStringLiteral("toastView"));

    auto* symbol = new SymbolView(QStringLiteral("checkmark.circle.fill"),
                                  {theme::kToastSymbolSize, theme::kToastSymbolSize}, theme::kToastSymbol);
    symbol->setAccessibleDescription(QStringLiteral("Saved"));

    label_->setObjectName(QStringLiteral("toastLabel"));
    label_->setFont(theme::font(theme::kToastTextSize, FontWeight::semibold));
    setInk(*label_, theme::kToastText);
    label_->setTextFormat(Qt::PlainText);

    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(theme::kToastSide, 0, theme::kToastSide, 0);
    row->setSpacing(theme::kToastSymbolToText);
    row->addWidget(symbol);
    row->addWidget(label_);

    setGraphicsEffect(effect_);
    shadow_->stackUnder(this);
    host->installEventFilter(this);
    setAlpha(0);
    hide();
}

ToastView::~ToastView() = default;

void ToastView::showSavedToast(const QString& text) {
    label_->setText(text);
    label_->setAccessibleName(text);
    hideWork_.end();
    place();
    raise();
    show();
    shadow_->stackUnder(this);
    shadow_->show();
    QAccessibleEvent alert(label_, QAccessible::Alert);
    QAccessible::updateAccessibility(&alert);

    const double from = alpha_;
    fade_.start(theme::kToastFadeIn, curve::easeOut,
                [this, from](double done) { setAlpha(from + (1 - from) * done); });
    hideWork_ = queue_.after(theme::kToastShown, [this] { fadeOut(); });
}

void ToastView::fadeOut() {
    const double from = alpha_;
    fade_.start(
        theme::kToastFadeOut, curve::easeInEaseOut,
        [this, from](double done) { setAlpha(from * (1 - done)); },
        [this] {
            hide();
            shadow_->hide();
        });
}

void ToastView::setAlpha(double alpha) {
    alpha_ = alpha;
    effect_->setOpacity(alpha);
    effect_->setEnabled(alpha < 1);
    shadow_->setAlpha(alpha);
}

void ToastView::place() {
    const int most = host_->width() - 2 * kFreeSide;
    label_->setWordWrap(false);
    layout()->activate();
    int width = sizeHint().width();
    int height = theme::kToastHeight;
    if (width > most) {
        label_->setWordWrap(true);
        layout()->activate();
        width = most;
        height = std::max(height, heightForWidth(width) + theme::kToastHeight - fontMetrics().height());
    }
    setGeometry((host_->width() - width) / 2, theme::kToastTop, width, height);
    shadow_->follow(geometry());
}

bool ToastView::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Resize) {
        place();
    }
    return QWidget::eventFilter(watched, event);
}

void ToastView::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    fillRounded(painter, rect(), theme::kToastBackground, theme::kToastCornerRadius);
    if (theme::isDark(QGuiApplication::palette())) {
        // Dark on dark: a faint edge shows where the pill ends.
        painter.setPen(theme::kToastEdgeOnDark);
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), theme::kToastCornerRadius,
                                theme::kToastCornerRadius);
    }
}

} // namespace tovik

// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/Overlay/FloatingPanel.h"

#include "UserInterface/Controls/Fields.h"
#include "UserInterface/Controls/FrameAnimation.h"
#include "UserInterface/Controls/Painting.h"

#include <QBitmap>
#include <QFontMetricsF>
#include <QGraphicsEffect>
#include <QLabel>
#include <QPaintEvent>
#include <QPainter>

#include <cmath>
#include <utility>

namespace tovik {

KeyableWindow::KeyableWindow(Qt::WindowFlags flags)
    : QWidget(nullptr, Qt::Window | Qt::FramelessWindowHint | flags) {}

namespace {

constexpr Qt::WindowFlags kFloatingFlags = Qt::WindowStaysOnTopHint | Qt::WindowDoesNotAcceptFocus |
                                           Qt::WindowTransparentForInput | Qt::X11BypassWindowManagerHint |
                                           Qt::NoDropShadowWindowHint;

void makeFloating(QWidget& window) {
    window.setAttribute(Qt::WA_TranslucentBackground);
    window.setAttribute(Qt::WA_ShowWithoutActivating);
    window.setAttribute(Qt::WA_TransparentForMouseEvents);
    window.setFocusPolicy(Qt::NoFocus);
}

QPoint rounded(Point point) {
    return {static_cast<int>(std::lround(point.x)), static_cast<int>(std::lround(point.y))};
}

/// The rounded ground and its border.
class PanelContent : public QWidget {
public:
    PanelContent(const PanelStyle& style, QWidget* parent) : QWidget(parent), style_(style) {}

protected:
    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter painter(this);
        fillRounded(painter, rect(), style_.background, style_.cornerRadius);
        if (style_.borderWidth > 0) {
            const double inset = style_.borderWidth / 2;
            const double radius = style_.cornerRadius - inset;
            painter.setPen(QPen(style_.borderColor, style_.borderWidth));
            painter.setBrush(Qt::NoBrush);
            painter.drawRoundedRect(QRectF(rect()).adjusted(inset, inset, -inset, -inset), radius, radius);
        }
    }

private:
    PanelStyle style_;
};

QBitmap roundedMask(const QSize& size, double cornerRadius) {
    QBitmap mask(size);
    mask.fill(Qt::color0);
    QPainter painter(&mask);
    painter.setPen(Qt::NoPen);
    painter.setBrush(Qt::color1);
    painter.drawRoundedRect(QRect(QPoint(0, 0), size), cornerRadius, cornerRadius);
    return mask;
}

} // namespace

/// Shows a widget smaller or larger than it is, around its centre and within its own bounds. Free of charge
/// at scale 1.
class FloatingPanel::ScaleEffect : public QGraphicsEffect {
public:
    explicit ScaleEffect(QObject* parent) : QGraphicsEffect(parent) { setEnabled(false); }

    void setScale(double scale) {
        scale_ = scale;
        setEnabled(scale != 1);
        update();
    }
    [[nodiscard]] double scale() const { return scale_; }

protected:
    void draw(QPainter* painter) override {
        const QRectF bounds = sourceBoundingRect();
        const QPixmap picture = sourcePixmap(Qt::LogicalCoordinates, nullptr, NoPad);
        painter->save();
        painter->setRenderHint(QPainter::SmoothPixmapTransform);
        painter->translate(bounds.center());
        painter->scale(scale_, scale_);
        painter->translate(-bounds.center());
        painter->drawPixmap(bounds.topLeft(), picture);
        painter->restore();
    }

private:
    double scale_ = 1;
};

/// The panel's shadow is a window of its own just beneath it, so that the panel is exactly as large as it
/// looks.
class FloatingPanel::Shadow : public KeyableWindow {
public:
    Shadow(const QRect& panel, double cornerRadius)
        : KeyableWindow(kFloatingFlags),
          cornerRadius_(cornerRadius),
          reach_(shadowReach(theme::kPanelShadow)) {
        makeFloating(*this);
        follow(panel);
    }

    void follow(const QRect& panel) { setGeometry(panel.adjusted(-reach_, -reach_, reach_, reach_)); }

protected:
    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter painter(this);
        paintShadow(painter, QRectF(rect()).adjusted(reach_, reach_, -reach_, -reach_), cornerRadius_,
                    theme::kPanelShadow);
    }

private:
    double cornerRadius_;
    int reach_;
};

FloatingPanel::FloatingPanel(const PanelStyle& style, const Rect& frame, const Compositing& compositing)
    : KeyableWindow(kFloatingFlags),
      style_(style),
      compositing_(compositing),
      content_(new PanelContent(style, this)),
      scaleEffect_(new ScaleEffect(content_)) {
    makeFloating(*this);
    setGeometry(QRect(rounded({frame.x, frame.y}),
                      QSize(static_cast<int>(frame.width), static_cast<int>(frame.height))));
    content_->setGeometry(rect());
    content_->setGraphicsEffect(scaleEffect_);
    setAlpha(0);
}

FloatingPanel::~FloatingPanel() = default;

Rect FloatingPanel::panelFrame() const {
    const QRect frame = geometry();
    return {static_cast<double>(frame.x()), static_cast<double>(frame.y()),
            static_cast<double>(frame.width()), static_cast<double>(frame.height())};
}

void FloatingPanel::setOrigin(Point origin) {
    move(rounded(origin));
    if (shadow_) {
        shadow_->follow(geometry());
    }
}

void FloatingPanel::setAlpha(double alpha) {
    alpha_ = alpha;
    setWindowOpacity(alpha);
    if (shadow_) {
        shadow_->setWindowOpacity(alpha);
    }
}

void FloatingPanel::setContentScale(double scale) {
    scaleEffect_->setScale(scale);
}

double FloatingPanel::contentScale() const {
    return scaleEffect_->scale();
}

void FloatingPanel::orderFront() {
    if (compositing_.isActive()) {
        clearMask();
        shadow_ = std::make_unique<Shadow>(geometry(), style_.cornerRadius);
        shadow_->setWindowOpacity(alpha_);
        shadow_->show();
    } else {
        // Nothing mixes windows here: what is transparent would be black.
        setMask(roundedMask(size(), style_.cornerRadius));
    }
    show();
    raise();
}

void FloatingPanel::orderOut() {
    hide();
    shadow_.reset();
}

namespace {

constexpr double kFreeSide = 4;
constexpr double kSmallestFont = 8;

/// The described font, or a smaller one where the desktop's letters are too wide for the panel.
QFont fontThatFits(const QString& text, const HintDescription& description) {
    QFont font = theme::font(description.fontSize, description.weight);
    double size = description.fontSize;
    while (QFontMetricsF(font).horizontalAdvance(text) > description.frame.width - 2 * kFreeSide &&
           size > kSmallestFont) {
        size -= 0.5;
        font = theme::font(size, description.weight);
    }
    return font;
}

class QtHintPanel : public HintPanel {
public:
    QtHintPanel(const HintDescription& description, const Clock& clock, MainQueue& queue,
                const Compositing& compositing)
        : panel_({.background = theme::kHintBackground, .cornerRadius = theme::kPanelCornerRadius},
                 description.frame, compositing),
          fade_(clock, queue) {
        panel_.setObjectName(QStringLiteral("hintPanel"));
        auto* label = new QLabel(QString::fromStdString(description.text), &panel_.content());
        label->setFont(fontThatFits(label->text(), description));
        setInk(*label, theme::white(description.textWhite));
        label->setAlignment(Qt::AlignCenter);
        label->setGeometry(panel_.content().rect());
    }

    void fadeIn(Seconds duration) override {
        panel_.setAlpha(0);
        panel_.orderFront();
        fade_.start(duration, curve::easeInEaseOut, [this](double done) { panel_.setAlpha(done); });
    }

    void fadeOut(Seconds duration, std::function<void()> completion) override {
        const double from = panel_.alpha();
        fade_.start(
            duration, curve::easeInEaseOut, [this, from](double done) { panel_.setAlpha(from * (1 - done)); },
            [this, completion = std::move(completion)] {
                panel_.orderOut();
                if (completion) {
                    completion();
                }
            });
    }

private:
    FloatingPanel panel_;
    FrameAnimation fade_;
};

} // namespace

QtHintPanels::QtHintPanels(const Clock& clock, MainQueue& queue, const Compositing& compositing)
    : clock_(clock),
      queue_(queue),
      compositing_(compositing) {}

std::unique_ptr<HintPanel> QtHintPanels::makePanel(const HintDescription& description) {
    return std::make_unique<QtHintPanel>(description, clock_, queue_, compositing_);
}

} // namespace tovik

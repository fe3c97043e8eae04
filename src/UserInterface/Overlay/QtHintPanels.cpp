// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/Overlay/QtHintPanels.h"

#include "UserInterface/Controls/FrameAnimation.h"
#include "UserInterface/Overlay/FloatingPanel.h"

#include <QFontMetricsF>
#include <QLabel>

#include <utility>

namespace tovik {

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
        QPalette palette = label->palette();
        palette.setColor(QPalette::WindowText, theme::white(description.textWhite));
        label->setPalette(palette);
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

// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QColor>
#include <QPushButton>
#include <QScrollBar>

#include <optional>

namespace tovik {

/// A button that is only its text, its symbol, or both side by side. Reached with the Tab key, where it shows
/// a ring. Says its name and its help to assistive programs.
class BorderlessButton : public QPushButton {
    Q_OBJECT

public:
    explicit BorderlessButton(QWidget* parent = nullptr);

    /// Shown before the text; drawn this large.
    void setSymbol(const QString& symbolName, double edge);
    [[nodiscard]] const QString& symbolName() const { return symbolName_; }

    void setContentTint(const QColor& tint);
    [[nodiscard]] const QColor& contentTint() const { return contentTint_; }

    /// Where text and symbol stand when the button is larger than they need; centred at first.
    void setContentAlignment(Qt::Alignment alignment);

    /// Free space on both sides of the content, within the button.
    void setContentPadding(int horizontal, int vertical);

    /// What assistive programs call the button, and what it does.
    void describe(const QString& name, const QString& help);

    /// For a button that opens and closes something: whether that is open now. Nothing for all others.
    void setExpanded(bool expanded);
    [[nodiscard]] std::optional<bool> isExpanded() const { return expanded_; }

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;

    /// Paints what lies beneath text and symbol: nothing.
    virtual void paintGround(QPainter& painter);
    /// How strongly the content is drawn, 0...1.
    [[nodiscard]] virtual double contentOpacity() const;
    [[nodiscard]] bool isHovered() const { return underMouse() && isEnabled(); }

    void enterEvent(QEnterEvent* event) override;
    void leaveEvent(QEvent* event) override;

private:
    [[nodiscard]] QSizeF contentSize() const;

    QString symbolName_;
    double symbolEdge_ = 0;
    QColor contentTint_ = Qt::black;
    Qt::Alignment alignment_ = Qt::AlignCenter;
    std::optional<bool> expanded_;
    int horizontalPadding_ = 0;
    int verticalPadding_ = 0;
};

/// A button, mostly a symbol alone, that gets a soft ground while the pointer is over it or it is pressed.
class HoverFillButton : public BorderlessButton {
    Q_OBJECT

public:
    using BorderlessButton::BorderlessButton;

    /// How strong the ground is just now, 0...1.
    [[nodiscard]] double fillAlpha() const;

protected:
    void paintGround(QPainter& painter) override;
};

/// A button that reads like a link: its text gets a line beneath while the pointer is over it. It may lie on
/// a ground that shows how far it reaches.
class HoverLinkButton : public BorderlessButton {
    Q_OBJECT

public:
    using BorderlessButton::BorderlessButton;

    /// A soft ground in the colour of the content; none at first.
    void setHasGround(bool hasGround);

protected:
    void enterEvent(QEnterEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void paintGround(QPainter& painter) override;

private:
    void setUnderlined(bool underlined);

    bool hasGround_ = false;
};

/// A slim scroll bar that lies over what it scrolls and takes no room of its own. Only there when there is
/// something to scroll. Mirrors another scroll bar.
class OverlayScrollBar : public QScrollBar {
    Q_OBJECT

public:
    OverlayScrollBar(QScrollBar& mirrored, QWidget* parent);

    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void adoptRange();

    QScrollBar& mirrored_;
};

} // namespace tovik

// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "UserInterface/Controls/Theme.h"

#include <QColor>
#include <QIcon>
#include <QPixmap>
#include <QSizeF>
#include <QString>
#include <QWidget>

class QPainter;
class QRectF;

namespace tovik {

/// Paints a rounded shape in one colour.
void fillRounded(QPainter& painter, const QRectF& place, const QColor& fill, double cornerRadius);

/// Paints a rounded box with a border that lies within its place.
void paintBox(QPainter& painter, const QRectF& place, const QColor& fill, const QColor& border,
              double borderWidth, double cornerRadius);

/// The ground of a field or a pop-up button, with a ring around it while that has the keyboard.
void paintShell(QPainter& painter, const QRectF& place, bool hasFocus);

/// The ring within the place of what has the keyboard. The radius is that of the middle of its line.
void paintFocusRing(QPainter& painter, const QRectF& place, double cornerRadius);

/// Paints the soft black shadow that a rounded shape throws. The shape itself is left to the caller, on top.
void paintShadow(QPainter& painter, const QRectF& shape, double cornerRadius, const theme::Shadow& shadow);

/// How far the shadow reaches beyond the shape, on every side.
[[nodiscard]] int shadowReach(const theme::Shadow& shadow);

/// The program's own drawings, by symbol name. Drawn from curves at the very resolution asked for.
namespace symbols {

/// Whether there is a drawing of this name.
[[nodiscard]] bool exists(const QString& name);

/// The symbol in one colour, as large as fits the size, centred. An unknown name gives an empty picture.
[[nodiscard]] QPixmap pixmap(const QString& name, const QSizeF& size, const QColor& tint,
                             double devicePixelRatio);

/// Draws the symbol in one colour, as large as fits the rectangle.
void paint(QPainter& painter, const QString& name, const QRectF& target, const QColor& tint);

/// The symbol as an icon, sharp on every kind of screen.
[[nodiscard]] QIcon icon(const QString& name, const QColor& tint);

/// The program's icon.
[[nodiscard]] QPixmap applicationIconPixmap(double edge, double devicePixelRatio);
[[nodiscard]] QIcon applicationIcon();

} // namespace symbols

/// Shows a symbol in one colour, in the middle of the view.
class SymbolView : public QWidget {
    Q_OBJECT

public:
    SymbolView(const QString& symbolName, const QSize& symbolSize, const QColor& tint,
               QWidget* parent = nullptr);

    [[nodiscard]] const QString& symbolName() const { return symbolName_; }
    void setTint(const QColor& tint);

    /// A rounded ground beneath the symbol; none at first.
    void setGround(const QColor& color, double cornerRadius);

    [[nodiscard]] QSize sizeHint() const override { return symbolSize_; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    const QString symbolName_;
    QSize symbolSize_;
    QColor tint_;
    QColor ground_ = Qt::transparent;
    double groundRadius_ = 0;
};

} // namespace tovik

// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QColor>
#include <QWidget>

namespace tovik {

/// Shows a symbol in one colour, in the middle of the view.
class SymbolView : public QWidget {
    Q_OBJECT

public:
    SymbolView(const QString& symbolName, const QSize& symbolSize, const QColor& tint,
               QWidget* parent = nullptr);

    void setSymbolName(const QString& symbolName);
    [[nodiscard]] const QString& symbolName() const { return symbolName_; }
    void setTint(const QColor& tint);

    /// A rounded ground beneath the symbol; none at first.
    void setGround(const QColor& color, double cornerRadius);

    [[nodiscard]] QSize sizeHint() const override { return symbolSize_; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString symbolName_;
    QSize symbolSize_;
    QColor tint_;
    QColor ground_ = Qt::transparent;
    double groundRadius_ = 0;
};

} // namespace tovik

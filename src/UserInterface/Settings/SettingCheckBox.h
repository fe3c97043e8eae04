// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QCheckBox>

namespace tovik {

/// A check box with its title, drawn in the program's own colours.
class SettingCheckBox : public QCheckBox {
    Q_OBJECT

public:
    explicit SettingCheckBox(QWidget* parent = nullptr);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    [[nodiscard]] bool hitButton(const QPoint& position) const override;
    void paintEvent(QPaintEvent* event) override;

private:
    void paintBox(QPainter& painter, const QRectF& box) const;
};

} // namespace tovik

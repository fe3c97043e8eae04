// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>

class QVBoxLayout;

namespace tovik {

/// The column of cards that scrolls under the header, growing downwards, with the shadows that the cards
/// throw on it.
class FlippedDocumentView : public QWidget {
    Q_OBJECT

public:
    explicit FlippedDocumentView(QWidget* parent = nullptr);

    void addCard(QWidget* card);
    /// Below the last card.
    void addFooter(QWidget* footer);

    /// The height that everything in it needs.
    [[nodiscard]] int fittingHeight() const;

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void centreColumn(int width);

    QVBoxLayout* stack_;
    QList<QWidget*> cards_;
};

} // namespace tovik

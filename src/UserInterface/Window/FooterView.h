// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>

class QLabel;

namespace tovik {

class HoverLinkButton;

/// What stands below the last card: the version and two links.
class FooterView : public QWidget {
    Q_OBJECT

public:
    explicit FooterView(const QString& version, QWidget* parent = nullptr);

    [[nodiscard]] HoverLinkButton& updatesButton() { return *updates_; }
    [[nodiscard]] HoverLinkButton& websiteButton() { return *website_; }

protected:
    void changeEvent(QEvent* event) override;

private:
    void applyColors();

    QLabel* version_;
    HoverLinkButton* updates_;
    HoverLinkButton* website_;
};

} // namespace tovik

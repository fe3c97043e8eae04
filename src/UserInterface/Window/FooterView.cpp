// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/Window/FooterView.h"

#include "UserInterface/Controls/HoverLinkButton.h"
#include "UserInterface/Controls/Theme.h"

#include <QEvent>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QLabel>

namespace tovik {

namespace {

constexpr double kTextSize = 11;
constexpr double kVersionAlpha = 0.68;
constexpr double kSymbolSize = 12;
constexpr int kSpacing = 16;
constexpr int kLinkPaddingX = 4;
constexpr int kLinkPaddingY = 3;

} // namespace

FooterView::FooterView(const QString& version, QWidget* parent)
    : QWidget(parent),
      version_(new QLabel(QStringLiteral("Tovik Record v") + version)),
      updates_(new HoverLinkButton),
      website_(new HoverLinkButton) {
    version_->setFont(theme::font(kTextSize));

    updates_->setText(QStringLiteral("Check for updates"));
    updates_->describe(QStringLiteral("Check for updates"),
                       QStringLiteral("Open the Tovik Record download page to check for the latest version"));

    website_->setText(QStringLiteral("Tovik AI"));
    website_->setSymbol(QStringLiteral("waveform"), kSymbolSize);
    website_->describe(QStringLiteral("Tovik AI website"), QStringLiteral("Open tovik.example"));

    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(kSpacing);
    row->addStretch();
    row->addWidget(version_);
    for (HoverLinkButton* link : {updates_, website_}) {
        link->setFont(theme::font(kTextSize, FontWeight::medium));
        link->setContentPadding(kLinkPaddingX, kLinkPaddingY);
        row->addWidget(link);
    }
    row->addStretch();
    applyColors();
}

void FooterView::changeEvent(QEvent* event) {
    if (event->type() == QEvent::ApplicationPaletteChange) {
        applyColors();
    }
    QWidget::changeEvent(event);
}

void FooterView::applyColors() {
    const QPalette desktop = QGuiApplication::palette();
    const Rgba background = theme::windowBackground(desktop);
    QPalette palette = desktop;
    palette.setColor(QPalette::WindowText,
                     theme::color(theme::readableLabelColor(desktop, background, kVersionAlpha)));
    version_->setPalette(palette);
    for (HoverLinkButton* link : {updates_, website_}) {
        link->setContentTint(theme::color(theme::accentOn(background)));
    }
}

} // namespace tovik

// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/Settings/LanguagePopUp.h"

#include "Speech/Translation/TranslationLanguage.h"
#include "UserInterface/Controls/ShellPainter.h"
#include "UserInterface/Controls/SymbolImage.h"
#include "UserInterface/Controls/Theme.h"

#include <QGuiApplication>
#include <QPainter>
#include <QStyle>
#include <QWheelEvent>

namespace tovik {

LanguagePopUp::LanguagePopUp(const QString& name, QWidget* parent) : QComboBox(parent) {
    setFont(theme::font(theme::kSettingTextSize));
    setFixedSize(theme::kPopUpWidth, theme::kLanguageRowHeight);
    setFocusPolicy(Qt::TabFocus);
    setCursor(Qt::PointingHandCursor);
    setAccessibleName(name);
    for (const auto& language : availableTranslationLanguages()) {
        addItem(QString::fromStdString(language.name), QString::fromStdString(language.id));
    }
}

void LanguagePopUp::select(const std::string& identifier) {
    const QString wanted = QString::fromStdString(identifier);
    setPlaceholderText(wanted);
    setCurrentIndex(findData(wanted));
    // The longest names do not fit.
    setToolTip(currentText());
    update();
}

QString LanguagePopUp::shownLanguage() const {
    return currentIndex() < 0 ? placeholderText() : currentText();
}

std::optional<std::string> LanguagePopUp::selectedIdentifier() const {
    const QVariant identifier = currentData();
    if (identifier.typeId() != QMetaType::QString) {
        return std::nullopt;
    }
    return identifier.toString().toStdString();
}

void LanguagePopUp::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setOpacity(isEnabled() ? 1 : theme::kSettingDisabledAlpha);
    paintShell(painter, rect(), hasFocus());

    const Rgba label = theme::labelColor(QGuiApplication::palette(), theme::kCardBackground);
    const QColor ink = theme::color(label.withAlpha(theme::kSettingTextAlpha));
    const QRect symbolPlace(width() - theme::kShellSide - theme::kPopUpSymbolSize,
                            (height() - theme::kPopUpSymbolSize) / 2, theme::kPopUpSymbolSize,
                            theme::kPopUpSymbolSize);
    symbols::paint(painter, QStringLiteral("chevron.down"),
                   QRectF(QStyle::visualRect(layoutDirection(), rect(), symbolPlace)), ink);

    const QRect textPlace(theme::kShellSide, 0, symbolPlace.left() - 2 * theme::kShellSide + 2, height());
    painter.setFont(font());
    painter.setPen(ink);
    painter.drawText(QStyle::visualRect(layoutDirection(), rect(), textPlace),
                     static_cast<int>(Qt::AlignVCenter | Qt::AlignLeading),
                     fontMetrics().elidedText(shownLanguage(), Qt::ElideRight, textPlace.width()));
}

void LanguagePopUp::wheelEvent(QWheelEvent* event) {
    // The wheel scrolls the window; a language is not to change because the pointer came across it.
    event->ignore();
}

} // namespace tovik

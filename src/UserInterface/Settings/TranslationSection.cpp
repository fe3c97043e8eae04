// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/Settings/TranslationSection.h"

#include "Speech/Translation/TranslationManager.h"
#include "UserInterface/Controls/Fields.h"
#include "UserInterface/Controls/Painting.h"
#include "UserInterface/Controls/Theme.h"

#include <QGuiApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QStyle>
#include <QVBoxLayout>
#include <QWheelEvent>

#include <nlohmann/json.hpp>
#include <utility>

namespace tovik {

TranslationSettings::TranslationSettings(const TextTranslator& translator, UserDefaults& defaults,
                                         std::function<void(const std::string&)> showSavedToast)
    : translator_(translator),
      defaults_(defaults),
      showSavedToast_(std::move(showSavedToast)) {}

std::string TranslationSettings::toggleTitle() const {
    return isToggleEnabled() ? "Translate after dictation" : "Translate after dictation (requires macOS 15+)";
}

bool TranslationSettings::isToggleEnabled() const {
    return !translator_.whyUnavailable();
}

bool TranslationSettings::translationEnabled() const {
    return defaults_.boolean(kTranslationEnabledKey).value_or(false);
}

bool TranslationSettings::areLanguagesEnabled() const {
    return isToggleEnabled() && translationEnabled();
}

std::string TranslationSettings::sourceLanguage() const {
    return defaults_.string(kTranslationSourceLanguageKey).value_or(kDefaultSourceLanguage);
}

std::string TranslationSettings::targetLanguage() const {
    return defaults_.string(kTranslationTargetLanguageKey).value_or(kDefaultTargetLanguage);
}

void TranslationSettings::translationToggled(bool on) {
    defaults_.set(kTranslationEnabledKey, on);
    showSavedToast_(on ? "Translation on" : "Translation off");
}

void TranslationSettings::sourceLanguageChanged(const std::optional<std::string>& identifier) {
    languageChanged(identifier, kTranslationSourceLanguageKey, "Source language saved");
}

void TranslationSettings::targetLanguageChanged(const std::optional<std::string>& identifier) {
    languageChanged(identifier, kTranslationTargetLanguageKey, "Target language saved");
}

void TranslationSettings::languageChanged(const std::optional<std::string>& identifier, const char* key,
                                          const char* toast) {
    if (!identifier) {
        return;
    }
    defaults_.set(key, *identifier);
    showSavedToast_(toast);
}

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

    const QColor label = theme::labelColor(QGuiApplication::palette(), theme::kCardBackground);
    const QColor ink = theme::withAlpha(label, theme::kSettingTextAlpha);
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

TranslationSection::TranslationSection(TranslationSettings settings, QWidget* parent)
    : QWidget(parent),
      settings_(std::move(settings)),
      toggle_(new SettingCheckBox),
      source_(new LanguagePopUp(QStringLiteral("Source language"))),
      target_(new LanguagePopUp(QStringLiteral("Target language"))),
      explanation_(makeReadableLabel({}, theme::kSettingNoteSize, theme::kExplanationAlpha)) {
    const QString help = QStringLiteral("Translate dictated text after transcription");
    toggle_->setAccessibleDescription(help);
    toggle_->setToolTip(help);
    connect(toggle_, &QCheckBox::clicked, this, [this](bool on) {
        settings_.translationToggled(on);
        refresh();
    });
    connect(source_, &QComboBox::activated, this,
            [this] { settings_.sourceLanguageChanged(source_->selectedIdentifier()); });
    connect(target_, &QComboBox::activated, this,
            [this] { settings_.targetLanguageChanged(target_->selectedIdentifier()); });
    explanation_->setWordWrap(true);
    explanation_->hide();

    auto* stack = makeTightLayout<QVBoxLayout>(this, theme::kLanguageRowSpacing);
    stack->addWidget(toggle_, 0, Qt::AlignLeading);
    stack->addWidget(explanation_);
    stack->addWidget(makeRow(QStringLiteral("From:"), *source_));
    stack->addWidget(makeRow(QStringLiteral("To:"), *target_));
    refresh();
}

QWidget* TranslationSection::makeRow(const QString& label, LanguagePopUp& popUp) {
    auto* caption = makeSettingLabel(label, theme::kSettingTextSize, theme::kLanguageLabelAlpha);
    caption->setFixedWidth(theme::kLanguageLabelWidth);
    auto* view = new QWidget;
    view->setFixedHeight(theme::kLanguageRowHeight);
    auto* row = makeTightLayout<QHBoxLayout>(view, 0);
    row->addWidget(caption);
    row->addWidget(&popUp);
    row->addStretch();
    return view;
}

void TranslationSection::refresh() {
    toggle_->setText(QString::fromStdString(settings_.toggleTitle()));
    toggle_->setAccessibleName(toggle_->text());
    toggle_->setEnabled(settings_.isToggleEnabled());
    toggle_->setChecked(settings_.translationEnabled());
    source_->select(settings_.sourceLanguage());
    target_->select(settings_.targetLanguage());
    source_->setEnabled(settings_.areLanguagesEnabled());
    target_->setEnabled(settings_.areLanguagesEnabled());

    const auto explanation = settings_.explanation();
    explanation_->setText(QString::fromStdString(explanation.value_or("")));
    if (explanation_->isHidden() == explanation.has_value()) {
        explanation_->setVisible(explanation.has_value());
        emit heightChanged();
    }
}

void TranslationSection::showEvent(QShowEvent* event) {
    // A service may have been installed since the section was seen last.
    refresh();
    QWidget::showEvent(event);
}

} // namespace tovik

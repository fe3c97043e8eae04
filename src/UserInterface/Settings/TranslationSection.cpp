// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/Settings/TranslationSection.h"

#include "UserInterface/Settings/LanguagePopUp.h"
#include "UserInterface/Settings/SettingCheckBox.h"
#include "UserInterface/Settings/SettingLabel.h"
#include "UserInterface/Controls/Theme.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>

#include <utility>

namespace tovik {

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

    auto* stack = new QVBoxLayout(this);
    stack->setContentsMargins(0, 0, 0, 0);
    stack->setSpacing(theme::kLanguageRowSpacing);
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
    auto* row = new QHBoxLayout(view);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(0);
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

// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/Settings/CleanupSection.h"

#include "UserInterface/Controls/Fields.h"
#include "UserInterface/Controls/Theme.h"

#include <QLabel>
#include <QVBoxLayout>

#include <nlohmann/json.hpp>
#include <utility>

namespace tovik {

CleanupSettings::CleanupSettings(FillerWords& fillerWords, UserDefaults& defaults,
                                 std::function<void(const std::string&)> showSavedToast)
    : fillerWords_(fillerWords),
      defaults_(defaults),
      showSavedToast_(std::move(showSavedToast)) {}

void CleanupSettings::cleanupToggled(bool on) {
    defaults_.set(FillerWords::removeKey, on);
    showSavedToast_(on ? "Cleanup on" : "Cleanup off");
}

std::string CleanupSettings::fillerWordsChanged(std::string_view text) {
    auto inEffect = fillerWords_.saveFillerWords(text);
    showSavedToast_("Filler words saved");
    return inEffect;
}

CleanupSection::CleanupSection(CleanupSettings settings, QWidget* parent)
    : QWidget(parent),
      settings_(std::move(settings)),
      toggle_(new SettingCheckBox),
      field_(new FieldShell) {
    toggle_->setText(QStringLiteral("Remove filler words"));
    const QString help = QStringLiteral("Remove configured filler words after dictation");
    toggle_->setAccessibleDescription(help);
    toggle_->setToolTip(help);
    connect(toggle_, &QCheckBox::clicked, this, [this](bool on) { settings_.cleanupToggled(on); });

    field_->setPlaceholderText(QStringLiteral("Comma-separated filler words"));
    field_->describe(QStringLiteral("Filler words"),
                     QStringLiteral("Comma-separated filler words to remove after dictation"));
    connect(field_, &FieldShell::editingEnded, this, &CleanupSection::fillerWordsChanged);

    auto* stack = makeTightLayout<QVBoxLayout>(this, theme::kCleanupSpacing);
    stack->addWidget(toggle_, 0, Qt::AlignLeading);
    stack->addWidget(field_);
    stack->addWidget(makeSettingLabel(QStringLiteral("Comma-separated. Clear to restore defaults."),
                                      theme::kSettingNoteSize, theme::kSettingNoteAlpha));
    refresh();
}

void CleanupSection::refresh() {
    toggle_->setChecked(settings_.cleanupEnabled());
    field_->setStoredText(QString::fromStdString(settings_.fillerWords()));
}

void CleanupSection::endEditing() {
    field_->endEditing();
}

void CleanupSection::fillerWordsChanged(const QString& text) {
    field_->setStoredText(QString::fromStdString(settings_.fillerWordsChanged(text.toStdString())));
}

} // namespace tovik

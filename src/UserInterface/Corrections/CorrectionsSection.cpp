// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/Corrections/CorrectionsSection.h"

#include "UserInterface/Controls/Buttons.h"
#include "UserInterface/Controls/Fields.h"
#include "UserInterface/Controls/Theme.h"
#include "UserInterface/Corrections/CorrectionsListView.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>

#include <utility>

namespace tovik {

CorrectionsSection::CorrectionsSection(TranscriptionDictionary& dictionary, UserDefaults& defaults,
                                       std::function<void(const std::string&)> showSavedToast,
                                       QWidget* parent)
    : QWidget(parent),
      editor_(dictionary, defaults, {[this] { reloadCorrectionsUI(); }, std::move(showSavedToast)}),
      list_(new CorrectionsListView(editor_)),
      addButton_(new HoverLinkButton) {
    addButton_->setText(QStringLiteral("+ Add correction"));
    addButton_->setFont(theme::font(theme::kSettingTextSize, FontWeight::medium));
    addButton_->setContentTint(theme::withAlpha(theme::kIndigo, theme::kAddCorrectionAlpha));
    addButton_->setContentPadding(4, 3);
    addButton_->describe(QStringLiteral("Add correction"), QStringLiteral("Add a new correction rule"));
    connect(addButton_, &QPushButton::clicked, this, [this] {
        endEditing();
        editor_.addCorrectionRow();
    });
    connect(list_, &CorrectionsListView::heightChanged, this, &CorrectionsSection::heightChanged);
    connect(list_, &CorrectionsListView::focusLeft, addButton_,
            [this] { addButton_->setFocus(Qt::OtherFocusReason); });

    auto* stack = makeTightLayout<QVBoxLayout>(this, theme::kCorrectionsSpacing);
    stack->addWidget(buildCorrectionsHeaderRow());
    stack->addWidget(list_);
    stack->addWidget(addButton_, 0, Qt::AlignLeading);
    reloadCorrectionsUI();
}

QWidget* CorrectionsSection::buildCorrectionsHeaderRow() {
    auto* view = new QWidget;
    view->setFixedHeight(theme::kCaptionHeight);
    auto* row = makeTightLayout<QHBoxLayout>(view, theme::kCorrectionGap);
    for (const char* caption : {"Incorrect", "Correct"}) {
        row->addWidget(makeReadableLabel(QString::fromLatin1(caption), theme::kCaptionTextSize,
                                         theme::kCaptionAlpha, FontWeight::semibold),
                       1);
    }
    return view;
}

void CorrectionsSection::reloadCorrectionsUI() {
    list_->reload();
    if (const auto heard = editor_.takePendingCorrectionFocus()) {
        list_->focusHeardField(*heard);
    }
}

void CorrectionsSection::endEditing() {
    list_->endEditing();
}

} // namespace tovik

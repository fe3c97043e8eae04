// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/Corrections/CorrectionGroupView.h"

#include "UserInterface/Controls/Buttons.h"
#include "UserInterface/Controls/Fields.h"
#include "UserInterface/Controls/Theme.h"

#include <QEvent>
#include <QStyle>

#include <algorithm>
#include <utility>

namespace tovik {

namespace {

constexpr int kButton = theme::kCorrectionButtonSize;
constexpr int kButtonInset = (theme::kShellHeight - kButton) / 2;
constexpr int kFieldAfter = kButton + kButtonInset + 2;
constexpr int kRowStep = theme::kShellHeight + theme::kVariationSpacing;

HoverFillButton* makeButton(const QString& symbol, const QString& name, const QString& help,
                            QWidget* parent) {
    auto* button = new HoverFillButton(parent);
    button->setFixedSize(kButton, kButton);
    button->setSymbol(symbol, theme::kCorrectionSymbolSize);
    button->setContentTint(theme::white(0, theme::kCorrectionSymbolAlpha));
    button->describe(name, help);
    return button;
}

FieldShell* makeField(const QString& placeholder, const QString& help, QWidget* parent) {
    auto* field = new FieldShell(parent);
    field->setPlaceholderText(placeholder);
    field->describe(placeholder, help);
    field->setTrailingRoom(kFieldAfter);
    return field;
}

} // namespace

CorrectionGroupView::CorrectionGroupView(QWidget* parent)
    : QWidget(parent),
      addButton_(makeButton(QStringLiteral("plus"), QStringLiteral("Add variation"), {}, this)),
      replacement_(makeField(QStringLiteral("Correct phrase"),
                             QStringLiteral("Replacement text for this correction"), this)),
      deleteButton_(makeButton(QStringLiteral("xmark"), QStringLiteral("Delete correction"),
                               QStringLiteral("Delete this correction rule"), this)) {
    connect(addButton_, &QPushButton::clicked, this, [this] { emit variationAdded(); });
    connect(replacement_, &FieldShell::editingEnded, this, &CorrectionGroupView::replacementEdited);
    connect(deleteButton_, &QPushButton::clicked, this, [this] { emit correctionDeleted(); });
}

int CorrectionGroupView::heightFor(std::size_t variations) {
    return static_cast<int>(variations) * kRowStep - theme::kVariationSpacing;
}

CorrectionGroupView::HeardRow CorrectionGroupView::buildHeardField(const std::string& heard) {
    HeardRow row{heard,
                 makeField(QStringLiteral("Incorrect phrase"),
                           QStringLiteral("Phrase Tovik Record should replace"), this),
                 makeButton(QStringLiteral("xmark"), QStringLiteral("Delete variation"),
                            QStringLiteral("Delete this incorrect phrase"), this)};
    // The phrase is looked up when it is needed: a field may come to stand for another one.
    connect(row.field, &FieldShell::editingEnded, this,
            [this, field = row.field](const QString& text) { emit heardEdited(placeOf(field).heard, text); });
    connect(row.deleteButton, &QPushButton::clicked, this,
            [this, button = row.deleteButton] { emit heardDeleted(placeOf(button).heard); });
    return row;
}

void CorrectionGroupView::identify(HeardRow& row, const std::string& heard) {
    row.heard = heard;
    const QString text = QString::fromStdString(heard);
    row.field->setObjectName(text);
    row.deleteButton->setObjectName(text);
    row.field->setStoredText(text);
}

void CorrectionGroupView::setGroup(const CorrectionGroup& group) {
    adoptHeardValues(group.heardValues);
    group_ = group;
    identifyGroup();
    layOut();
}

void CorrectionGroupView::adoptHeardValues(const std::vector<std::string>& heardValues) {
    std::vector<HeardRow> before = std::move(rows_);
    rows_.clear();
    const auto isWanted = [&heardValues](const HeardRow& row) {
        return std::binary_search(heardValues.begin(), heardValues.end(), row.heard);
    };
    const auto take = [&before](auto condition) {
        const auto found = std::find_if(before.begin(), before.end(), condition);
        std::vector<HeardRow> taken;
        if (found != before.end()) {
            taken.push_back(*found);
            before.erase(found);
        }
        return taken;
    };
    for (const auto& heard : heardValues) {
        auto found = take([&heard](const HeardRow& row) { return row.heard == heard; });
        if (found.empty()) {
            found = take([&isWanted](const HeardRow& row) { return !isWanted(row); });
        }
        HeardRow row = found.empty() ? buildHeardField(heard) : found.front();
        identify(row, heard);
        rows_.push_back(row);
    }
    for (const HeardRow& row : before) {
        for (QWidget* control : {static_cast<QWidget*>(row.field), static_cast<QWidget*>(row.deleteButton)}) {
            control->blockSignals(true);
            control->hide();
            control->deleteLater();
        }
    }
}

void CorrectionGroupView::identifyGroup() {
    const QString corrected = QString::fromStdString(group_.corrected);
    const QString phrases = QString::fromStdString(joinedHeardPhrases(group_.heardValues));
    addButton_->setObjectName(corrected);
    addButton_->describe(QStringLiteral("Add variation"),
                         QStringLiteral("Add another incorrect phrase for %1").arg(corrected));
    replacement_->setObjectName(phrases);
    replacement_->setStoredText(corrected);
    deleteButton_->setObjectName(phrases);
}

void CorrectionGroupView::resizeEvent(QResizeEvent* /*event*/) {
    layOut();
}

void CorrectionGroupView::changeEvent(QEvent* event) {
    if (event->type() == QEvent::LayoutDirectionChange) {
        layOut();
    }
    QWidget::changeEvent(event);
}

void CorrectionGroupView::layOut() {
    const auto place = [this](QWidget* control, int x, int y, int width, int height) {
        control->setGeometry(QStyle::visualRect(layoutDirection(), rect(), QRect(x, y, width, height)));
        control->show();
        // On top of those before it, which is also the order in which assistive programs tell the controls.
        control->raise();
    };
    const int column = (width() - theme::kCorrectionGap) / 2;
    const int second = width() - column;
    int y = 0;
    for (const HeardRow& row : rows_) {
        place(row.field, 0, y, column, theme::kShellHeight);
        place(row.deleteButton, column - kButton - kButtonInset, y + kButtonInset, kButton, kButton);
        y += kRowStep;
    }
    const int lastRow = std::max(0, y - kRowStep);
    place(addButton_, column + (theme::kCorrectionGap - kButton) / 2, lastRow + kButtonInset, kButton,
          kButton);
    place(replacement_, second, 0, column, theme::kShellHeight);
    place(deleteButton_, width() - kButton - kButtonInset, kButtonInset, kButton, kButton);
}

QWidget* CorrectionGroupView::controlAt(const Place& place) const {
    switch (place.control) {
    case Control::addVariation:
        return addButton_;
    case Control::replacementField:
        return replacement_;
    case Control::deleteCorrection:
        return deleteButton_;
    case Control::heardField:
    case Control::deleteVariation:
        break;
    }
    const auto row = std::find_if(rows_.begin(), rows_.end(),
                                  [&place](const HeardRow& each) { return each.heard == place.heard; });
    if (row == rows_.end()) {
        return nullptr;
    }
    return place.control == Control::heardField ? static_cast<QWidget*>(row->field) : row->deleteButton;
}

CorrectionGroupView::Place CorrectionGroupView::placeOf(const QWidget* control) const {
    for (const HeardRow& row : rows_) {
        if (control == row.field || control == row.deleteButton) {
            return {control == row.field ? Control::heardField : Control::deleteVariation, row.heard};
        }
    }
    const auto first = rows_.empty() ? std::string() : rows_.front().heard;
    if (control == addButton_) {
        return {Control::addVariation, first};
    }
    return {control == deleteButton_ ? Control::deleteCorrection : Control::replacementField, first};
}

std::vector<QWidget*> CorrectionGroupView::controls() const {
    std::vector<QWidget*> controls;
    for (const HeardRow& row : rows_) {
        controls.push_back(row.field);
    }
    controls.push_back(replacement_);
    for (const HeardRow& row : rows_) {
        controls.push_back(row.deleteButton);
    }
    controls.push_back(addButton_);
    controls.push_back(deleteButton_);
    return controls;
}

void CorrectionGroupView::discardEditing(const std::string& heard) {
    for (const HeardRow& row : rows_) {
        if (row.heard == heard) {
            row.field->discardEditing();
        }
    }
}

void CorrectionGroupView::discardEditing() {
    for (const HeardRow& row : rows_) {
        row.field->discardEditing();
    }
    replacement_->discardEditing();
}

} // namespace tovik

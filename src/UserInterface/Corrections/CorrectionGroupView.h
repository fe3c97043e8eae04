// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "UserInterface/Corrections/CorrectionsEditor.h"

#include <QWidget>

#include <cstddef>
#include <string>
#include <vector>

namespace tovik {

class FieldShell;
class HoverFillButton;

/// One correction: on the left a field for every phrase that is heard, on the right what is meant. It shows
/// the group that it is given and says what the user does with it.
class CorrectionGroupView : public QWidget {
    Q_OBJECT

public:
    enum class Control { heardField, deleteVariation, addVariation, replacementField, deleteCorrection };

    /// A control and, where there are several of it, the phrase it belongs to.
    struct Place {
        Control control;
        std::string heard;
    };

    explicit CorrectionGroupView(QWidget* parent = nullptr);

    /// Fields of phrases that stay are kept, with the caret and what is being typed in them. A field whose
    /// phrase is gone becomes that of a new one.
    void setGroup(const CorrectionGroup& group);
    [[nodiscard]] const CorrectionGroup& group() const { return group_; }

    [[nodiscard]] static int heightFor(std::size_t variations);

    /// Null when there is none.
    [[nodiscard]] QWidget* controlAt(const Place& place) const;
    /// Where one of this view's controls is.
    [[nodiscard]] Place placeOf(const QWidget* control) const;

    /// All controls in the order of the Tab key: the fields first, so that it leads from what is heard to
    /// what is meant.
    [[nodiscard]] std::vector<QWidget*> controls() const;

    /// Takes back what is being typed into this phrase's field, or into all fields.
    void discardEditing(const std::string& heard);
    void discardEditing();

signals:
    void heardEdited(const std::string& heard, const QString& text);
    void heardDeleted(const std::string& heard);
    void variationAdded();
    void replacementEdited(const QString& text);
    void correctionDeleted();

protected:
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    struct HeardRow {
        std::string heard;
        FieldShell* field;
        HoverFillButton* deleteButton;
    };

    [[nodiscard]] HeardRow buildHeardField(const std::string& heard);
    void identify(HeardRow& row, const std::string& heard);
    void identifyGroup();
    void adoptHeardValues(const std::vector<std::string>& heardValues);
    void layOut();

    CorrectionGroup group_;
    std::vector<HeardRow> rows_;
    HoverFillButton* addButton_;
    FieldShell* replacement_;
    HoverFillButton* deleteButton_;
};

} // namespace tovik

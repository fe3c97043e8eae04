// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "UserInterface/Corrections/CorrectionGroupView.h"
#include "UserInterface/Corrections/CorrectionsEditor.h"

#include <QPointer>
#include <QWidget>

#include <cstddef>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

class QScrollArea;

namespace tovik {

class CorrectionsEditor;

/// The corrections one below the other. Only the groups in and around the part that can be seen have widgets,
/// so that thousands of corrections open and scroll like a few; the one that has the keyboard keeps its own,
/// wherever it is.
class CorrectionsListView : public QWidget {
    Q_OBJECT

public:
    /// The editor outlives the view.
    explicit CorrectionsListView(CorrectionsEditor& editor, QWidget* parent = nullptr);

    /// Shows what the editor has now. The keyboard stays where it is; when its control is gone, it goes to
    /// what has taken its place. Waits while a field here is pressed with the mouse: rows that move away
    /// under the pointer would have it select text.
    void reload();

    /// Stores what is being typed.
    void endEditing();

    /// The groups that have widgets just now, from top to bottom.
    [[nodiscard]] std::vector<CorrectionGroupView*> shownGroups() const;

    /// Null when no group has this phrase.
    [[nodiscard]] CorrectionGroupView* showGroupOf(const std::string& heard);

    /// Gives the keyboard to the field of a phrase, with the text selected, and brings it into sight.
    void focusHeardField(const std::string& heard);

signals:
    /// There is another number of rows than before.
    void heightChanged();
    /// The keyboard had to leave the list, which has become empty.
    void focusLeft();

protected:
    void showEvent(QShowEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    using Place = CorrectionGroupView::Place;
    /// Where the keyboard is in the list.
    struct Focus {
        QPointer<QWidget> control;
        std::size_t index;
        Place place;
        std::vector<std::string> heardValues;
    };
    struct Range {
        std::size_t begin;
        std::size_t end;
    };

    void adoptGroups(std::vector<CorrectionGroup> groups);
    void handOverViews(const std::vector<CorrectionGroup>& groups);
    void dropViewsWithoutGroup();
    void materialise();
    [[nodiscard]] Range rangeAround(int top, int bottom) const;
    [[nodiscard]] std::optional<Range> visibleRange() const;
    CorrectionGroupView* showGroup(std::size_t index);
    void dropView(CorrectionGroupView* view);
    void placeViews();
    void connectView(CorrectionGroupView& view);

    [[nodiscard]] std::optional<std::size_t> indexOf(const std::string& corrected) const;
    [[nodiscard]] std::optional<std::size_t> indexOfPhrase(const std::string& heard) const;
    [[nodiscard]] std::optional<Focus> currentFocus() const;
    void keepFocus(const Focus& before);
    [[nodiscard]] QScrollArea* scrollArea() const;
    void bringIntoSight(QWidget& control);
    void settleLayouts();
    [[nodiscard]] bool waitForRelease();

    CorrectionsEditor& editor_;
    std::vector<CorrectionGroup> groups_;
    /// Where each group begins, and at the end the height of all.
    std::vector<int> tops_{0};
    /// By replacement.
    std::map<std::string, CorrectionGroupView*> views_;
    /// Set: the field whose release the reload waits for.
    QPointer<QWidget> pressedField_;
};

} // namespace tovik

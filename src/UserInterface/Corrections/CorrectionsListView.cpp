// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/Corrections/CorrectionsListView.h"

#include "UserInterface/Controls/Fields.h"
#include "UserInterface/Controls/Theme.h"
#include "UserInterface/Corrections/CorrectionsEditor.h"

#include <QCoreApplication>
#include <QEvent>
#include <QGuiApplication>
#include <QScrollArea>

#include <algorithm>
#include <set>
#include <utility>

namespace tovik {

namespace {

/// Groups with widgets above and below those in sight: room for the Tab key, for assistive programs and for
/// quick scrolling.
constexpr std::size_t kGroupsBeyondSight = 40;
/// Free space between what is brought into sight and the edge.
constexpr int kSightMargin = 40;

} // namespace

CorrectionsListView::CorrectionsListView(CorrectionsEditor& editor, QWidget* parent)
    : QWidget(parent),
      editor_(editor) {
    // A click beside the fields ends editing. It is also what the fields, which come later than all other
    // controls of the window, are hung behind in the order of the Tab key.
    setFocusPolicy(Qt::ClickFocus);
    setFixedHeight(0);
}

void CorrectionsListView::reload() {
    if (waitForRelease()) {
        return;
    }
    const auto focus = currentFocus();
    adoptGroups(editor_.groups());
    settleLayouts();
    materialise();
    placeViews();
    if (focus) {
        keepFocus(*focus);
    }
}

bool CorrectionsListView::waitForRelease() {
    pressedField_.clear();
    auto* field = qobject_cast<FieldShell*>(window()->focusWidget());
    if (!field || !isAncestorOf(field) || QGuiApplication::mouseButtons() == Qt::NoButton) {
        return false;
    }
    pressedField_ = field;
    field->installEventFilter(this);
    return true;
}

void CorrectionsListView::adoptGroups(std::vector<CorrectionGroup> groups) {
    handOverViews(groups);
    groups_ = std::move(groups);
    dropViewsWithoutGroup();
    tops_.assign(1, 0);
    tops_.reserve(groups_.size() + 1);
    for (const auto& group : groups_) {
        tops_.push_back(tops_.back() + CorrectionGroupView::heightFor(group.heardValues.size()) +
                        theme::kGroupSpacing);
    }
    const int wanted = std::max(0, tops_.back() - theme::kGroupSpacing);
    if (wanted != height()) {
        setFixedHeight(wanted);
        emit heightChanged();
    }
}

void CorrectionsListView::handOverViews(const std::vector<CorrectionGroup>& groups) {
    const auto has = [&groups](const std::string& corrected) {
        return std::any_of(groups.begin(), groups.end(),
                           [&corrected](const auto& group) { return group.corrected == corrected; });
    };
    const auto views = views_;
    for (const auto& [corrected, view] : views) {
        if (has(corrected)) {
            continue;
        }
        // A group with another replacement is still the same one to the user.
        const auto& phrases = view->group().heardValues;
        const auto renamed = std::find_if(groups.begin(), groups.end(), [&phrases](const auto& group) {
            return std::find(group.heardValues.begin(), group.heardValues.end(), phrases.front()) !=
                   group.heardValues.end();
        });
        if (renamed != groups.end() && !views_.contains(renamed->corrected) &&
            renamed->heardValues == phrases) {
            views_.erase(corrected);
            views_.emplace(renamed->corrected, view);
        }
    }
}

void CorrectionsListView::dropViewsWithoutGroup() {
    const auto views = views_;
    for (const auto& [corrected, view] : views) {
        if (!indexOf(corrected)) {
            views_.erase(corrected);
            dropView(view);
        }
    }
}

void CorrectionsListView::dropView(CorrectionGroupView* view) {
    view->blockSignals(true);
    view->hide();
    view->deleteLater();
}

void CorrectionsListView::materialise() {
    std::set<std::size_t> wanted;
    if (const auto range = visibleRange()) {
        for (std::size_t index = range->begin; index < range->end; ++index) {
            wanted.insert(index);
        }
    }
    if (const auto focus = currentFocus()) {
        for (auto index = focus->index - std::min<std::size_t>(focus->index, 1);
             index < std::min(focus->index + 2, groups_.size()); ++index) {
            wanted.insert(index);
        }
    }
    bool changed = false;
    const auto views = views_;
    for (const auto& [corrected, view] : views) {
        const auto index = indexOf(corrected);
        if (isVisible() && index && !wanted.contains(*index)) {
            views_.erase(corrected);
            dropView(view);
            changed = true;
        }
    }
    for (const auto index : wanted) {
        if (!views_.contains(groups_[index].corrected)) {
            showGroup(index);
            changed = true;
        }
    }
    if (changed) {
        placeViews();
    }
}

std::optional<CorrectionsListView::Range> CorrectionsListView::visibleRange() const {
    if (!isVisible() || groups_.empty()) {
        return std::nullopt;
    }
    const auto* scroll = scrollArea();
    if (!scroll) {
        return rangeAround(0, height());
    }
    const int top = -mapTo(scroll->viewport(), QPoint(0, 0)).y();
    return rangeAround(top, top + scroll->viewport()->height());
}

CorrectionsListView::Range CorrectionsListView::rangeAround(int top, int bottom) const {
    const auto at = [this](int y) {
        const auto found = std::upper_bound(tops_.begin(), tops_.end(), y);
        const auto index = static_cast<std::size_t>(found - tops_.begin());
        return index == 0 ? 0 : std::min(index - 1, groups_.size() - 1);
    };
    const auto first = at(top);
    return {first - std::min(first, kGroupsBeyondSight),
            std::min(at(bottom) + 1 + kGroupsBeyondSight, groups_.size())};
}

CorrectionGroupView* CorrectionsListView::showGroup(std::size_t index) {
    auto*& view = views_[groups_[index].corrected];
    if (!view) {
        view = new CorrectionGroupView(this);
        connectView(*view);
    }
    return view;
}

void CorrectionsListView::placeViews() {
    QWidget* before = this;
    for (std::size_t index = 0; index < groups_.size(); ++index) {
        const auto found = views_.find(groups_[index].corrected);
        if (found == views_.end()) {
            continue;
        }
        CorrectionGroupView& view = *found->second;
        const QRect place(0, tops_[index], width(),
                          CorrectionGroupView::heightFor(groups_[index].heardValues.size()));
        if (view.geometry() != place || view.group() != groups_[index]) {
            view.setGeometry(place);
            view.setGroup(groups_[index]);
        }
        view.show();
        view.raise();
        for (QWidget* control : view.controls()) {
            setTabOrder(before, control);
            before = control;
        }
    }
}

void CorrectionsListView::connectView(CorrectionGroupView& view) {
    using View = CorrectionGroupView;
    connect(&view, &View::heardEdited, this, [this, &view](const std::string& heard, const QString& text) {
        editor_.heardCorrectionFieldChanged(heard, view.group().corrected, text.toStdString());
    });
    connect(&view, &View::replacementEdited, this, [this, &view](const QString& text) {
        editor_.correctionFieldChanged(joinedHeardPhrases(view.group().heardValues), text.toStdString());
    });
    connect(&view, &View::heardDeleted, this, [this, &view](const std::string& heard) {
        view.discardEditing(heard);
        endEditing();
        editor_.removeHeardPhrase(heard);
    });
    connect(&view, &View::correctionDeleted, this, [this, &view] {
        view.discardEditing();
        endEditing();
        editor_.removeCorrectionRow(joinedHeardPhrases(view.group().heardValues));
    });
    connect(&view, &View::variationAdded, this, [this, shown = QPointer<View>(&view)] {
        endEditing();
        // What was being typed may have been the end of the whole group.
        if (shown && views_.contains(shown->group().corrected)) {
            editor_.addHeardPhraseToCorrection(shown->group().corrected);
        }
    });
}

void CorrectionsListView::endEditing() {
    for (auto* field : findChildren<FieldShell*>()) {
        if (field->isBeingEdited()) {
            field->endEditing();
            return;
        }
    }
}

std::vector<CorrectionGroupView*> CorrectionsListView::shownGroups() const {
    std::vector<CorrectionGroupView*> shown;
    for (const auto& group : groups_) {
        if (const auto found = views_.find(group.corrected); found != views_.end()) {
            shown.push_back(found->second);
        }
    }
    return shown;
}

CorrectionGroupView* CorrectionsListView::showGroupOf(const std::string& heard) {
    const auto index = indexOfPhrase(heard);
    if (!index) {
        return nullptr;
    }
    auto* view = showGroup(*index);
    placeViews();
    return view;
}

void CorrectionsListView::focusHeardField(const std::string& heard) {
    auto* view = showGroupOf(heard);
    auto* control = view ? view->controlAt({CorrectionGroupView::Control::heardField, heard}) : nullptr;
    if (auto* field = qobject_cast<FieldShell*>(control)) {
        field->setFocus(Qt::OtherFocusReason);
        field->selectAll();
        bringIntoSight(*field);
    }
}

std::optional<std::size_t> CorrectionsListView::indexOf(const std::string& corrected) const {
    const auto found =
        std::lower_bound(groups_.begin(), groups_.end(), corrected,
                         [](const auto& group, const auto& value) { return group.corrected < value; });
    if (found == groups_.end() || found->corrected != corrected) {
        return std::nullopt;
    }
    return static_cast<std::size_t>(found - groups_.begin());
}

std::optional<std::size_t> CorrectionsListView::indexOfPhrase(const std::string& heard) const {
    const auto found = std::find_if(groups_.begin(), groups_.end(), [&heard](const auto& group) {
        return std::binary_search(group.heardValues.begin(), group.heardValues.end(), heard);
    });
    if (found == groups_.end()) {
        return std::nullopt;
    }
    return static_cast<std::size_t>(found - groups_.begin());
}

std::optional<CorrectionsListView::Focus> CorrectionsListView::currentFocus() const {
    QWidget* control = window()->focusWidget();
    const auto* view = control ? qobject_cast<CorrectionGroupView*>(control->parentWidget()) : nullptr;
    if (!view || view->parentWidget() != this) {
        return std::nullopt;
    }
    const auto& group = view->group();
    const auto index =
        std::lower_bound(groups_.begin(), groups_.end(), group.corrected,
                         [](const auto& each, const auto& value) { return each.corrected < value; });
    return Focus{control, static_cast<std::size_t>(index - groups_.begin()), view->placeOf(control),
                 group.heardValues};
}

void CorrectionsListView::keepFocus(const Focus& before) {
    if (const auto now = currentFocus(); now && now->control == before.control) {
        return;
    }
    if (groups_.empty()) {
        emit focusLeft();
        return;
    }
    auto index = std::min(before.index, groups_.size() - 1);
    for (const auto& heard : before.heardValues) {
        if (const auto found = indexOfPhrase(heard)) {
            index = *found;
            break;
        }
    }
    auto* view = showGroup(index);
    placeViews();
    auto* control = view->controlAt(before.place);
    if (!control) {
        control = view->controlAt({before.place.control, groups_[index].heardValues.front()});
    }
    control->setFocus(Qt::OtherFocusReason);
    bringIntoSight(*control);
}

QScrollArea* CorrectionsListView::scrollArea() const {
    for (QWidget* ancestor = parentWidget(); ancestor; ancestor = ancestor->parentWidget()) {
        if (auto* area = qobject_cast<QScrollArea*>(ancestor)) {
            return area;
        }
    }
    return nullptr;
}

void CorrectionsListView::bringIntoSight(QWidget& control) {
    if (auto* area = scrollArea(); area && control.isVisible()) {
        area->ensureWidgetVisible(&control, 0, kSightMargin);
    }
}

void CorrectionsListView::settleLayouts() {
    // From the inside out, now instead of when the event loop comes to it: what follows looks at places.
    for (QWidget* ancestor = parentWidget(); ancestor && isVisible(); ancestor = ancestor->parentWidget()) {
        QEvent request(QEvent::LayoutRequest);
        QCoreApplication::sendEvent(ancestor, &request);
    }
}

void CorrectionsListView::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    const auto* scroll = scrollArea();
    for (QWidget* ancestor = parentWidget(); scroll && ancestor && ancestor != scroll;
         ancestor = ancestor->parentWidget()) {
        ancestor->installEventFilter(this);
    }
    // The release never came when the window went away under the pressed field.
    if (pressedField_) {
        reload();
    }
    materialise();
}

void CorrectionsListView::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    placeViews();
    materialise();
}

bool CorrectionsListView::eventFilter(QObject* watched, QEvent* event) {
    if (watched == pressedField_ && event->type() == QEvent::MouseButtonRelease) {
        watched->removeEventFilter(this);
        QMetaObject::invokeMethod(this, &CorrectionsListView::reload, Qt::QueuedConnection);
    } else if (isVisible() && (event->type() == QEvent::Move || event->type() == QEvent::Resize)) {
        materialise();
    }
    return QWidget::eventFilter(watched, event);
}

} // namespace tovik

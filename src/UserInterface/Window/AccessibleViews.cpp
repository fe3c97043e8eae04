// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/Window/AccessibleViews.h"

#include "UserInterface/Controls/Buttons.h"
#include "UserInterface/Controls/Painting.h"
#include "UserInterface/History/TranscriptHistoryCell.h"
#include "UserInterface/History/TranscriptHistoryTable.h"
#include "UserInterface/Settings/TranslationSection.h"
#include "UserInterface/Window/HeaderView.h"
#include "UserInterface/Window/MainWindowLayout.h"

#include <QAccessible>
#include <QAccessibleWidget>

namespace tovik {

namespace {

/// A button with all that it is and does.
class AccessibleButton : public QAccessibleWidget {
public:
    explicit AccessibleButton(BorderlessButton& button)
        : QAccessibleWidget(&button, QAccessible::Button),
          button_(button) {}

    [[nodiscard]] QString text(QAccessible::Text kind) const override {
        if (kind == QAccessible::Name && button_.accessibleName().isEmpty()) {
            return button_.text();
        }
        return QAccessibleWidget::text(kind);
    }

    [[nodiscard]] QAccessible::State state() const override {
        QAccessible::State state = QAccessibleWidget::state();
        state.pressed = button_.isDown();
        if (const auto expanded = button_.isExpanded()) {
            state.expandable = true;
            state.expanded = *expanded;
            state.collapsed = !*expanded;
        }
        return state;
    }

    [[nodiscard]] QStringList actionNames() const override {
        return button_.isEnabled() ? QStringList{pressAction(), setFocusAction()} : QStringList{};
    }

    void doAction(const QString& action) override {
        if (action == pressAction()) {
            button_.click();
        } else {
            QAccessibleWidget::doAction(action);
        }
    }

private:
    BorderlessButton& button_;
};

/// The list of transcripts with the rows in sight, from top to bottom.
class AccessibleHistoryTable : public QAccessibleWidget {
public:
    explicit AccessibleHistoryTable(TranscriptHistoryTable& table)
        : QAccessibleWidget(&table, QAccessible::List),
          table_(table) {}

    [[nodiscard]] int childCount() const override { return static_cast<int>(table_.visibleCells().size()); }

    [[nodiscard]] QAccessibleInterface* child(int index) const override {
        const auto cells = table_.visibleCells();
        return index >= 0 && static_cast<std::size_t>(index) < cells.size()
                   ? QAccessible::queryAccessibleInterface(cells[static_cast<std::size_t>(index)])
                   : nullptr;
    }

    [[nodiscard]] int indexOfChild(const QAccessibleInterface* child) const override {
        const auto cells = table_.visibleCells();
        for (std::size_t index = 0; index < cells.size(); ++index) {
            if (child && cells[index] == child->object()) {
                return static_cast<int>(index);
            }
        }
        return -1;
    }

    [[nodiscard]] QAccessibleInterface* focusChild() const override {
        const auto row = table_.currentRow();
        auto* cell = row && table_.hasFocus() ? table_.cellAt(*row) : nullptr;
        return cell ? QAccessible::queryAccessibleInterface(cell) : QAccessibleWidget::focusChild();
    }

private:
    TranscriptHistoryTable& table_;
};

/// A row of that list: pressing it copies it.
class AccessibleHistoryCell : public QAccessibleWidget {
public:
    explicit AccessibleHistoryCell(TranscriptHistoryCell& cell)
        : QAccessibleWidget(&cell, QAccessible::ListItem),
          cell_(cell) {}

    [[nodiscard]] QAccessible::State state() const override {
        QAccessible::State state = QAccessibleWidget::state();
        state.focusable = true;
        state.focused = cell_.isCurrent() && cell_.parentWidget()->hasFocus();
        state.selectable = true;
        state.selected = cell_.isSelected();
        return state;
    }

    [[nodiscard]] QStringList actionNames() const override { return {pressAction()}; }

    void doAction(const QString& action) override {
        if (action == pressAction()) {
            emit cell_.copyClicked(cell_.row());
        }
    }

private:
    TranscriptHistoryCell& cell_;
};

/// A pop-up button by its own name. Qt would call it by the language that is selected; that is its help.
class AccessiblePopUp : public QAccessibleWidget {
public:
    explicit AccessiblePopUp(LanguagePopUp& popUp)
        : QAccessibleWidget(&popUp, QAccessible::ComboBox),
          popUp_(popUp) {}

    [[nodiscard]] QString text(QAccessible::Text kind) const override {
        if (kind == QAccessible::Value || kind == QAccessible::Description) {
            return popUp_.shownLanguage();
        }
        return QAccessibleWidget::text(kind);
    }

    [[nodiscard]] QAccessible::State state() const override {
        QAccessible::State state = QAccessibleWidget::state();
        state.hasPopup = true;
        return state;
    }

    [[nodiscard]] QStringList actionNames() const override {
        return popUp_.isEnabled() ? QStringList{showMenuAction(), setFocusAction()} : QStringList{};
    }

    void doAction(const QString& action) override {
        if (action == showMenuAction()) {
            popUp_.showPopup();
        } else {
            QAccessibleWidget::doAction(action);
        }
    }

private:
    LanguagePopUp& popUp_;
};

QAccessibleInterface* makeInterface(const QString& /*className*/, QObject* object) {
    if (auto* button = qobject_cast<BorderlessButton*>(object)) {
        return new AccessibleButton(*button);
    }
    if (auto* popUp = qobject_cast<LanguagePopUp*>(object)) {
        return new AccessiblePopUp(*popUp);
    }
    if (auto* table = qobject_cast<TranscriptHistoryTable*>(object)) {
        return new AccessibleHistoryTable(*table);
    }
    if (auto* cell = qobject_cast<TranscriptHistoryCell*>(object)) {
        return new AccessibleHistoryCell(*cell);
    }
    if (auto* window = qobject_cast<FixedWidthWindow*>(object)) {
        return new QAccessibleWidget(window, QAccessible::Window);
    }
    if (qobject_cast<SymbolView*>(object) || qobject_cast<ApplicationIconView*>(object)) {
        return new QAccessibleWidget(qobject_cast<QWidget*>(object), QAccessible::Graphic);
    }
    return nullptr;
}

} // namespace

void installAccessibleViews() {
    // Qt keeps one entry for a factory, however often it is told of it.
    QAccessible::installFactory(makeInterface);
}

} // namespace tovik

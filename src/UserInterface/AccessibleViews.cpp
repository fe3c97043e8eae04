// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/AccessibleViews.h"

#include "UserInterface/BorderlessButton.h"
#include "UserInterface/HeaderView.h"
#include "UserInterface/SymbolView.h"

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

QAccessibleInterface* makeInterface(const QString& /*className*/, QObject* object) {
    if (auto* button = qobject_cast<BorderlessButton*>(object)) {
        return new AccessibleButton(*button);
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

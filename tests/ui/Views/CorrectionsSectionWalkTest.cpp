// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "ui/Views/CorrectionsSectionFixture.h"

#include <QScrollBar>

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace tovik {
namespace {

using testing::ElementsAre;

using CorrectionsSectionWalkTest = test::CorrectionsSectionFixture;

// Walking.

TEST_F(CorrectionsSectionWalkTest, tab_leadsThroughTheFieldsOfAGroupThenItsButtonsThenOn) {
    build({{"a", "Alpha"}, {"b", "Alpha"}, {"c", "Gamma"}});
    above->setFocus(Qt::TabFocusReason);
    std::vector<std::string> names;
    while (QApplication::focusWidget() != below && names.size() < 40) {
        press(Qt::Key_Tab);
        const auto* field = qobject_cast<FieldShell*>(QApplication::focusWidget());
        names.push_back(field ? field->text().toStdString()
                              : QApplication::focusWidget()->accessibleName().toStdString());
    }
    EXPECT_THAT(names, ElementsAre("a", "b", "Alpha", "Delete variation", "Delete variation", "Add variation",
                                   "Delete correction", "c", "Gamma", "Delete variation", "Add variation",
                                   "Delete correction", "Add correction", ""));
    EXPECT_EQ(QApplication::focusWidget(), below);
    for (std::size_t step = names.size(); step > 1; --step) {
        press(Qt::Key_Backtab, Qt::ShiftModifier);
    }
    EXPECT_EQ(QApplication::focusWidget(), &heardField("a"));
}

TEST_F(CorrectionsSectionWalkTest, tab_reachesEveryRowOfALongListAndBringsItIntoSight) {
    build(many(300));
    above->setFocus(Qt::TabFocusReason);
    for (int row = 0; row < 300; ++row) {
        press(Qt::Key_Tab);
        auto* field = qobject_cast<FieldShell*>(QApplication::focusWidget());
        ASSERT_NE(field, nullptr) << row;
        ASSERT_EQ(field->text(), QStringLiteral("heard %1").arg(10000 + row));
        const int top = field->mapTo(scroll->viewport(), QPoint(0, 0)).y();
        ASSERT_GE(top, 0) << row;
        ASSERT_LE(top + field->height(), scroll->viewport()->height()) << row;
        for (int control = 0; control < 4; ++control) {
            press(Qt::Key_Tab);
        }
    }
    press(Qt::Key_Tab);
    EXPECT_EQ(QApplication::focusWidget(), &section->addButton());
}

// Long lists.

TEST_F(CorrectionsSectionWalkTest, aLongList_hasWidgetsOnlyAroundWhatIsSeen) {
    build(many(1000));
    EXPECT_LT(section->list().shownGroups().size(), 120U);
    EXPECT_EQ(section->list().shownGroups().front()->group().corrected, "Meant 10000");
    scroll->verticalScrollBar()->setValue(scroll->verticalScrollBar()->maximum() / 2);
    test::runPendingEvents();
    EXPECT_LT(section->list().shownGroups().size(), 120U);
    for (int y = 10; y < scroll->viewport()->height(); y += 30) {
        const auto* seen = window->childAt(100, y);
        ASSERT_TRUE(seen && section->list().isAncestorOf(seen)) << y;
    }
    scroll->verticalScrollBar()->setValue(scroll->verticalScrollBar()->maximum());
    test::runPendingEvents();
    EXPECT_EQ(section->list().shownGroups().back()->group().corrected, "Meant 10999");
}

TEST_F(CorrectionsSectionWalkTest, whileScrolledAway_theFieldBeingTypedInKeepsItsText) {
    build(many(1000));
    FieldShell& field = heardField("heard 10003");
    typeInto(field, "half a wo");
    scroll->verticalScrollBar()->setValue(scroll->verticalScrollBar()->maximum());
    test::runPendingEvents();
    EXPECT_EQ(QApplication::focusWidget(), &field);
    EXPECT_EQ(field.text(), QStringLiteral("half a wo"));
    scroll->verticalScrollBar()->setValue(0);
    test::runPendingEvents();
    EXPECT_EQ(&heardField("heard 10003"), &field);
    press(Qt::Key_Return);
    EXPECT_EQ(stored().at("half a wo"), "Meant 10003");
}

TEST_F(CorrectionsSectionWalkTest, addingToALongList_bringsTheNewFieldIntoSight) {
    build(many(1000));
    click(section->addButton());
    test::runPendingEvents();
    FieldShell& field = heardField("new phrase");
    EXPECT_EQ(QApplication::focusWidget(), &field);
    const int top = field.mapTo(scroll->viewport(), QPoint(0, 0)).y();
    EXPECT_GE(top, 0);
    EXPECT_LE(top + field.height(), scroll->viewport()->height());
}

} // namespace
} // namespace tovik

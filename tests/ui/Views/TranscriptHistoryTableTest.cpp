// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/History/TranscriptHistoryTable.h"

#include "UserInterface/Controls/Buttons.h"
#include "UserInterface/History/HistoryRows.h"
#include "UserInterface/History/TranscriptHistoryCell.h"
#include "ui/Views/TranscriptHistoryFixture.h"

#include <QAccessible>
#include <QImage>

namespace tovik {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using TranscriptHistoryTableTest = test::TranscriptHistoryFixture;

// Swiping.

TEST_F(TranscriptHistoryTableTest, aRowDrawnAside_showsDeleteAndThatDeletesIt) {
    build({"c", "b", "a"});
    const QPoint from = middleOf(1);
    drag(from, from - QPoint(100, 0));
    auto* cell = table().cellAt(1);
    auto& button = cell->deleteButton();
    EXPECT_TRUE(button.isVisible());
    EXPECT_EQ(button.text(), QStringLiteral("Delete"));
    EXPECT_EQ(button.geometry(), QRect(table().width() - 72, 0, 72, cell->height()));
    EXPECT_THAT(stored(), ElementsAre("a", "b", "c"));
    QTest::mouseClick(&button, Qt::LeftButton);
    EXPECT_THAT(stored(), ElementsAre("a", "c"));
    EXPECT_FALSE(table().cellAt(1)->deleteButton().isVisible());
    EXPECT_THAT(stage.pasteboard.texts(), IsEmpty());
}

TEST_F(TranscriptHistoryTableTest, whileFiltered_aSwipedRowDeletesItsEntry) {
    build({"tea", "coffee", "more tea"});
    QTest::keyClicks(&search(), QStringLiteral("tea"));
    const QPoint from = middleOf(1);
    drag(from, from - QPoint(100, 0));
    QTest::mouseClick(&table().cellAt(1)->deleteButton(), Qt::LeftButton);
    EXPECT_THAT(stored(), ElementsAre("more tea", "coffee"));
}

TEST_F(TranscriptHistoryTableTest, drawnTheOtherWayOrDown_aRowStaysWhereItIs) {
    build({"b", "a"});
    const QPoint from = middleOf(0);
    drag(from, from + QPoint(100, 0));
    drag(from, from + QPoint(-20, 100));
    EXPECT_EQ(table().cellAt(0)->swipeOffset(), 0);
    EXPECT_THAT(stored(), ElementsAre("a", "b"));
}

TEST_F(TranscriptHistoryTableTest, aSwipedRowGoesBack_byAClickByEscapeAndWhenTheListScrolls) {
    buildNumbered(20);
    const auto open = [this] {
        const QPoint from = middleOf(1);
        drag(from, from - QPoint(100, 0));
        EXPECT_EQ(table().cellAt(1)->swipeOffset(), RowSwipe::kActionWidth);
    };
    open();
    QTest::mouseClick(&table(), Qt::LeftButton, {}, middleOf(3));
    stage.time.advance(Seconds{0.2});
    EXPECT_EQ(table().cellAt(1)->swipeOffset(), 0);
    open();
    QTest::keyClick(&table(), Qt::Key_Escape);
    stage.time.advance(Seconds{0.2});
    EXPECT_EQ(table().cellAt(1)->swipeOffset(), 0);
    open();
    table().scrollBar().setValue(30);
    EXPECT_EQ(table().cellAt(1)->swipeOffset(), 0);
    EXPECT_EQ(stage.history.entries().size(), 20U);
}

TEST_F(TranscriptHistoryTableTest, aTouchPadMovingSideways_swipesTheRow) {
    build({"b", "a"});
    for (int step = 0; step < 4; ++step) {
        turnWheel(middleOf(1), {-40, 0});
    }
    stage.time.advance(Seconds{0.5});
    EXPECT_EQ(table().cellAt(1)->swipeOffset(), RowSwipe::kActionWidth);
    EXPECT_TRUE(table().cellAt(1)->deleteButton().isVisible());
}

TEST_F(TranscriptHistoryTableTest, theWheelScrollsTheList_andAtItsEndTheWindow) {
    buildNumbered(20);
    turnWheel(QPoint(100, 100), {0, -120});
    EXPECT_EQ(table().scrollBar().value(), 60);
    table().scrollBar().setValue(table().scrollBar().maximum());
    const QPoint place(100, 100);
    QWheelEvent event(place, table().mapToGlobal(place), {}, {0, -120}, Qt::NoButton, Qt::NoModifier,
                      Qt::NoScrollPhase, false);
    event.setAccepted(true);
    QCoreApplication::sendEvent(&table(), &event);
    EXPECT_FALSE(event.isAccepted());
}

TEST_F(TranscriptHistoryTableTest, fromRightToLeft_theTrailingEdgeIsTheLeftOne) {
    QApplication::setLayoutDirection(Qt::RightToLeft);
    build({"a"});
    const QPoint from = middleOf(0);
    drag(from, from + QPoint(100, 0));
    EXPECT_EQ(table().cellAt(0)->deleteButton().geometry(), QRect(0, 0, 72, 60));
    EXPECT_LT(table().cellAt(0)->copyButton().x(), 100);
    QApplication::setLayoutDirection(Qt::LeftToRight);
}

// The flash.

TEST_F(TranscriptHistoryTableTest, theFlash_comesStaysAndGoes) {
    build({"a"});
    doubleClick(middleOf(0));
    auto& highlight = table().cellAt(0)->highlight();
    EXPECT_EQ(highlight.alpha(), 0);
    stage.time.advance(Seconds{0.09});
    EXPECT_GT(highlight.alpha(), 0.41);
    EXPECT_LT(highlight.alpha(), 0.82);
    stage.time.advance(Seconds{0.09});
    EXPECT_DOUBLE_EQ(highlight.alpha(), 0.82);
    stage.time.advance(Seconds{0.49});
    EXPECT_DOUBLE_EQ(highlight.alpha(), 0.82);
    stage.time.advance(Seconds{0.01 + 0.24});
    EXPECT_NEAR(highlight.alpha(), 0.41, 0.05);
    stage.time.advance(Seconds{0.25});
    EXPECT_EQ(highlight.alpha(), 0);
    stage.time.advance(Seconds{2});
    EXPECT_EQ(stage.time.pendingCount(), stage.controller->window().isVisible() ? 1U : 0U);
}

TEST_F(TranscriptHistoryTableTest, aSecondCopySoonAfter_letsTheFlashStayFromThen) {
    build({"a"});
    doubleClick(middleOf(0));
    auto& highlight = table().cellAt(0)->highlight();
    stage.time.advance(Seconds{0.5});
    QTest::keyClick(&table(), Qt::Key_Return);
    EXPECT_EQ(highlight.alpha(), 0);
    stage.time.advance(Seconds{0.67});
    EXPECT_DOUBLE_EQ(highlight.alpha(), 0.82);
    stage.time.advance(Seconds{0.01 + 0.48});
    EXPECT_EQ(highlight.alpha(), 0);
}

TEST_F(TranscriptHistoryTableTest, aCellThatComesToShowAnotherTranscript_doesNotFlash) {
    build({"a"});
    doubleClick(middleOf(0));
    stage.time.advance(Seconds{0.2});
    add({"b"});
    stage.controller->reloadHistoryTable();
    for (const auto* cell : table().visibleCells()) {
        EXPECT_EQ(const_cast<TranscriptHistoryCell*>(cell)->highlight().alpha(), 0);
    }
}

TEST_F(TranscriptHistoryTableTest, theHighlight_liesBehindTheRestWithinTheRow) {
    build({"a"});
    auto* cell = table().cellAt(0);
    const auto& highlight = cell->highlight();
    EXPECT_EQ(highlight.geometry(), cell->rect().adjusted(2, 3, -2, -3));
    EXPECT_EQ(highlight.parentWidget()->children().front(), &highlight);
}

TEST_F(TranscriptHistoryTableTest, theHighlight_hasItsColourAndRoundCorners) {
    build({"a"});
    auto& highlight = table().cellAt(0)->highlight();
    highlight.setAlpha(1);
    QImage drawn(highlight.size(), QImage::Format_ARGB32);
    drawn.fill(Qt::transparent);
    highlight.render(&drawn, QPoint(), QRegion(), QWidget::RenderFlags());
    EXPECT_EQ(drawn.pixel(drawn.rect().center()), qRgb(240, 235, 255));
    // Of a corner with a radius of 10, the third pixel on the diagonal lies outside and the fourth inside.
    EXPECT_EQ(drawn.pixelColor(1, 1).alpha(), 0);
    EXPECT_LT(drawn.pixelColor(2, 2).alpha(), 128);
    EXPECT_GT(drawn.pixelColor(3, 3).alpha(), 128);
    EXPECT_EQ(drawn.pixelColor(0, 10).alpha(), 255);
}

// What a row shows.

TEST_F(TranscriptHistoryTableTest, textDateAndButton_keepTheirDistances) {
    build({"a"});
    auto* cell = table().cellAt(0);
    const auto labels = cell->findChildren<QLabel*>();
    ASSERT_EQ(labels.size(), 2);
    EXPECT_EQ(labels[1]->y(), labels[0]->geometry().bottom() + 1 + 2);
    EXPECT_EQ(cell->copyButton().x(), labels[0]->geometry().right() + 1 + 5);
}

TEST_F(TranscriptHistoryTableTest, aLongText_showsTwoLinesAndAnEllipsis) {
    std::string text;
    for (int number = 0; number < 300; ++number) {
        text += "word" + std::to_string(number) + " ";
    }
    build({text, "short", "one\ntwo\nthree"});
    auto& cut = table().cellAt(2)->textLabel();
    const auto lines = cut.shownLines(cut.width());
    ASSERT_EQ(lines.size(), 2);
    EXPECT_TRUE(lines[0].startsWith(QStringLiteral("word0 word1")));
    EXPECT_TRUE(lines[1].endsWith(QChar(0x2026)));
    EXPECT_LE(cut.fontMetrics().horizontalAdvance(lines[1]), cut.width());
    EXPECT_EQ(table().cellAt(1)->textLabel().shownLines(300), QStringList{QStringLiteral("short")});
    EXPECT_EQ(table().cellAt(0)->textLabel().shownLines(300),
              (QStringList{QStringLiteral("one"), QStringLiteral("two three…")}));
}

TEST_F(TranscriptHistoryTableTest, fonts_areThoseOfTheRow) {
    build({"a"});
    auto* cell = table().cellAt(0);
    std::vector<int> sizes;
    for (const auto* label : cell->findChildren<QLabel*>()) {
        sizes.push_back(label->font().pixelSize());
    }
    EXPECT_THAT(sizes, ElementsAre(12, 10));
}

TEST_F(TranscriptHistoryTableTest, theListIsToldToAssistivePrograms_rowByRow) {
    buildNumbered(30);
    table().scrollBar().setValue(605);
    auto* list = QAccessible::queryAccessibleInterface(&table());
    ASSERT_NE(list, nullptr);
    EXPECT_EQ(list->role(), QAccessible::List);
    EXPECT_EQ(list->text(QAccessible::Name), QStringLiteral("Transcript History"));
    std::vector<std::string> names;
    for (int index = 0; index < list->childCount(); ++index) {
        auto* row = list->child(index);
        EXPECT_EQ(row->role(), QAccessible::ListItem);
        EXPECT_EQ(list->indexOfChild(row), index);
        names.push_back(row->text(QAccessible::Name).toStdString());
    }
    EXPECT_THAT(names, ElementsAre("text 10", "text 11", "text 12", "text 13", "text 14"));
    table().setFocus();
    QTest::keyClick(&table(), Qt::Key_End);
    auto* focused = list->focusChild();
    ASSERT_NE(focused, nullptr);
    EXPECT_EQ(focused->text(QAccessible::Name), QStringLiteral("text 29"));
    EXPECT_TRUE(focused->state().focused);
    focused->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_EQ(stage.pasteboard.contents(), "text 29");
}

TEST_F(TranscriptHistoryTableTest, tab_leadsFromTheSearchFieldOverTheListToTheButtonOfTheCurrentRow) {
    buildNumbered(10);
    search().setFocus();
    QTest::keyClick(&search(), Qt::Key_Tab);
    EXPECT_EQ(QApplication::focusWidget(), &table());
    for (int step = 0; step < 7; ++step) {
        QTest::keyClick(&table(), Qt::Key_Down);
    }
    QTest::keyClick(&table(), Qt::Key_Tab);
    EXPECT_EQ(QApplication::focusWidget(), &table().cellAt(7)->copyButton());
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Space);
    EXPECT_EQ(stage.pasteboard.contents(), "text 7");
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    EXPECT_EQ(QApplication::focusWidget()->accessibleName(), QStringLiteral("Permissions section"));
}

} // namespace
} // namespace tovik

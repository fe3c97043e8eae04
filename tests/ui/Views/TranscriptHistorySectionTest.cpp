// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/History/TranscriptHistorySection.h"

#include "UserInterface/Controls/Buttons.h"
#include "UserInterface/History/TranscriptHistoryCell.h"
#include "ui/Views/TranscriptHistoryFixture.h"

#include <QLocale>

namespace tovik {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using TranscriptHistorySectionTest = test::TranscriptHistoryFixture;

TEST_F(TranscriptHistorySectionTest, atFirst_listsAllNewestFirstWithTheirCount) {
    build({"first", "second", "third"});
    EXPECT_THAT(shown(), ElementsAre("third", "second", "first"));
    EXPECT_EQ(count(), "3 of 3");
    EXPECT_EQ(search().placeholderText(), QStringLiteral("Search transcripts"));
    EXPECT_EQ(search().accessibleDescription(), QStringLiteral("Filter transcript history by text"));
    std::vector<std::string> notes;
    for (const auto* label : section->findChildren<QLabel*>(QString(), Qt::FindDirectChildrenOnly)) {
        notes.push_back(label->text().toStdString());
    }
    EXPECT_THAT(notes,
                testing::UnorderedElementsAre("3 of 3", "Double-click to copy · Right-click to delete"));
}

TEST_F(TranscriptHistorySectionTest, whateverElseIsOpen_itHasAllTheHeightItNeeds) {
    buildNumbered(10);
    for (const char* title : {kCorrectionsSection, kCleanupSection, kPermissionsSection}) {
        stage.controller->accordion().setAccordion(QString::fromLatin1(title), true, false);
        QCoreApplication::processEvents();
        EXPECT_GE(section->height(), section->sizeHint().height()) << title;
        EXPECT_GT(table().y(), section->historySearchField().geometry().bottom()) << title;
    }
}

TEST_F(TranscriptHistorySectionTest, withoutTranscripts_isEmptyAndSaysSo) {
    build({});
    EXPECT_THAT(shown(), IsEmpty());
    EXPECT_EQ(count(), "");
    table().setFocus();
    QTest::keyClick(&table(), Qt::Key_Down);
    QTest::keyClick(&table(), Qt::Key_Return);
    QTest::keyClick(&table(), Qt::Key_Delete);
    openMenuByKeyboard();
    EXPECT_EQ(section->contextMenu(), nullptr);
    EXPECT_THAT(stage.pasteboard.texts(), IsEmpty());
}

TEST_F(TranscriptHistorySectionTest, datesAreInTheShortStyleOfTheLocale) {
    qputenv("TZ", "UTC");
    struct Row {
        QLocale locale;
        const char* date;
    };
    for (const auto& row : {Row{QLocale(QLocale::English, QLocale::UnitedStates), "3/1/25 2:05 PM"},
                            Row{QLocale(QLocale::German, QLocale::Germany), "01.03.25 14:05"},
                            Row{QLocale(QLocale::English, QLocale::UnitedKingdom), "01/03/2025 14:05"}}) {
        QLocale::setDefault(row.locale);
        test::WindowStage fresh;
        fresh.history.add("text");
        fresh.build();
        auto* cell =
            fresh.controller->window().findChild<TranscriptHistorySection*>()->historyTableView().cellAt(0);
        // Newer tables of the world's customs put a narrow space before AM and PM.
        EXPECT_EQ(cell->contents().date.simplified().replace(QChar(0x202F), QLatin1Char(' ')).toStdString(),
                  row.date);
    }
    QLocale::setDefault(QLocale::system());
    qunsetenv("TZ");
}

TEST_F(TranscriptHistorySectionTest, withEachKey_listAndCountFollow) {
    build({"well hello there", "goodbye", "Help"});
    search().setFocus();
    const std::vector<std::pair<const char*, std::string>> steps{
        {"H", "2 of 3"}, {"e", "2 of 3"}, {"L", "2 of 3"}, {"l", "1 of 3"}, {"x", "0 of 3"}};
    for (const auto& [key, expected] : steps) {
        QTest::keyClicks(&search(), QString::fromLatin1(key));
        EXPECT_EQ(count(), expected) << key;
    }
    EXPECT_THAT(shown(), IsEmpty());
    QTest::keyClick(&search(), Qt::Key_Backspace);
    EXPECT_THAT(shown(), ElementsAre("well hello there"));
    QTest::keyClick(&search(), Qt::Key_Escape);
    EXPECT_EQ(search().text(), QString());
    EXPECT_EQ(count(), "3 of 3");
}

TEST_F(TranscriptHistorySectionTest, theClearButton_isThereWhileSomethingIsTyped) {
    build({"tea", "coffee"});
    auto& clear = section->historySearchField().clearButton();
    EXPECT_FALSE(clear.isVisible());
    QTest::keyClicks(&search(), QStringLiteral("tea"));
    EXPECT_TRUE(clear.isVisible());
    QTest::mouseClick(&clear, Qt::LeftButton);
    EXPECT_EQ(count(), "2 of 2");
    EXPECT_FALSE(clear.isVisible());
}

TEST_F(TranscriptHistorySectionTest, whenReturnIsPressedInTheSearchField_theListIsReloaded) {
    build({"tea"});
    const int before = stage.historyReloads;
    QTest::keyClick(&search(), Qt::Key_Return);
    EXPECT_EQ(stage.historyReloads, before + 1);
}

TEST_F(TranscriptHistorySectionTest, whenATranscriptArrives_itShowsAtOnceAndTheStatusMenuIsToldToo) {
    build({"old"});
    const int before = stage.historyReloads;
    add({"new"});
    stage.mainWindow.reloadHistoryTable();
    EXPECT_THAT(shown(), ElementsAre("new", "old"));
    EXPECT_EQ(count(), "2 of 2");
    EXPECT_EQ(stage.historyReloads, before + 1);
}

TEST_F(TranscriptHistorySectionTest, aDoubleClick_copiesTheRowFlashesItAndSaysSo) {
    build({"older", "newer"});
    doubleClick(middleOf(1));
    EXPECT_THAT(stage.pasteboard.texts(), ElementsAre("older"));
    EXPECT_EQ(toast(), "Copied");
    stage.time.advance(Seconds{0.18});
    EXPECT_DOUBLE_EQ(table().cellAt(1)->highlight().alpha(), 0.82);
    EXPECT_DOUBLE_EQ(table().cellAt(0)->highlight().alpha(), 0);
    EXPECT_EQ(table().selectedRow(), std::nullopt);
    EXPECT_FALSE(table().cellAt(1)->isSelected());
}

TEST_F(TranscriptHistorySectionTest, aDoubleClickBelowTheLastRow_doesNothing) {
    build({"only"});
    doubleClick(QPoint(100, 200));
    EXPECT_THAT(stage.pasteboard.texts(), IsEmpty());
    EXPECT_EQ(toast(), "");
}

TEST_F(TranscriptHistorySectionTest, theCopyButton_copiesItsRowAlsoAfterScrolling) {
    buildNumbered(30);
    table().scrollBar().setValue(600);
    auto* cell = table().cellAt(12);
    ASSERT_NE(cell, nullptr);
    auto& button = cell->copyButton();
    EXPECT_EQ(button.accessibleName(), QStringLiteral("Copy transcript"));
    EXPECT_EQ(button.toolTip(), QStringLiteral("Copy this transcript to the clipboard"));
    EXPECT_EQ(button.symbolName(), QStringLiteral("doc.on.doc"));
    QTest::mouseClick(&button, Qt::LeftButton);
    EXPECT_THAT(stage.pasteboard.texts(), ElementsAre("text 12"));
    EXPECT_EQ(toast(), "Copied");
}

TEST_F(TranscriptHistorySectionTest, arrowKeysMoveAndReturnCopies) {
    buildNumbered(10);
    table().setFocus(Qt::TabFocusReason);
    EXPECT_EQ(table().currentRow(), 0);
    EXPECT_TRUE(table().cellAt(0)->highlight().hasRing());
    for (const auto& [key, row] : std::vector<std::pair<Qt::Key, int>>{{Qt::Key_Down, 1},
                                                                       {Qt::Key_Down, 2},
                                                                       {Qt::Key_Up, 1},
                                                                       {Qt::Key_PageDown, 5},
                                                                       {Qt::Key_End, 9},
                                                                       {Qt::Key_Down, 9},
                                                                       {Qt::Key_PageUp, 5},
                                                                       {Qt::Key_Home, 0},
                                                                       {Qt::Key_Up, 0},
                                                                       {Qt::Key_End, 9}}) {
        QTest::keyClick(&table(), key);
        EXPECT_EQ(table().currentRow(), row);
        ASSERT_NE(table().cellAt(row), nullptr);
        EXPECT_TRUE(table().rect().contains(table().cellAt(row)->geometry())) << row;
    }
    QTest::keyClick(&table(), Qt::Key_Return);
    EXPECT_THAT(stage.pasteboard.texts(), ElementsAre("text 9"));
    QTest::keyClick(&table(), Qt::Key_Up);
    QTest::keyClick(&table(), Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(stage.pasteboard.contents(), "text 8");
}

TEST_F(TranscriptHistorySectionTest, theRing_isThereOnlyWhileTheListHasTheKeyboard) {
    build({"a", "b"});
    table().setFocus();
    EXPECT_TRUE(table().cellAt(0)->highlight().hasRing());
    search().setFocus();
    EXPECT_FALSE(table().cellAt(0)->highlight().hasRing());
}

TEST_F(TranscriptHistorySectionTest, theDeleteKey_deletesTheRowAndStaysAtItsPlace) {
    build({"d", "c", "b", "a"});
    table().setFocus();
    QTest::keyClick(&table(), Qt::Key_Down);
    QTest::keyClick(&table(), Qt::Key_Delete);
    EXPECT_THAT(stored(), ElementsAre("a", "c", "d"));
    EXPECT_THAT(shown(), ElementsAre("a", "c", "d"));
    EXPECT_EQ(count(), "3 of 3");
    EXPECT_EQ(table().currentRow(), 1);
    QTest::keyClick(&table(), Qt::Key_End);
    QTest::keyClick(&table(), Qt::Key_Delete);
    EXPECT_EQ(table().currentRow(), 1);
    EXPECT_THAT(stored(), ElementsAre("a", "c"));
}

TEST_F(TranscriptHistorySectionTest, aHeldDeleteKey_deletesOneRow) {
    build({"c", "b", "a"});
    table().setFocus();
    QKeyEvent first(QEvent::KeyPress, Qt::Key_Delete, Qt::NoModifier);
    QKeyEvent repeated(QEvent::KeyPress, Qt::Key_Delete, Qt::NoModifier, QString(), true);
    QApplication::sendEvent(&table(), &first);
    QApplication::sendEvent(&table(), &repeated);
    EXPECT_THAT(stored(), ElementsAre("b", "c"));
}

TEST_F(TranscriptHistorySectionTest, inTheSearchField_theDeleteKeyDeletesNoTranscript) {
    build({"a"});
    search().setFocus();
    QTest::keyClicks(&search(), QStringLiteral("a"));
    QTest::keyClick(&search(), Qt::Key_Delete);
    EXPECT_THAT(stored(), ElementsAre("a"));
    QTest::keyClick(&search(), Qt::Key_Down);
    EXPECT_TRUE(table().hasFocus());
    EXPECT_EQ(table().currentRow(), 0);
}

TEST_F(TranscriptHistorySectionTest, theContextMenu_copiesTheRowItWasOpenedOn) {
    build({"older", "newer"});
    openMenuByMouse(1);
    ASSERT_NE(section->contextMenu(), nullptr);
    std::vector<std::string> titles;
    for (const auto* action : section->contextMenu()->actions()) {
        titles.push_back(action->text().toStdString());
    }
    EXPECT_THAT(titles, ElementsAre("Copy", "Delete"));
    chooseInMenu(1);
    EXPECT_THAT(stage.pasteboard.texts(), ElementsAre("older"));
    EXPECT_EQ(toast(), "Copied");
    stage.time.advance(Seconds{0.18});
    EXPECT_DOUBLE_EQ(table().cellAt(1)->highlight().alpha(), 0.82);
}

TEST_F(TranscriptHistorySectionTest, whileFiltered_theContextMenuDeletesTheEntryThatShows) {
    build({"tea", "coffee", "more tea", "water"});
    QTest::keyClicks(&search(), QStringLiteral("tea"));
    openMenuByMouse(1);
    chooseInMenu(2);
    EXPECT_THAT(stored(), ElementsAre("water", "more tea", "coffee"));
    EXPECT_THAT(shown(), ElementsAre("more tea"));
    EXPECT_EQ(count(), "1 of 3");
}

TEST_F(TranscriptHistorySectionTest, whenATranscriptArrivesUnderTheOpenMenu_theOneItWasOpenedOnIsMeant) {
    build({"older", "newer"});
    openMenuByMouse(0);
    add({"newest"});
    stage.controller->reloadHistoryTable();
    chooseInMenu(2);
    EXPECT_THAT(stored(), ElementsAre("newest", "older"));
}

TEST_F(TranscriptHistorySectionTest, whenTheEntryHasGoneUnderTheOpenMenu_nothingIsDeleted) {
    build({"older", "newer"});
    openMenuByMouse(0);
    stage.historyBrowser.deleteHistoryEntry(0);
    chooseInMenu(2);
    EXPECT_THAT(stored(), ElementsAre("older"));
}

TEST_F(TranscriptHistorySectionTest, byKeyboard_theContextMenuIsThatOfTheCurrentRow) {
    build({"older", "newer"});
    table().setFocus();
    QTest::keyClick(&table(), Qt::Key_Down);
    openMenuByKeyboard();
    chooseInMenu(2);
    EXPECT_THAT(stored(), ElementsAre("newer"));
}

TEST_F(TranscriptHistorySectionTest, aRightClickBelowTheLastRow_opensNoMenu) {
    build({"only"});
    const QPoint place(100, 200);
    QContextMenuEvent event(QContextMenuEvent::Mouse, place, table().mapToGlobal(place));
    QApplication::sendEvent(&table(), &event);
    EXPECT_EQ(section->contextMenu(), nullptr);
}

} // namespace
} // namespace tovik

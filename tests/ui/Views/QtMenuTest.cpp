// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/StatusItem/QtMenu.h"

#include "support/EventLoop.h"

#include <QAction>
#include <QApplication>
#include <QMenu>
#include <QPointer>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tovik::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::vector<std::string> titlesIn(const QMenu& menu) {
    std::vector<std::string> titles;
    for (const auto* action : menu.actions()) {
        titles.push_back(action->isSeparator() ? "---" : action->text().toStdString());
    }
    return titles;
}

MenuItem item(
    const std::string& title, std::function<void()> action = [] {}) {
    MenuItem made;
    made.title = title;
    made.action = std::move(action);
    return made;
}

class QtMenuTest : public testing::Test {
protected:
    [[nodiscard]] QAction* action(int index) const { return shown.widget().actions().at(index); }

    std::shared_ptr<Menu> menu = std::make_shared<Menu>();
    QtMenu shown{menu};
};

TEST_F(QtMenuTest, whenItemsAreSet_theyShowInTheirOrder) {
    menu->setItems({item("One"), MenuItem::separator(), item("Two")});
    EXPECT_THAT(titlesIn(shown.widget()), ElementsAre("One", "---", "Two"));
}

TEST_F(QtMenuTest, whenATitleHoldsSpecialCharacters_itShowsAsItStands) {
    menu->setItems({item("Rock & Roll\t\"x\"\nline"), item("🌐 Auto-detect")});
    EXPECT_THAT(titlesIn(shown.widget()), ElementsAre("Rock && Roll \"x\" line", "🌐 Auto-detect"));
}

TEST_F(QtMenuTest, whenTwoShowTheSameMenu_bothFollowItsChanges) {
    auto second = std::make_unique<QtMenu>(menu);
    menu->setItems({item("One")});
    EXPECT_THAT(titlesIn(shown.widget()), ElementsAre("One"));
    EXPECT_THAT(titlesIn(second->widget()), ElementsAre("One"));
    second.reset();
    menu->setItems({item("Two")});
    EXPECT_THAT(titlesIn(shown.widget()), ElementsAre("Two"));
}

TEST_F(QtMenuTest, whenAPanelShowsIt_titlesAreMarkedForThePanel) {
    const QtMenu forPanel(menu, QtMenu::ShownBy::notifierPanel);
    menu->setItems({item("snake_case"), item("salt & pepper & more"), item("Plain")});
    EXPECT_THAT(titlesIn(forPanel.widget()), ElementsAre("snake__case", "&salt & pepper & more", "Plain"));
}

TEST_F(QtMenuTest, whenAnItemIsChosen_itsActionRuns) {
    int count = 0;
    menu->setItems({item("One", [&] { ++count; })});
    action(0)->trigger();
    EXPECT_EQ(count, 1);
}

TEST_F(QtMenuTest, whenAnItemCannotBeChosen_itShowsSo) {
    auto disabled = item("No transcripts yet");
    disabled.isEnabled = false;
    MenuItem withoutAction;
    withoutAction.title = "Nothing";
    menu->setItems({disabled, withoutAction, item("Enabled")});
    EXPECT_FALSE(action(0)->isEnabled());
    EXPECT_FALSE(action(1)->isEnabled());
    EXPECT_TRUE(action(2)->isEnabled());
}

TEST_F(QtMenuTest, whenItemsAreChecked_onlyTheyCarryTheMark) {
    auto checked = item("One");
    checked.isChecked = true;
    menu->setItems({checked, item("Two")});
    EXPECT_TRUE(action(0)->isChecked());
    EXPECT_FALSE(action(1)->isChecked());
}

TEST_F(QtMenuTest, whenACheckedItemIsChosenAndNothingChanges_itKeepsItsMark) {
    auto checked = item("One");
    checked.isChecked = true;
    menu->setItems({checked});
    action(0)->trigger();
    EXPECT_TRUE(action(0)->isChecked());
}

TEST_F(QtMenuTest, whenAnItemHasAKeyEquivalent_itShowsWithControl) {
    auto quit = item("Quit");
    quit.keyEquivalent = "q";
    menu->setItems({quit});
    EXPECT_EQ(action(0)->shortcut(), QKeySequence("Ctrl+Q"));
    EXPECT_TRUE(action(0)->isShortcutVisibleInContextMenu());
}

TEST_F(QtMenuTest, whenAnActionRebuildsTheMenuItIsIn_allGoesWell) {
    menu->setItems({item("Old", [&] { menu->setItems({item("New")}); })});
    action(0)->trigger();
    runPendingEvents();
    EXPECT_THAT(titlesIn(shown.widget()), ElementsAre("New"));
}

class SubmenuTest : public QtMenuTest {
protected:
    SubmenuTest() { showSubmenu(); }
    void showSubmenu() {
        MenuItem parent;
        parent.title = "More";
        parent.submenu = submenu;
        menu->setItems({parent});
    }
    [[nodiscard]] QMenu* shownSubmenu() const { return action(0)->menu(); }

    std::shared_ptr<Menu> submenu = std::make_shared<Menu>();
};

TEST_F(SubmenuTest, whenItIsEmpty_itCanStillBeOpened) {
    ASSERT_NE(shownSubmenu(), nullptr);
    EXPECT_TRUE(action(0)->isEnabled());
    EXPECT_THAT(titlesIn(*shownSubmenu()), IsEmpty());
}

TEST_F(SubmenuTest, whenItsItemsChange_theyShowAtOnce) {
    submenu->setItems({item("a"), item("b")});
    EXPECT_THAT(titlesIn(*shownSubmenu()), ElementsAre("a", "b"));
}

TEST_F(SubmenuTest, whenItOpens_itIsFilledFirst) {
    submenu->onWillOpen = [this] { submenu->setItems({item("fresh")}); };
    emit shownSubmenu()->aboutToShow();
    EXPECT_THAT(titlesIn(*shownSubmenu()), ElementsAre("fresh"));
}

TEST_F(SubmenuTest, whenOnlyTheSubmenuOpens_theMenuAboveIsNotAsked) {
    int count = 0;
    menu->onWillOpen = [&] { ++count; };
    emit shownSubmenu()->aboutToShow();
    EXPECT_EQ(count, 0);
    emit shown.widget().aboutToShow();
    EXPECT_EQ(count, 1);
}

TEST_F(SubmenuTest, whenTheMenuAboveChanges_theSameSubmenuStays) {
    const auto* const before = shownSubmenu();
    showSubmenu();
    EXPECT_EQ(shownSubmenu(), before);
    submenu->setItems({item("a")});
    EXPECT_THAT(titlesIn(*shownSubmenu()), ElementsAre("a"));
}

TEST_F(SubmenuTest, whenItIsTakenAway_itGoesAndItsLaterChangesAreHarmless) {
    const QPointer<QMenu> before = shownSubmenu();
    menu->setItems({item("Alone")});
    runPendingEvents();
    EXPECT_TRUE(before.isNull());
    submenu->setItems({item("a")});
    EXPECT_THAT(titlesIn(shown.widget()), ElementsAre("Alone"));
}

TEST(QtMenu, whenItIsGone_changesOfTheMenuAreHarmless) {
    const auto menu = std::make_shared<Menu>();
    auto shown = std::make_unique<QtMenu>(menu);
    menu->setItems({item("One")});
    const QPointer<QMenu> widget = &shown->widget();
    ASSERT_THAT(titlesIn(*widget), ElementsAre("One"));
    int told = 0;
    const auto other = menu->observe([&] { ++told; });
    shown.reset();
    runPendingEvents();
    EXPECT_TRUE(widget.isNull());
    menu->setItems({item("Two")});
    EXPECT_EQ(told, 1) << "the change reaches those who are left";
    EXPECT_EQ(menu->items().front().title, "Two");
}

TEST(QtMenu, whenOneOfItsOwnItemsDropsIt_allGoesWell) {
    const auto menu = std::make_shared<Menu>();
    auto shown = std::make_unique<QtMenu>(menu);
    bool hasRun = false;
    menu->setItems({item("Drop", [&] {
        shown.reset();
        hasRun = true;
    })});
    shown->widget().actions().front()->trigger();
    runPendingEvents();
    EXPECT_TRUE(hasRun);
}

} // namespace
} // namespace tovik::test

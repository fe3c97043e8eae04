// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/Corrections/CorrectionsSection.h"

#include "UserInterface/Controls/Fields.h"
#include "UserInterface/Corrections/CorrectionsListView.h"
#include "support/EventLoop.h"
#include "ui/Views/CorrectionsSectionFixture.h"

#include <QApplication>
#include <QLabel>
#include <QTest>

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace tovik {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

using CorrectionsSectionTest = test::CorrectionsSectionFixture;

// What it shows.

TEST_F(CorrectionsSectionTest, showsTheGroupsInOrderUnderTheirCaptions) {
    build({{"toe vic", "Tovik"}, {"bot to bot", "Tovik"}, {"brindle pad", "Brindlepad"}});
    EXPECT_THAT(shownReplacements(), ElementsAre("Brindlepad", "Tovik"));
    EXPECT_THAT(groupOf("toe vic").group().heardValues, ElementsAre("bot to bot", "toe vic"));
    EXPECT_EQ(heardField("toe vic").text(), QStringLiteral("toe vic"));
    EXPECT_EQ(replacementField("toe vic").text(), QStringLiteral("Tovik"));
    std::vector<std::string> captions;
    for (const auto* label : section->findChildren<QLabel*>()) {
        captions.push_back(label->text().toStdString());
    }
    EXPECT_THAT(captions, ElementsAre("Incorrect", "Correct"));
    EXPECT_EQ(section->addButton().text(), QStringLiteral("+ Add correction"));
}

TEST_F(CorrectionsSectionTest, everyControlSaysWhatItIsAndDoes) {
    build({{"a", "Alpha"}});
    struct Row {
        const char* name;
        const QWidget& control;
        const char* help;
    };
    const Row rows[] = {
        {"Incorrect phrase", heardField("a"), "Phrase Tovik Record should replace"},
        {"Delete variation", button("a", Control::deleteVariation), "Delete this incorrect phrase"},
        {"Add variation", button("a", Control::addVariation), "Add another incorrect phrase for Alpha"},
        {"Correct phrase", replacementField("a"), "Replacement text for this correction"},
        {"Delete correction", button("a", Control::deleteCorrection), "Delete this correction rule"},
        {"Add correction", section->addButton(), "Add a new correction rule"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(row.control.accessibleName().toStdString(), row.name);
        EXPECT_EQ(row.control.accessibleDescription().toStdString(), row.help);
        EXPECT_EQ(row.control.toolTip().toStdString(), row.help);
    }
    EXPECT_EQ(heardField("a").placeholderText(), QStringLiteral("Incorrect phrase"));
    EXPECT_EQ(replacementField("a").placeholderText(), QStringLiteral("Correct phrase"));
    EXPECT_EQ(button("a", Control::deleteVariation).symbolName(), QStringLiteral("xmark"));
    EXPECT_EQ(button("a", Control::addVariation).symbolName(), QStringLiteral("plus"));
    EXPECT_EQ(button("a", Control::deleteCorrection).symbolName(), QStringLiteral("xmark"));
}

TEST_F(CorrectionsSectionTest, everyControlKnowsWhatItStandsFor) {
    build({{"a", "Alpha"}, {"b", "Alpha"}});
    const QString both = QStringLiteral("a\x1f") + QStringLiteral("b");
    EXPECT_EQ(heardField("b").objectName(), QStringLiteral("b"));
    EXPECT_EQ(button("b", Control::deleteVariation).objectName(), QStringLiteral("b"));
    EXPECT_EQ(replacementField("a").objectName(), both);
    EXPECT_EQ(button("a", Control::deleteCorrection).objectName(), both);
    EXPECT_EQ(button("a", Control::addVariation).objectName(), QStringLiteral("Alpha"));
}

TEST_F(CorrectionsSectionTest, nothingLiesOverAnythingElse) {
    build({{"a", "Alpha"}, {"b", "Alpha"}, {"c", "Gamma"}});
    const auto placeOf = [this](const QWidget& control) {
        return QRect(control.mapTo(section, QPoint(0, 0)), control.size());
    };
    EXPECT_LT(placeOf(heardField("a")).bottom(), placeOf(heardField("b")).top());
    EXPECT_LT(placeOf(heardField("b")).bottom(), placeOf(heardField("c")).top());
    EXPECT_EQ(placeOf(heardField("a")).top(), placeOf(replacementField("a")).top());
    EXPECT_LT(placeOf(heardField("a")).right(), placeOf(button("a", Control::addVariation)).left());
    EXPECT_LT(placeOf(button("a", Control::addVariation)).right(), placeOf(replacementField("a")).left());
    EXPECT_LT(placeOf(heardField("c")).bottom(), placeOf(section->addButton()).top());
    EXPECT_TRUE(placeOf(heardField("a")).contains(placeOf(button("a", Control::deleteVariation))));
}

TEST_F(CorrectionsSectionTest, fromRightToLeft_isMirrored) {
    QApplication::setLayoutDirection(Qt::RightToLeft);
    build({{"a", "Alpha"}});
    EXPECT_GT(heardField("a").x(), replacementField("a").x());
    QApplication::setLayoutDirection(Qt::LeftToRight);
}

// Adding.

TEST_F(CorrectionsSectionTest, theAddButton_makesARowWhoseFieldHasTheKeyboardAndItsTextSelected) {
    build({{"new phrase", "x"}, {"new phrase 2", "y"}});
    click(section->addButton());
    EXPECT_EQ(stored().at("new phrase 3"), "Replacement");
    EXPECT_EQ(QApplication::focusWidget(), &heardField("new phrase 3"));
    EXPECT_EQ(heardField("new phrase 3").selectedText(), QStringLiteral("new phrase 3"));
    EXPECT_THAT(toasts, ElementsAre("Correction added"));
}

TEST_F(CorrectionsSectionTest, aNewCorrection_isTypedWithTabFromPhraseToReplacement) {
    build({{"zulu", "Alpha"}});
    click(section->addButton());
    QTest::keyClicks(QApplication::focusWidget(), QStringLiteral("Cooper Netties"));
    press(Qt::Key_Tab);
    EXPECT_EQ(QApplication::focusWidget(), &replacementField("cooper netties"));
    EXPECT_EQ(replacementField("cooper netties").selectedText(), QStringLiteral("Replacement"));
    QTest::keyClicks(QApplication::focusWidget(), QStringLiteral("Kubernetes"));
    press(Qt::Key_Tab);
    EXPECT_THAT(stored(), ElementsAre(Pair("cooper netties", "Kubernetes"), Pair("zulu", "Alpha")));
    EXPECT_THAT(toasts, ElementsAre("Correction added", "Correction saved", "Correction saved"));
    EXPECT_EQ(QApplication::focusWidget(), &button("cooper netties", Control::deleteVariation));
}

TEST_F(CorrectionsSectionTest, addVariation_makesAFieldInTheGroupThatHasTheKeyboard) {
    build({{"a", "Alpha"}, {"variation", "Beta"}});
    click(button("a", Control::addVariation));
    EXPECT_EQ(stored().at("variation 2"), "Alpha");
    EXPECT_EQ(QApplication::focusWidget(), &heardField("variation 2"));
    EXPECT_EQ(heardField("variation 2").selectedText(), QStringLiteral("variation 2"));
    EXPECT_EQ(&groupOf("variation 2"), &groupOf("a"));
    EXPECT_THAT(toasts, ElementsAre("Variation added"));
}

TEST_F(CorrectionsSectionTest, addingWhileTyping_storesWhatWasTypedFirst) {
    build({{"a", "Alpha"}});
    typeInto(replacementField("a"), "Omega");
    click(button("a", Control::addVariation));
    EXPECT_THAT(stored(), ElementsAre(Pair("a", "Omega"), Pair("variation", "Omega")));
    typeInto(heardField("a"), "b");
    click(section->addButton());
    EXPECT_THAT(stored(), ElementsAre(Pair("b", "Omega"), Pair("new phrase", "Replacement"),
                                      Pair("variation", "Omega")));
}

TEST_F(CorrectionsSectionTest, addingAVariationToAGroupThatWasJustCleared_addsNothing) {
    build({{"a", "Alpha"}, {"b", "Beta"}});
    typeInto(replacementField("a"), "");
    click(button("a", Control::addVariation));
    test::runPendingEvents();
    EXPECT_THAT(stored(), ElementsAre(Pair("b", "Beta")));
    EXPECT_THAT(toasts, ElementsAre("Correction deleted"));
}

// Editing.

TEST_F(CorrectionsSectionTest, return_storesAPhraseAndKeepsTheKeyboard) {
    build({{"a", "Alpha"}, {"b", "Beta"}});
    FieldShell& field = heardField("a");
    typeInto(field, "  Zulu Time ");
    press(Qt::Key_Return);
    EXPECT_THAT(stored(), ElementsAre(Pair("b", "Beta"), Pair("zulu time", "Alpha")));
    EXPECT_EQ(QApplication::focusWidget(), &field);
    EXPECT_EQ(field.text(), QStringLiteral("zulu time"));
    EXPECT_THAT(toasts, ElementsAre("Correction saved"));
}

TEST_F(CorrectionsSectionTest, whileOnlyWalkingThrough_nothingIsSaved) {
    build({{"a", "Alpha"}, {"b", "Beta"}});
    const auto before = defaults.writes().size();
    click(heardField("a"));
    for (int step = 0; step < 12; ++step) {
        press(Qt::Key_Tab);
    }
    EXPECT_EQ(defaults.writes().size(), before);
    EXPECT_THAT(toasts, IsEmpty());
}

TEST_F(CorrectionsSectionTest, escape_takesBackWhatWasTyped) {
    build({{"a", "Alpha"}});
    typeInto(heardField("a"), "zzz");
    press(Qt::Key_Escape);
    EXPECT_EQ(heardField("a").text(), QStringLiteral("a"));
    press(Qt::Key_Tab);
    EXPECT_THAT(stored(), ElementsAre(Pair("a", "Alpha")));
    EXPECT_THAT(toasts, IsEmpty());
}

TEST_F(CorrectionsSectionTest, aReplacementOfTwoPhrases_changesForBoth) {
    build({{"a", "Alpha"}, {"b", "Alpha"}, {"c", "Gamma"}});
    typeInto(replacementField("a"), "Omega");
    press(Qt::Key_Return);
    EXPECT_THAT(stored(), ElementsAre(Pair("a", "Omega"), Pair("b", "Omega"), Pair("c", "Gamma")));
    EXPECT_THAT(shownReplacements(), ElementsAre("Gamma", "Omega"));
    EXPECT_EQ(QApplication::focusWidget(), &replacementField("a"));
}

TEST_F(CorrectionsSectionTest, aReplacementThatMovesItsGroup_keepsTheCaretWhereTheKeyboardWent) {
    build({{"a", "Alpha"}, {"b", "Beta"}});
    typeInto(replacementField("a"), "Zulu");
    click(heardField("b"));
    EXPECT_THAT(shownReplacements(), ElementsAre("Beta", "Zulu"));
    EXPECT_EQ(QApplication::focusWidget(), &heardField("b"));
    QTest::keyClicks(QApplication::focusWidget(), QStringLiteral("x"));
    EXPECT_EQ(heardField("b").text().length(), 2);
}

TEST_F(CorrectionsSectionTest, whileTheMouseIsPressedInAField_theRowsStayWhereTheyAre) {
    build({{"a", "Alpha"}, {"b", "Beta"}});
    typeInto(replacementField("a"), "Zulu");
    FieldShell& field = heardField("b");
    const QPoint place = field.mapTo(window.get(), QPoint(20, 14));
    const int y = field.mapTo(section, QPoint(0, 0)).y();
    QTest::mousePress(window->windowHandle(), Qt::LeftButton, Qt::NoModifier, place);
    EXPECT_EQ(stored().at("a"), "Zulu");
    EXPECT_EQ(field.mapTo(section, QPoint(0, 0)).y(), y);
    QTest::mouseMove(window->windowHandle(), place + QPoint(1, 0));
    QTest::mouseRelease(window->windowHandle(), Qt::LeftButton, Qt::NoModifier, place + QPoint(1, 0));
    test::runPendingEvents();
    EXPECT_THAT(shownReplacements(), ElementsAre("Beta", "Zulu"));
    EXPECT_LT(field.mapTo(section, QPoint(0, 0)).y(), y);
    EXPECT_EQ(QApplication::focusWidget(), &field);
    EXPECT_FALSE(field.hasSelectedText());
}

TEST_F(CorrectionsSectionTest, aReplacementThatJoinsAnotherGroup_leadsTheKeyboardThere) {
    build({{"a", "Alpha"}, {"b", "Beta"}});
    typeInto(replacementField("a"), "Beta");
    press(Qt::Key_Return);
    EXPECT_THAT(shownReplacements(), ElementsAre("Beta"));
    EXPECT_EQ(QApplication::focusWidget(), &replacementField("a"));
}

TEST_F(CorrectionsSectionTest, aPhraseThatIsCleared_isDeletedAlone) {
    build({{"a", "Alpha"}, {"b", "Alpha"}});
    typeInto(heardField("a"), " ");
    press(Qt::Key_Return);
    EXPECT_THAT(stored(), ElementsAre(Pair("b", "Alpha")));
    EXPECT_EQ(QApplication::focusWidget(), &heardField("b"));
    EXPECT_THAT(toasts, ElementsAre("Correction deleted"));
}

TEST_F(CorrectionsSectionTest, aReplacementThatIsCleared_deletesItsGroup) {
    build({{"a", "Alpha"}, {"b", "Alpha"}, {"c", "Gamma"}});
    typeInto(replacementField("a"), "");
    press(Qt::Key_Tab);
    EXPECT_THAT(stored(), ElementsAre(Pair("c", "Gamma")));
    EXPECT_THAT(shownReplacements(), ElementsAre("Gamma"));
    EXPECT_THAT(toasts, ElementsAre("Correction deleted"));
}

TEST_F(CorrectionsSectionTest, aReload_leavesCaretSelectionAndTextOfTheFieldBeingTypedIn) {
    build({{"b", "Beta"}});
    FieldShell& field = heardField("b");
    typeInto(field, "half a wo");
    field.setSelection(1, 3);
    dictionary.setCorrection("a", "Alpha");
    section->reloadCorrectionsUI();
    test::runPendingEvents();
    EXPECT_EQ(QApplication::focusWidget(), &field);
    EXPECT_EQ(field.text(), QStringLiteral("half a wo"));
    EXPECT_EQ(field.selectionStart(), 1);
    EXPECT_EQ(field.selectionLength(), 3);
    EXPECT_THAT(shownReplacements(), ElementsAre("Alpha", "Beta"));
}

TEST_F(CorrectionsSectionTest, whenItGoesOutOfSightDuringAnEdit_theEditIsStored) {
    build({{"a", "Alpha"}});
    typeInto(heardField("a"), "typed and left");
    window->hide();
    EXPECT_THAT(stored(), ElementsAre(Pair("typed and left", "Alpha")));
}

TEST_F(CorrectionsSectionTest, whenItIsAskedToEndEditing_theEditIsStored) {
    build({{"a", "Alpha"}});
    typeInto(replacementField("a"), "typed and left");
    section->endEditing();
    EXPECT_THAT(stored(), ElementsAre(Pair("a", "typed and left")));
}

TEST_F(CorrectionsSectionTest, aClickBesideTheFields_endsEditing) {
    build({{"a", "Alpha"}, {"b", "Alpha"}});
    typeInto(heardField("a"), "c");
    QTest::mouseClick(&section->list(), Qt::LeftButton, Qt::NoModifier,
                      QPoint(section->list().width() - 10, section->list().height() - 5));
    EXPECT_THAT(stored(), ElementsAre(Pair("b", "Alpha"), Pair("c", "Alpha")));
}

// Deleting.

TEST_F(CorrectionsSectionTest, deleteVariation_deletesThatPhraseOnly) {
    build({{"a", "Alpha"}, {"b", "Alpha"}});
    click(button("a", Control::deleteVariation));
    EXPECT_THAT(stored(), ElementsAre(Pair("b", "Alpha")));
    EXPECT_THAT(toasts, ElementsAre("Correction deleted"));
}

TEST_F(CorrectionsSectionTest, deleteCorrection_deletesTheWholeGroup) {
    build({{"a", "Alpha"}, {"b", "Alpha"}, {"c", "Gamma"}});
    click(button("a", Control::deleteCorrection));
    EXPECT_THAT(stored(), ElementsAre(Pair("c", "Gamma")));
    EXPECT_THAT(toasts, ElementsAre("Correction deleted"));
}

TEST_F(CorrectionsSectionTest, deletingWhatIsBeingTyped_deletesWhatIsStored) {
    build({{"a", "Alpha"}, {"b", "Beta"}});
    typeInto(heardField("a"), "half a wo");
    click(button("a", Control::deleteVariation));
    EXPECT_THAT(stored(), ElementsAre(Pair("b", "Beta")));
}

TEST_F(CorrectionsSectionTest, deletingWithTheKeyboard_leadsToWhatComesNext) {
    build({{"a", "Alpha"}, {"b", "Beta"}, {"c", "Gamma"}});
    button("b", Control::deleteCorrection).setFocus(Qt::TabFocusReason);
    press(Qt::Key_Space);
    EXPECT_EQ(QApplication::focusWidget(), &button("c", Control::deleteCorrection));
    press(Qt::Key_Space);
    EXPECT_EQ(QApplication::focusWidget(), &button("a", Control::deleteCorrection));
    press(Qt::Key_Space);
    EXPECT_THAT(stored(), IsEmpty());
    EXPECT_EQ(QApplication::focusWidget(), &section->addButton());
}

} // namespace
} // namespace tovik

// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/Window/MainWindowController.h"

#include "UserInterface/Controls/Buttons.h"
#include "UserInterface/Controls/Fields.h"
#include "UserInterface/Corrections/CorrectionsSection.h"
#include "UserInterface/Permissions/PermissionsSection.h"
#include "UserInterface/Settings/CleanupSection.h"
#include "UserInterface/Settings/TranslationSection.h"
#include "UserInterface/Window/Accordion.h"
#include "UserInterface/Window/HeaderView.h"
#include "UserInterface/Window/MainWindowView.h"
#include "UserInterface/Window/ToastView.h"
#include "ui/WindowStage.h"

#include <QAccessible>
#include <QApplication>
#include <QCheckBox>
#include <QLabel>
#include <QTest>

#include <gmock/gmock.h>

#include <algorithm>
#include <nlohmann/json.hpp>

namespace tovik {
namespace {

using testing::ElementsAre;

struct MainWindowControllerTest : testing::Test {
    test::WindowStage stage;

    void build() {
        stage.build();
        QCoreApplication::processEvents();
    }
    [[nodiscard]] MainWindowController& controller() { return *stage.controller; }
    [[nodiscard]] FixedWidthWindow& window() { return controller().window(); }
    [[nodiscard]] MainWindowView& view() { return controller().view(); }
    AccordionCard& card(const char* title) {
        return *controller().accordion().card(QString::fromLatin1(title));
    }

    std::vector<std::string> cardsFromTopToBottom() {
        auto cards = view().document().findChildren<AccordionCard*>();
        std::sort(cards.begin(), cards.end(), [](auto* a, auto* b) { return a->y() < b->y(); });
        std::vector<std::string> titles;
        for (const auto* each : cards) {
            titles.push_back(each->objectName().toStdString());
        }
        return titles;
    }
};

TEST_F(MainWindowControllerTest, whenAllIsGranted_everySectionIsCollapsedAndPermissionsAreLast) {
    build();
    EXPECT_TRUE(window().isVisible());
    EXPECT_THAT(cardsFromTopToBottom(),
                ElementsAre("Corrections", "Cleanup", "Translation", "Transcript History", "Permissions"));
    for (const char* title : {"Corrections", "Cleanup", "Translation", "Transcript History", "Permissions"}) {
        EXPECT_TRUE(card(title).isContentHidden()) << title;
        EXPECT_EQ(card(title).width(), 440) << title;
        EXPECT_EQ(card(title).height(), 62) << title;
    }
}

TEST_F(MainWindowControllerTest, whenSomethingIsPending_permissionsAreFirstAndOpen) {
    stage.leavePermissionsPending();
    build();
    EXPECT_THAT(cardsFromTopToBottom(),
                ElementsAre("Permissions", "Corrections", "Cleanup", "Translation", "Transcript History"));
    EXPECT_FALSE(card("Permissions").isContentHidden());
    EXPECT_TRUE(card("Corrections").isContentHidden());
}

TEST_F(MainWindowControllerTest, onceEverythingIsGranted_theOrderStays) {
    stage.leavePermissionsPending();
    build();
    stage.authorization.setMicrophoneStatus(3);
    stage.authorization.setSpeechStatus(3);
    stage.authorization.setTrusted(true);
    controller().refreshPermissions();
    EXPECT_EQ(cardsFromTopToBottom().front(), "Permissions");
    EXPECT_EQ(view().findChild<PermissionRowView*>()->statusLabel().text(), QStringLiteral("Granted"));
}

TEST_F(MainWindowControllerTest, itsWidthIsFixedAndItsHeightBounded) {
    build();
    EXPECT_EQ(window().lockedFrameWidth(), 500);
    EXPECT_EQ(window().minimumSize(), QSize(500, 560));
    EXPECT_EQ(window().maximumSize(), QSize(500, 760));
    struct Row {
        QSize dragged;
        QSize becomes;
    };
    for (const Row& row :
         {Row{{900, 300}, {500, 560}}, Row{{500, 1000}, {500, 760}}, Row{{120, 600}, {500, 600}},
          Row{{500, 560}, {500, 560}}, Row{{500, 760}, {500, 760}}}) {
        window().resize(row.dragged);
        EXPECT_EQ(window().size(), row.becomes) << row.dragged.width() << " x " << row.dragged.height();
    }
}

TEST_F(MainWindowControllerTest, toAssistivePrograms_isAWindow) {
    build();
    EXPECT_EQ(QAccessible::queryAccessibleInterface(&window())->role(), QAccessible::Window);
}

TEST_F(MainWindowControllerTest, whenPresented_isSetBackToItsDefaultFrameOnceTheEventIsDone) {
    build();
    window().setFrame({10, 10, 500, 570});
    window().hide();
    controller().present();
    EXPECT_FALSE(window().isVisible());
    stage.time.runPending();
    EXPECT_TRUE(window().isVisible());
    EXPECT_EQ(window().frame(), (Rect{710, 215, 500, 680}));
}

TEST_F(MainWindowControllerTest, whenPresented_asksTheDesktopForTheFront) {
    build();
    stage.workspace.activated.clear();
    controller().present();
    stage.time.runPending();
    ASSERT_EQ(stage.workspace.activated.size(), 1U);
    EXPECT_EQ(stage.workspace.activated.front().application.processIdentifier, 4242);
    EXPECT_EQ(stage.workspace.activated.front().application.window, window().winId());
    EXPECT_NE(stage.workspace.activated.front().options & kActivateIgnoringOtherApps, 0U);
}

TEST_F(MainWindowControllerTest, whenMinimised_presentBringsItBack) {
    build();
    window().setWindowState(Qt::WindowMinimized);
    controller().present();
    stage.time.runPending();
    EXPECT_FALSE(window().isMinimized());
}

TEST_F(MainWindowControllerTest, withoutAScreen_presentKeepsTheFrame) {
    build();
    window().setFrame({10, 10, 500, 570});
    stage.screens.setScreens({});
    controller().present();
    stage.time.runPending();
    EXPECT_EQ(window().frame(), (Rect{10, 10, 500, 570}));
}

TEST_F(MainWindowControllerTest, whenGoneBeforeItWasPresented_nothingHappens) {
    build();
    controller().present();
    stage.controller.reset();
    stage.time.runPending();
    EXPECT_EQ(stage.time.pendingCount(), 0U);
}

TEST_F(MainWindowControllerTest, whenClosed_isOnlyHiddenAndNothingRuns) {
    build();
    EXPECT_FALSE(window().close());
    EXPECT_FALSE(window().isVisible());
    stage.time.advance(Seconds{1});
    EXPECT_EQ(stage.time.pendingCount(), 0U);
}

TEST_F(MainWindowControllerTest, whenASectionOpens_theWindowGrowsDownwardsOverTheAnimation) {
    build();
    const Rect before = window().frame();
    card("Permissions").titleButton().click();
    stage.time.advance(Seconds{0.1});
    EXPECT_GT(window().frame().height, before.height);
    stage.time.advance(Seconds{0.1});
    QCoreApplication::processEvents();
    const Rect after = window().frame();
    EXPECT_EQ(after.height, 760);
    EXPECT_EQ(after.y, before.y);
    EXPECT_EQ(after.x, before.x);

    card("Permissions").titleButton().click();
    stage.time.advance(Seconds{0.2});
    EXPECT_EQ(window().frame(), before);
}

TEST_F(MainWindowControllerTest, theHeightFitsWhatItShows) {
    build();
    EXPECT_EQ(window().frame().height, view().stackFittingHeight() + 76 + 20);
    controller().accordion().setAccordion(QStringLiteral("Cleanup"), true, false);
    EXPECT_EQ(window().frame().height, view().stackFittingHeight() + 76 + 20);
    QCoreApplication::processEvents();
    // All of it is there: there is nothing to scroll.
    view().setScrollOffset(1000);
    EXPECT_EQ(view().scrollOffset(), 0);
}

TEST_F(MainWindowControllerTest, withEachCorrection_isAtOnceAsHighAsWhatItShows) {
    stage.dictionary.setDictionary({});
    build();
    controller().accordion().setAccordion(QString::fromLatin1(kCorrectionsSection), true, false);
    QCoreApplication::processEvents();
    const double before = window().frame().height;
    controller().corrections().editor().addCorrectionRow();
    const double after = window().frame().height;
    EXPECT_EQ(after, before + theme::kShellHeight);
    QCoreApplication::processEvents();
    EXPECT_EQ(after, view().stackFittingHeight() + 76 + 20);
}

TEST_F(MainWindowControllerTest, whenASectionOpensWithAnExplanation_isAtOnceAsHighAsWhatItShows) {
    build();
    for (const bool opened : {true, false}) {
        controller().accordion().setAccordion(QString::fromLatin1(kTranslationSection), opened, false);
        QCoreApplication::processEvents();
    }
    stage.translator.missing =
        "To translate on this machine, install the packages apertium and apertium-eng-spa.";
    controller().accordion().setAccordion(QString::fromLatin1(kTranslationSection), true, false);
    const double height = window().frame().height;
    QCoreApplication::processEvents();
    EXPECT_EQ(height, std::min(view().stackFittingHeight() + 76.0 + 20, mainWindowMaxHeight));
}

TEST_F(MainWindowControllerTest, whenTranslationGoesMissing_isAtOnceAsHighAsWhatItShows) {
    build();
    controller().accordion().setAccordion(QString::fromLatin1(kTranslationSection), true, false);
    QCoreApplication::processEvents();
    const double before = window().frame().height;
    stage.translator.missing =
        "To translate on this machine, install the packages apertium and apertium-eng-spa.";
    controller().translation().refresh();
    const double after = window().frame().height;
    EXPECT_GT(after, before);
    QCoreApplication::processEvents();
    EXPECT_EQ(after, std::min(view().stackFittingHeight() + 76.0 + 20, mainWindowMaxHeight));
}

TEST_F(MainWindowControllerTest, atLaunch_theScrollBarShowsHowMuchIsInSight) {
    stage.leavePermissionsPending();
    build();
    const auto* bar = view().findChild<OverlayScrollBar*>(QString(), Qt::FindDirectChildrenOnly);
    ASSERT_TRUE(bar->isVisible());
    EXPECT_EQ(bar->pageStep(), view().height() - view().header().height());
}

TEST_F(MainWindowControllerTest, noTextInAnOpenSectionIsCutOff) {
    stage.leavePermissionsPending();
    build();
    for (const char* title : {"Corrections", "Cleanup", "Translation", "Transcript History"}) {
        controller().accordion().setAccordion(QString::fromLatin1(title), true, false);
    }
    QCoreApplication::processEvents();
    for (const auto* label : view().document().findChildren<QLabel*>()) {
        if (label->wordWrap()) {
            EXPECT_GE(label->height(), label->heightForWidth(label->width())) << label->text().toStdString();
        }
    }
}

TEST_F(MainWindowControllerTest, theHeaderSaysWhatTheProgramDoes) {
    build();
    std::vector<std::string> texts;
    auto labels = view().header().findChildren<QLabel*>();
    std::stable_sort(labels.begin(), labels.end(), [this](auto* a, auto* b) {
        const QPoint one = a->mapTo(&view(), QPoint(0, a->height() / 2));
        const QPoint other = b->mapTo(&view(), QPoint(0, b->height() / 2));
        return one.y() != other.y() ? one.y() < other.y() : one.x() < other.x();
    });
    for (const auto* label : labels) {
        texts.push_back(label->text().toStdString());
    }
    EXPECT_THAT(texts, ElementsAre("Tovik Record", "Fast dictation with hands-free recording",
                                   "Ready to dictate", "Dictate", "Hold Fn", "Hands-Free Record",
                                   "Fn + Shift", "Stop Hands-Free", "Fn + Shift"));
    EXPECT_TRUE(view().header().findChild<TovikTinyWaveformView*>()->isAnimating());
}

TEST_F(MainWindowControllerTest, moreOptions_popsUpTheStatusMenuBelowTheButton) {
    build();
    auto& button = view().header().moreOptionsButton();
    EXPECT_EQ(button.accessibleName(), QStringLiteral("More options"));
    EXPECT_EQ(button.symbolName(), QStringLiteral("ellipsis.circle"));
    button.click();
    ASSERT_EQ(stage.menuPopUps.size(), 1U);
    EXPECT_EQ(stage.menuPopUps.front(), button.mapToGlobal(QPoint(0, button.height() + 4)));
}

TEST_F(MainWindowControllerTest, theFooterNamesTheVersionAndLeadsToTheMaker) {
    build();
    auto* footer = view().findChild<FooterView*>();
    EXPECT_EQ(footer->findChild<QLabel*>()->text(), QStringLiteral("Tovik Record v1.3.6"));
    EXPECT_EQ(footer->updatesButton().text(), QStringLiteral("Check for updates"));
    EXPECT_EQ(footer->updatesButton().accessibleDescription(),
              QStringLiteral("Open the Tovik Record download page to check for the latest version"));
    EXPECT_EQ(footer->websiteButton().text(), QStringLiteral("Tovik AI"));
    EXPECT_EQ(footer->websiteButton().symbolName(), QStringLiteral("waveform"));
    EXPECT_EQ(footer->websiteButton().accessibleName(), QStringLiteral("Tovik AI website"));
    EXPECT_THAT(footer->websiteButton().accessibleDescription().toStdString(),
                testing::HasSubstr("tovik.example"));
    footer->updatesButton().click();
    footer->websiteButton().click();
    EXPECT_THAT(stage.workspace.openedUrls,
                ElementsAre("https://tovik.example/voice#download", "https://tovik.example/"));
}

TEST_F(MainWindowControllerTest, whileScrolling_theFadeBandFades) {
    stage.leavePermissionsPending();
    build();
    controller().accordion().setAccordion(QStringLiteral("Corrections"), true, false);
    controller().accordion().setAccordion(QStringLiteral("Cleanup"), true, false);
    QCoreApplication::processEvents();
    struct Row {
        int offset;
        double alpha;
    };
    for (const Row& row : {Row{0, 1}, Row{10, 1}, Row{44, 0.5}, Row{78, 0}}) {
        view().setScrollOffset(row.offset);
        ASSERT_EQ(view().scrollOffset(), row.offset);
        EXPECT_DOUBLE_EQ(view().headerFadeView().alpha(), row.alpha) << row.offset;
    }
}

TEST_F(MainWindowControllerTest, aPermissionButton_leadsToItsRequest) {
    stage.leavePermissionsPending();
    build();
    auto rows = view().findChildren<PermissionRowView*>();
    for (auto* row : rows) {
        if (row->permission() == TovikVoicePermission::speech) {
            row->actionButton().click();
        }
    }
    EXPECT_EQ(stage.authorization.openSpeechRequests(), 1U);
    stage.authorization.answerSpeechRequest(3);
    stage.time.runPending();
    EXPECT_EQ(view().toast().findChild<QLabel*>()->text(), QStringLiteral("Speech granted"));
}

TEST_F(MainWindowControllerTest, everyControlIsReachedByTabInVisualOrder) {
    stage.leavePermissionsPending();
    build();
    window().activateWindow();
    std::vector<std::string> names;
    for (int step = 0; step < 40; ++step) {
        QTest::keyClick(QApplication::focusWidget() ? QApplication::focusWidget() : &window(), Qt::Key_Tab);
        const QWidget* focused = QApplication::focusWidget();
        ASSERT_NE(focused, nullptr);
        const auto name = focused->accessibleName().toStdString();
        if (!names.empty() && name == names.front()) {
            break;
        }
        names.push_back(name);
    }
    EXPECT_THAT(names, ElementsAre("More options", "Permissions section", "Permissions section",
                                   "Microphone permission action", "Speech Recognition permission action",
                                   "Accessibility permission action", "Corrections section",
                                   "Corrections section", "Cleanup section", "Cleanup section",
                                   "Translation section", "Translation section", "Transcript History section",
                                   "Transcript History section", "Check for updates", "Tovik AI website"));
}

TEST_F(MainWindowControllerTest, everyButtonHasANameAndHelp) {
    build();
    for (const auto* button : window().findChildren<QPushButton*>()) {
        EXPECT_FALSE(button->accessibleName().isEmpty()) << button->text().toStdString();
        EXPECT_FALSE(button->accessibleDescription().isEmpty()) << button->accessibleName().toStdString();
    }
}

TEST_F(MainWindowControllerTest, aSettingThatIsChanged_isSaidInAToast) {
    build();
    controller().accordion().setAccordion(QStringLiteral("Cleanup"), true, false);
    controller().cleanup().cleanupToggleButton().click();
    EXPECT_EQ(view().toast().findChild<QLabel*>()->text(), QStringLiteral("Cleanup on"));
    controller().translation().translationToggleButton().click();
    EXPECT_EQ(view().toast().findChild<QLabel*>()->text(), QStringLiteral("Translation on"));
    controller().corrections().addButton().click();
    EXPECT_EQ(view().toast().findChild<QLabel*>()->text(), QStringLiteral("Correction added"));
}

TEST_F(MainWindowControllerTest, whenClosedDuringAnEdit_theEditIsStored) {
    build();
    controller().accordion().setAccordion(QStringLiteral("Corrections"), true, false);
    window().activateWindow();
    controller().corrections().addButton().click();
    QTest::keyClicks(QApplication::focusWidget(), QStringLiteral("typed and left"));
    window().close();
    EXPECT_EQ(stage.dictionary.getDictionary().at("typed and left"), "Replacement");
}

TEST_F(MainWindowControllerTest, whenTheProgramEndsDuringAnEdit_theEditIsStored) {
    build();
    controller().accordion().setAccordion(QStringLiteral("Corrections"), true, false);
    window().activateWindow();
    controller().corrections().addButton().click();
    QTest::keyClicks(QApplication::focusWidget(), QStringLiteral("typed and left"));
    stage.controller.reset();
    EXPECT_EQ(stage.dictionary.getDictionary().at("typed and left"), "Replacement");
}

TEST_F(MainWindowControllerTest, whenASectionIsClosedDuringAnEdit_theEditIsStored) {
    build();
    controller().accordion().setAccordion(QStringLiteral("Cleanup"), true, false);
    window().activateWindow();
    FieldShell& field = controller().cleanup().fillerWordsField();
    field.setFocus();
    field.selectAll();
    QTest::keyClicks(&field, QStringLiteral("well, like"));
    controller().accordion().setAccordion(QStringLiteral("Cleanup"), false, false);
    EXPECT_EQ(stage.defaults.string("TovikVoiceFillerWords"), "well, like");
}

TEST_F(MainWindowControllerTest, whenAnotherProcessChangesSettings_theSectionsShowThem) {
    build();
    EXPECT_FALSE(controller().cleanup().cleanupToggleButton().isChecked());
    stage.defaults.set("TovikVoiceRemoveFillerWords", true);
    stage.defaults.set("TovikVoiceFillerWords", "like");
    stage.defaults.set("TranslationEnabled", true);
    stage.defaultsChanges.announce();
    EXPECT_TRUE(controller().cleanup().cleanupToggleButton().isChecked());
    EXPECT_EQ(controller().cleanup().fillerWordsField().text(), QStringLiteral("like"));
    EXPECT_TRUE(controller().translation().translationToggleButton().isChecked());
}

TEST_F(MainWindowControllerTest, whenItIsGone_nobodyAsksForSettings) {
    build();
    EXPECT_TRUE(stage.defaultsChanges.isObserved());
    stage.controller.reset();
    EXPECT_FALSE(stage.defaultsChanges.isObserved());
}

TEST_F(MainWindowControllerTest, aLongListOfCorrections_scrollsInsteadOfBeingSqueezed) {
    TranscriptionDictionary::Mapping mapping;
    for (int number = 0; number < 100; ++number) {
        mapping.emplace("heard " + std::to_string(number), "Meant " + std::to_string(number));
    }
    stage.dictionary.setDictionary(mapping);
    build();
    controller().accordion().setAccordion(QStringLiteral("Corrections"), true, false);
    QCoreApplication::processEvents();
    EXPECT_GT(card("Corrections").height(), 3500);
    view().setScrollOffset(1000);
    EXPECT_EQ(view().scrollOffset(), 1000);
}

TEST_F(MainWindowControllerTest, inAnyWidth_theColumnStaysInTheMiddle) {
    build();
    view().resize(800, 680);
    QCoreApplication::processEvents();
    const AccordionCard& first = card("Corrections");
    EXPECT_EQ(first.width(), 440);
    EXPECT_EQ(first.mapTo(&view(), QPoint(0, 0)).x(), 180);
}

TEST_F(MainWindowControllerTest, fromRightToLeft_isMirrored) {
    QApplication::setLayoutDirection(Qt::RightToLeft);
    build();
    const auto& chevron = card("Corrections").chevron();
    EXPECT_EQ(chevron.mapTo(&card("Corrections"), QPoint(0, 0)).x(), 20);
    EXPECT_LT(view().header().moreOptionsButton().x(), 100);
    QApplication::setLayoutDirection(Qt::LeftToRight);
}

} // namespace
} // namespace tovik

// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/Settings/TranslationSection.h"

#include "support/EventLoop.h"
#include "support/FakeTextTranslator.h"
#include "support/MemoryUserDefaults.h"

#include <QApplication>
#include <QCheckBox>
#include <QLabel>
#include <QTest>
#include <QWheelEvent>

#include <gmock/gmock.h>

#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace tovik {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct TranslationSectionTest : testing::Test {
    test::MemoryUserDefaults defaults;
    test::FakeTextTranslator translator;
    std::vector<std::string> toasts;
    std::unique_ptr<TranslationSection> section;

    void build() {
        section = std::make_unique<TranslationSection>(TranslationSettings(
            translator, defaults, [this](const std::string& text) { toasts.push_back(text); }));
        section->resize(400, 120);
        section->show();
        QApplication::setActiveWindow(section.get());
        test::runPendingEvents();
    }
    [[nodiscard]] QCheckBox& toggle() const { return section->translationToggleButton(); }
    [[nodiscard]] LanguagePopUp& source() const { return section->sourceLanguagePopup(); }
    [[nodiscard]] LanguagePopUp& target() const { return section->targetLanguagePopup(); }
};

TEST_F(TranslationSectionTest, atFirst_isOffFromEnglishToSpanish) {
    build();
    EXPECT_FALSE(toggle().isChecked());
    EXPECT_TRUE(toggle().isEnabled());
    EXPECT_EQ(source().currentText(), QStringLiteral("English"));
    EXPECT_EQ(target().currentText(), QStringLiteral("Spanish"));
    EXPECT_FALSE(source().isEnabled());
    EXPECT_FALSE(target().isEnabled());
    EXPECT_THAT(defaults.writes(), IsEmpty());
}

TEST_F(TranslationSectionTest, everyControlSaysWhatItIs) {
    build();
    EXPECT_EQ(toggle().text(), QStringLiteral("Translate after dictation"));
    EXPECT_EQ(toggle().accessibleDescription(),
              QStringLiteral("Translate dictated text after transcription"));
    EXPECT_EQ(source().accessibleName(), QStringLiteral("Source language"));
    EXPECT_EQ(target().accessibleName(), QStringLiteral("Target language"));
    EXPECT_EQ(source().count(), 20);
    EXPECT_EQ(source().itemText(1), QStringLiteral("Chinese (Simplified)"));
    EXPECT_EQ(source().itemData(1).toString(), QStringLiteral("zh-Hans"));
    EXPECT_EQ(source().width(), 120);
    EXPECT_EQ(source().height(), 28);
    EXPECT_TRUE(section->explanationLabel().isHidden());
}

TEST_F(TranslationSectionTest, theSwitch_isStoredAndSaidAndFreesTheLanguages) {
    build();
    QTest::mouseClick(&toggle(), Qt::LeftButton);
    EXPECT_EQ(defaults.boolean("TranslationEnabled"), true);
    EXPECT_TRUE(source().isEnabled());
    EXPECT_TRUE(target().isEnabled());
    QTest::mouseClick(&toggle(), Qt::LeftButton);
    EXPECT_EQ(defaults.boolean("TranslationEnabled"), false);
    EXPECT_FALSE(source().isEnabled());
    EXPECT_FALSE(target().isEnabled());
    EXPECT_THAT(toasts, ElementsAre("Translation on", "Translation off"));
}

TEST_F(TranslationSectionTest, aLanguageThatIsChosenWithTheKeyboard_isStoredAndSaid) {
    defaults.set("TranslationEnabled", true);
    build();
    source().setFocus(Qt::TabFocusReason);
    QTest::keyClick(&source(), Qt::Key_Down);
    EXPECT_EQ(defaults.string("TranslationSourceLanguage"), "fr");
    QTest::keyClick(&source(), Qt::Key_Tab);
    EXPECT_EQ(QApplication::focusWidget(), &target());
    QTest::keyClick(&target(), Qt::Key_Up);
    EXPECT_EQ(defaults.string("TranslationTargetLanguage"), "ru");
    EXPECT_THAT(toasts, ElementsAre("Source language saved", "Target language saved"));
}

TEST_F(TranslationSectionTest, theWheel_changesNoLanguage) {
    defaults.set("TranslationEnabled", true);
    build();
    source().setFocus(Qt::TabFocusReason);
    QWheelEvent turn(QPointF(5, 5), source().mapToGlobal(QPointF(5, 5)), {}, QPoint(0, -120), Qt::NoButton,
                     Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(&source(), &turn);
    EXPECT_EQ(source().currentText(), QStringLiteral("English"));
    EXPECT_FALSE(defaults.string("TranslationSourceLanguage"));
}

TEST_F(TranslationSectionTest, withoutAService_nothingCanBeChangedAndTheReasonStandsThere) {
    translator.missing = "No translator is installed.";
    defaults.set("TranslationEnabled", true);
    build();
    EXPECT_EQ(toggle().text(), QStringLiteral("Translate after dictation (requires macOS 15+)"));
    EXPECT_FALSE(toggle().isEnabled());
    EXPECT_TRUE(toggle().isChecked());
    EXPECT_FALSE(source().isEnabled());
    EXPECT_FALSE(target().isEnabled());
    EXPECT_TRUE(section->explanationLabel().isVisible());
    EXPECT_EQ(section->explanationLabel().text(), QStringLiteral("No translator is installed."));
    QTest::mouseClick(&toggle(), Qt::LeftButton);
    EXPECT_EQ(defaults.boolean("TranslationEnabled"), true);
    EXPECT_THAT(toasts, IsEmpty());
}

TEST_F(TranslationSectionTest, whenAServiceComes_theNextLookShowsIt) {
    translator.missing = "No translator is installed.";
    build();
    section->hide();
    translator.missing.reset();
    int heightChanges = 0;
    QObject::connect(section.get(), &TranslationSection::heightChanged,
                     [&heightChanges] { ++heightChanges; });
    section->show();
    EXPECT_TRUE(toggle().isEnabled());
    EXPECT_EQ(toggle().text(), QStringLiteral("Translate after dictation"));
    EXPECT_TRUE(section->explanationLabel().isHidden());
    EXPECT_EQ(heightChanges, 1);
}

TEST_F(TranslationSectionTest, aStoredLanguageThatIsUnknown_isShownButNotSelected) {
    defaults.set("TranslationSourceLanguage", "xx");
    build();
    EXPECT_EQ(source().currentIndex(), -1);
    EXPECT_EQ(source().placeholderText(), QStringLiteral("xx"));
    EXPECT_FALSE(source().selectedIdentifier());
}

TEST_F(TranslationSectionTest, whenTheSettingsChangeElsewhere_showsThem) {
    build();
    defaults.set("TranslationEnabled", true);
    defaults.set("TranslationTargetLanguage", "uk");
    section->refresh();
    EXPECT_TRUE(toggle().isChecked());
    EXPECT_TRUE(target().isEnabled());
    EXPECT_EQ(target().currentText(), QStringLiteral("Ukrainian"));
    EXPECT_THAT(toasts, IsEmpty());
}

} // namespace
} // namespace tovik

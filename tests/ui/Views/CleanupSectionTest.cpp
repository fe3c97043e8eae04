// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/Settings/CleanupSection.h"

#include "UserInterface/Controls/Fields.h"
#include "support/EventLoop.h"
#include "support/MemoryUserDefaults.h"
#include "support/RecordingLog.h"

#include <QApplication>
#include <QCheckBox>
#include <QLabel>
#include <QTest>

#include <gmock/gmock.h>

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace tovik {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr auto kDefault = "kind of, sort of, um, uh, erm, hmm";

struct CleanupSectionTest : testing::Test {
    test::MemoryUserDefaults defaults;
    test::RecordingLog log;
    FillerWords fillerWords{defaults};
    std::vector<std::string> toasts;
    std::unique_ptr<CleanupSection> section;

    void build() {
        section = std::make_unique<CleanupSection>(CleanupSettings(
            fillerWords, defaults, [this](const std::string& text) { toasts.push_back(text); }));
        section->resize(400, 100);
        section->show();
        QApplication::setActiveWindow(section.get());
        test::runPendingEvents();
    }
    [[nodiscard]] QCheckBox& toggle() const { return section->cleanupToggleButton(); }
    [[nodiscard]] FieldShell& field() const { return section->fillerWordsField(); }
    [[nodiscard]] std::string shown() const { return field().text().toStdString(); }
    void type(const char* text) const {
        QTest::mouseClick(&field(), Qt::LeftButton);
        QTest::keyClick(&field(), Qt::Key_A, Qt::ControlModifier);
        QTest::keyClick(&field(), Qt::Key_Delete);
        QTest::keyClicks(&field(), QString::fromUtf8(text));
    }
};

TEST_F(CleanupSectionTest, showsWhatIsStored) {
    defaults.set("TovikVoiceRemoveFillerWords", true);
    defaults.set("TovikVoiceFillerWords", "um, uh");
    build();
    EXPECT_TRUE(toggle().isChecked());
    EXPECT_EQ(shown(), "um, uh");
}

TEST_F(CleanupSectionTest, atFirst_isOffWithTheDefaultList) {
    build();
    EXPECT_FALSE(toggle().isChecked());
    EXPECT_EQ(shown(), kDefault);
    EXPECT_THAT(toasts, IsEmpty());
}

TEST_F(CleanupSectionTest, everyControlSaysWhatItIsAndDoes) {
    build();
    EXPECT_EQ(toggle().text(), QStringLiteral("Remove filler words"));
    EXPECT_EQ(toggle().accessibleDescription(),
              QStringLiteral("Remove configured filler words after dictation"));
    EXPECT_EQ(field().accessibleName(), QStringLiteral("Filler words"));
    EXPECT_EQ(field().accessibleDescription(),
              QStringLiteral("Comma-separated filler words to remove after dictation"));
    EXPECT_EQ(field().placeholderText(), QStringLiteral("Comma-separated filler words"));
    EXPECT_EQ(section->findChild<QLabel*>()->text(),
              QStringLiteral("Comma-separated. Clear to restore defaults."));
    EXPECT_EQ(field().height(), 28);
}

TEST_F(CleanupSectionTest, aClickAnywhereOnTheSwitch_isStoredAndSaid) {
    build();
    QTest::mouseClick(&toggle(), Qt::LeftButton, Qt::NoModifier, QPoint(toggle().width() - 4, 8));
    EXPECT_EQ(defaults.boolean("TovikVoiceRemoveFillerWords"), true);
    QTest::mouseClick(&toggle(), Qt::LeftButton, Qt::NoModifier, QPoint(6, 10));
    EXPECT_EQ(defaults.boolean("TovikVoiceRemoveFillerWords"), false);
    EXPECT_THAT(toasts, ElementsAre("Cleanup on", "Cleanup off"));
}

TEST_F(CleanupSectionTest, theSwitch_isReachedByTabAndFlippedBySpace) {
    build();
    section->setFocus();
    QTest::keyClick(section.get(), Qt::Key_Tab);
    ASSERT_EQ(QApplication::focusWidget(), &toggle());
    QTest::keyClick(&toggle(), Qt::Key_Space);
    EXPECT_EQ(defaults.boolean("TovikVoiceRemoveFillerWords"), true);
    QTest::keyClick(&toggle(), Qt::Key_Tab);
    EXPECT_EQ(QApplication::focusWidget(), &field());
}

TEST_F(CleanupSectionTest, aListThatIsTyped_isStoredTrimmedWhenEditingEnds) {
    build();
    type("  um,uh  ");
    EXPECT_FALSE(defaults.string("TovikVoiceFillerWords"));
    QTest::keyClick(&field(), Qt::Key_Tab);
    EXPECT_EQ(defaults.string("TovikVoiceFillerWords"), "um,uh");
    EXPECT_EQ(shown(), "um,uh");
    EXPECT_THAT(toasts, ElementsAre("Filler words saved"));
}

TEST_F(CleanupSectionTest, aListThatIsCleared_becomesTheDefault) {
    defaults.set("TovikVoiceFillerWords", "um");
    build();
    type("");
    QTest::keyClick(&field(), Qt::Key_Return);
    EXPECT_EQ(defaults.string("TovikVoiceFillerWords"), kDefault);
    EXPECT_EQ(shown(), kDefault);
    EXPECT_THAT(toasts, ElementsAre("Filler words saved"));
}

TEST_F(CleanupSectionTest, whenItGoesOutOfSightDuringAnEdit_theListIsStored) {
    build();
    type("well");
    section->hide();
    EXPECT_EQ(defaults.string("TovikVoiceFillerWords"), "well");
}

TEST_F(CleanupSectionTest, whenTheSettingsChangeElsewhere_showsThem) {
    build();
    defaults.set("TovikVoiceRemoveFillerWords", true);
    defaults.set("TovikVoiceFillerWords", "like");
    section->refresh();
    EXPECT_TRUE(toggle().isChecked());
    EXPECT_EQ(shown(), "like");
    EXPECT_THAT(toasts, IsEmpty());
}

TEST_F(CleanupSectionTest, whenTheSettingsChangeElsewhereDuringAnEdit_theEditStays) {
    build();
    type("half a wo");
    defaults.set("TovikVoiceFillerWords", "like");
    section->refresh();
    EXPECT_EQ(shown(), "half a wo");
    EXPECT_EQ(field().cursorPosition(), 9);
    QTest::keyClick(&field(), Qt::Key_Escape);
    EXPECT_EQ(shown(), "like");
}

} // namespace
} // namespace tovik

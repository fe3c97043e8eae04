// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Linux/Desktop/QtDesktop.h"

#include <QApplication>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>

#include <functional>

namespace tovik::test {
namespace {

/// Asks a question with the buttons "Open Installer" and "Later", and does this while it is open.
int askAnd(const std::function<void(QMessageBox&)>& react) {
    QtAlert alert;
    QTimer::singleShot(0, qApp, [&] {
        auto* const box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        ASSERT_NE(box, nullptr);
        react(*box);
    });
    return alert.runModal("Finish & go", "Informative <b>text</b>", {"Open & Install", "Later"});
}

TEST(QtAlert, whenAButtonIsClicked_itsIndexIsReturned) {
    EXPECT_EQ(askAnd([](QMessageBox& box) { box.buttons().at(0)->click(); }), 0);
    EXPECT_EQ(askAnd([](QMessageBox& box) { box.buttons().at(1)->click(); }), 1);
}

TEST(QtAlert, whenItShows_allTextsStandAsGiven) {
    (void)askAnd([](QMessageBox& box) {
        EXPECT_EQ(box.text(), "Finish & go");
        EXPECT_EQ(box.informativeText(), "Informative <b>text</b>");
        EXPECT_EQ(box.textFormat(), Qt::PlainText);
        ASSERT_EQ(box.buttons().size(), 2);
        EXPECT_EQ(box.buttons().at(0)->text(), "Open && Install");
        EXPECT_EQ(box.defaultButton(), box.buttons().at(0));
        EXPECT_EQ(box.icon(), QMessageBox::Information);
        box.buttons().at(0)->click();
    });
}

TEST(QtAlert, whenTheTextHoldsACommand_itStandsInOneLineAndCanBeCopied) {
    const std::string command = "flatpak override --user --socket=pulseaudio org.example.App";
    QTimer::singleShot(0, qApp, [&] {
        auto* const box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        ASSERT_NE(box, nullptr);
        const auto* const text = box->findChild<QLabel*>("qt_msgbox_informativelabel");
        ASSERT_NE(text, nullptr);
        EXPECT_GE(text->width(), text->fontMetrics().horizontalAdvance(QString::fromStdString(command)));
        EXPECT_TRUE(text->textInteractionFlags() & Qt::TextSelectableByMouse);
        box->buttons().at(0)->click();
    });
    EXPECT_EQ(QtAlert().runModal("No sound", "Run this:\n\n" + command + "\n\nThen start again.", {"Close"}),
              0);
}

TEST(QtAlert, whenReturnIsPressed_theFirstButtonIsChosen) {
    EXPECT_EQ(askAnd([](QMessageBox& box) { QTest::keyClick(&box, Qt::Key_Return); }), 0);
}

TEST(QtAlert, whenItIsClosedWithoutAButton_thereIsNoAnswer) {
    EXPECT_EQ(askAnd([](QMessageBox& box) { box.close(); }), -1);
    EXPECT_EQ(askAnd([](QMessageBox& box) { QTest::keyClick(&box, Qt::Key_Escape); }), -1);
}

} // namespace
} // namespace tovik::test

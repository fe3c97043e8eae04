// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Linux/Desktop/QtDesktop.h"

#include "Platform/Posix.h"
#include "support/TemporaryFolder.h"

#include <QApplication>
#include <QCursor>
#include <QGuiApplication>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QScreen>
#include <QTest>
#include <QTimer>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <functional>
#include <sstream>
#include <string>
#include <vector>

namespace tovik::test {
namespace {

// ---------------------------------------------------------------------------------------------- the monitors

TEST(QtScreens, whenAMonitorIsThere_itsFramesAreKnownAndItIsTheMainOne) {
    const QtScreens screens;
    const auto* const monitor = QGuiApplication::primaryScreen();
    ASSERT_NE(monitor, nullptr);
    const auto main = screens.mainScreen();
    ASSERT_TRUE(main);
    EXPECT_EQ(main->frame.width, monitor->geometry().width());
    EXPECT_EQ(main->frame.bottom(), monitor->geometry().y() + monitor->geometry().height());
    EXPECT_EQ(main->visibleFrame.height, monitor->availableGeometry().height());
    EXPECT_EQ(screens.screens(), std::vector<Screen>{*main});
}

TEST(QtScreens, whenThePointerMoves_itsPlaceIsKnown) {
    QCursor::setPos(12, 34);
    EXPECT_EQ(QtScreens().pointerLocation(), (Point{12, 34}));
}

// ------------------------------------------------------------------------------------------------- questions

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

// -------------------------------------------------------------------------------------------- other programs

/// Runs a shell line through the launcher and waits for all it writes to standard output.
class QtProcessLauncherTest : public testing::Test {
protected:
    std::string outputOf(const std::string& line, const std::vector<std::string>& arguments = {}) {
        const auto pipe = folder / "pipe";
        EXPECT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
        std::vector<std::string> all{"-c", "exec > " + pipe + "; " + line, "sh"};
        all.insert(all.end(), arguments.begin(), arguments.end());
        const auto launched = launcher.launch("sh", all);
        EXPECT_TRUE(launched);
        // Opening waits for the program, reading for its end.
        return readFile(pipe).value_or("");
    }

    TemporaryFolder folder;
    QtProcessLauncher launcher;
};

TEST_F(QtProcessLauncherTest, whenAProgramIsStarted_itGetsItsArgumentsAsTheyStand) {
    EXPECT_EQ(outputOf("printf '%s|' \"$@\"", {"a b", "", "$HOME", "ü\n"}), "a b||$HOME|ü\n|");
}

TEST_F(QtProcessLauncherTest, whenAProgramIsStarted_itIsInASessionOfItsOwnAndNoChildOfOurs) {
    std::istringstream ids(outputOf("cut -d ' ' -f 4,6 /proc/$$/stat"));
    pid_t parent = 0;
    pid_t session = 0;
    ASSERT_TRUE(ids >> parent >> session);
    EXPECT_NE(parent, ::getpid());
    EXPECT_NE(session, ::getsid(0));
    // There is no child to wait for, now or when the program ends.
    EXPECT_EQ(::waitpid(-1, nullptr, WNOHANG), -1);
    EXPECT_EQ(errno, ECHILD);
}

TEST_F(QtProcessLauncherTest, whenSignalsAreBlockedHere_theProgramStillReceivesThem) {
    sigset_t blocked;
    sigset_t before;
    sigemptyset(&blocked);
    sigaddset(&blocked, SIGTERM);
    ASSERT_EQ(::pthread_sigmask(SIG_BLOCK, &blocked, &before), 0);
    const auto handler = ::signal(SIGPIPE, SIG_IGN);
    const auto state = outputOf("exec grep -E 'SigBlk|SigIgn' /proc/self/status");
    ::signal(SIGPIPE, handler);
    ::pthread_sigmask(SIG_SETMASK, &before, nullptr);
    EXPECT_THAT(state, testing::HasSubstr("SigBlk:\t0000000000000000\n"));
    EXPECT_THAT(state, testing::HasSubstr("SigIgn:\t0000000000000000\n"));
}

TEST_F(QtProcessLauncherTest, whenFilesAreOpenHere_theProgramDoesNotInheritThem) {
    const UnixFd open(::open("/dev/zero", O_RDONLY));
    ASSERT_TRUE(open);
    EXPECT_EQ(outputOf("readlink /proc/$$/fd/* | grep -c /dev/zero"), "0\n");
}

TEST_F(QtProcessLauncherTest, whenThereIsNoSuchProgram_theErrorSaysSo) {
    for (const std::string name : {"no-such-program-of-ours", "/nowhere/at/all"}) {
        const auto launched = launcher.launch(name, {});
        ASSERT_FALSE(launched);
        EXPECT_THAT(launched.error().description, testing::StartsWith("Cannot start " + name + ": "));
        EXPECT_THAT(launched.error().description, testing::EndsWith("No such file or directory"));
    }
}

TEST_F(QtProcessLauncherTest, whenTheFileIsNoProgram_theErrorSaysSo) {
    writeFile(folder / "text", "no program");
    const auto launched = launcher.launch(folder / "text", {});
    ASSERT_FALSE(launched);
    EXPECT_THAT(launched.error().description, testing::EndsWith("Permission denied"));
}

} // namespace
} // namespace tovik::test

// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
//
// The workspace under a window manager: windows that are hidden away, gone, or tell little of themselves.
#include "Linux/Desktop/DesktopOpener.h"
#include "Linux/Desktop/QtMainQueue.h"
#include "Linux/X11/X11Workspace.h"
#include "support/EventLoop.h"
#include "support/WindowProgram.h"
#include "support/XUser.h"

#include <QFile>
#include <QTemporaryDir>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <memory>
#include <string>

namespace {

using namespace tovik;
using namespace tovik::test;

constexpr unsigned kOptions = kActivateAllWindows | kActivateIgnoringOtherApps;

class X11WorkspaceTest : public testing::Test {
protected:
    X11WorkspaceTest() {
        user_.setDesktopCount(2);
        user_.setDesktop(0);
    }

    bool comesToFront(const WindowProgram& program) { return comesToFront(program.window()); }

    bool comesToFront(unsigned long window) {
        return runUntil([&] {
            const auto front = workspace_.frontmostApplication();
            return front && front->window == window;
        });
    }

    QtMainQueue queue_;
    XUser user_;
    int hidden_ = 0;
    X11Workspace workspace_{{queue_, "tovik-record", "Tovik Record", [this] { ++hidden_; }, openOnDesktop}};
};

TEST_F(X11WorkspaceTest, whenTheWindowIsIconified_activationBringsItBack) {
    WindowProgram editor("Editor");
    ASSERT_TRUE(comesToFront(editor));
    const auto target = workspace_.frontmostApplication();
    WindowProgram other("Terminal");
    ASSERT_TRUE(comesToFront(other));
    user_.iconify(editor.window());
    ASSERT_TRUE(runUntil([&] { return !user_.isViewable(editor.window()); }));
    EXPECT_TRUE(workspace_.activate(*target, kOptions));
    EXPECT_TRUE(comesToFront(editor));
    EXPECT_TRUE(user_.isViewable(editor.window()));
}

TEST_F(X11WorkspaceTest, whenTheWindowIsOnAnotherDesktop_activationGoesThere) {
    WindowProgram editor("Editor");
    ASSERT_TRUE(comesToFront(editor));
    const auto target = workspace_.frontmostApplication();
    int spaces = 0;
    const auto subscription = workspace_.onActiveSpaceChanged([&] { ++spaces; });
    user_.setDesktop(1);
    ASSERT_TRUE(runUntil([&] { return spaces == 1; }));
    WindowProgram other("Terminal");
    ASSERT_TRUE(comesToFront(other));
    EXPECT_TRUE(workspace_.activate(*target, kOptions));
    EXPECT_TRUE(comesToFront(editor));
    EXPECT_TRUE(runUntil([&] { return user_.isViewable(editor.window()); }));
}

TEST_F(X11WorkspaceTest, whenTheOnlyWindowIsHidden_nothingIsInFront) {
    WindowProgram editor("Editor");
    ASSERT_TRUE(comesToFront(editor));
    user_.unmap(editor.window());
    EXPECT_TRUE(runUntil([&] { return !workspace_.frontmostApplication(); }));
}

TEST_F(X11WorkspaceTest, whenTheOnlyWindowIsIconified_nothingIsInFront) {
    WindowProgram editor("Editor");
    ASSERT_TRUE(comesToFront(editor));
    user_.iconify(editor.window());
    EXPECT_TRUE(runUntil([&] { return !workspace_.frontmostApplication(); }));
}

TEST_F(X11WorkspaceTest, whenTwoWindowsHaveTheSameName_theRememberedOneComesBack) {
    WindowProgram first("Editor");
    ASSERT_TRUE(comesToFront(first));
    const auto target = workspace_.frontmostApplication();
    WindowProgram second("Editor");
    ASSERT_TRUE(comesToFront(second));
    EXPECT_TRUE(workspace_.activate(*target, kOptions));
    EXPECT_TRUE(comesToFront(first));
}

TEST_F(X11WorkspaceTest, whenOnlyTheProcessIsKnown_itsWindowComesToTheFront) {
    WindowProgram editor("Editor");
    WindowProgram other("Terminal");
    ASSERT_TRUE(comesToFront(other));
    EXPECT_TRUE(workspace_.activate({"editor", editor.process(), std::nullopt, 0}, kOptions));
    EXPECT_TRUE(comesToFront(editor));
}

TEST_F(X11WorkspaceTest, whenTheWindowBelongsToAnotherProcessByNow_isLeftAlone) {
    WindowProgram editor("Editor");
    ASSERT_TRUE(comesToFront(editor));
    auto stranger = *workspace_.frontmostApplication();
    stranger.processIdentifier = getpid();
    EXPECT_FALSE(workspace_.activate(stranger, kOptions));
}

TEST_F(X11WorkspaceTest, whenTheWindowTellsNoProcess_theServerDoes) {
    WindowProgram editor("Editor", "editor", "no-process");
    ASSERT_TRUE(comesToFront(editor));
    const auto front = workspace_.frontmostApplication();
    EXPECT_EQ(front->processIdentifier, editor.process());
    EXPECT_TRUE(workspace_.isRunning(*front));
}

TEST_F(X11WorkspaceTest, whenTheWindowTellsAProcessOfAnotherMachine_theServerIsAsked) {
    WindowProgram editor("Editor", "editor", "other-machine");
    ASSERT_TRUE(comesToFront(editor));
    EXPECT_EQ(workspace_.frontmostApplication()->processIdentifier, editor.process());
}

TEST_F(X11WorkspaceTest, whenTheWindowTellsTheProcessNumberOfItsContainer_theServersCounts) {
    WindowProgram editor("Editor", "editor", "container");
    ASSERT_TRUE(comesToFront(editor));
    const auto front = workspace_.frontmostApplication();
    EXPECT_EQ(front->processIdentifier, editor.process());
    EXPECT_TRUE(workspace_.isRunning(*front));
}

TEST_F(X11WorkspaceTest, whenAnotherWindowOfTheTargetsProgramIsInFront_theTargetIsNot) {
    WindowProgram editor("Editor", "editor", "second-window");
    ASSERT_TRUE(comesToFront(editor.secondWindow()));
    auto target = *workspace_.frontmostApplication();
    target.window = editor.window();
    ASSERT_TRUE(workspace_.activate(target, kOptions));
    ASSERT_TRUE(comesToFront(editor.window()));
    EXPECT_TRUE(workspace_.isInFront(*workspace_.activated()));
    user_.clickInto(editor.secondWindow());
    ASSERT_TRUE(comesToFront(editor.secondWindow()));
    EXPECT_FALSE(workspace_.isInFront(*workspace_.activated()));
}

TEST_F(X11WorkspaceTest, whenADialogOfTheTargetIsInFront_theTargetIs) {
    WindowProgram editor("Editor", "editor", "dialog");
    ASSERT_TRUE(comesToFront(editor.secondWindow()));
    auto target = *workspace_.frontmostApplication();
    target.window = editor.window();
    ASSERT_TRUE(workspace_.activate(target, kOptions));
    user_.clickInto(editor.secondWindow());
    ASSERT_TRUE(comesToFront(editor.secondWindow()));
    EXPECT_TRUE(workspace_.isInFront(*workspace_.activated()));
}

TEST_F(X11WorkspaceTest, whenAnotherProgramIsInFront_theTargetIsNot) {
    WindowProgram editor("Editor");
    ASSERT_TRUE(comesToFront(editor));
    ASSERT_TRUE(workspace_.activate(*workspace_.frontmostApplication(), kOptions));
    EXPECT_TRUE(workspace_.isInFront(*workspace_.activated()));
    WindowProgram other("Terminal");
    ASSERT_TRUE(comesToFront(other));
    EXPECT_FALSE(workspace_.isInFront(*workspace_.activated()));
}

TEST_F(X11WorkspaceTest, whenAProgramIsInFront_itsIdIsItsClassInLowerCase) {
    WindowProgram editor("Text-Editor", "instance");
    ASSERT_TRUE(comesToFront(editor));
    const auto front = workspace_.frontmostApplication();
    EXPECT_EQ(front->bundleIdentifier, "text-editor");
    EXPECT_EQ(front->localizedName, "Text-Editor");
}

TEST_F(X11WorkspaceTest, whenWindowsComeAndGo_noneIsToldTwiceAndNothingBreaks) {
    std::vector<std::uint64_t> windows;
    const auto subscription = workspace_.onActivation([&](const RunningApplication& application) {
        windows.push_back(application.window);
        (void)workspace_.frontmostApplication();
    });
    for (int round = 0; round < 15; ++round) {
        WindowProgram editor("Editor");
        (void)workspace_.frontmostApplication();
        editor.close();
        (void)workspace_.frontmostApplication();
        EXPECT_FALSE(workspace_.activate({"editor", 1, std::nullopt, editor.window()}, kOptions));
    }
    runPendingEvents();
    EXPECT_EQ(std::adjacent_find(windows.begin(), windows.end()), windows.end());
}

TEST_F(X11WorkspaceTest, whenItsWindowsAreToBeHidden_callsTheUserInterface) {
    workspace_.hideSelf();
    EXPECT_EQ(hidden_, 1);
    workspace_.deactivateSelf();
    EXPECT_EQ(hidden_, 1);
}

TEST_F(X11WorkspaceTest, whenAProcessHasEndedButIsNotReaped_itDoesNotRun) {
    const pid_t child = fork();
    if (child == 0) {
        _exit(0);
    }
    siginfo_t ended{};
    waitid(P_PID, static_cast<id_t>(child), &ended, WEXITED | WNOWAIT);
    EXPECT_FALSE(workspace_.isRunning({std::nullopt, child, std::nullopt, 0}));
    waitpid(child, nullptr, 0);
    EXPECT_FALSE(workspace_.isRunning({std::nullopt, child, std::nullopt, 0}));
}

/// The desktop's openers are those of a folder of the test's own.
class X11WorkspaceOpening : public X11WorkspaceTest {
protected:
    X11WorkspaceOpening() { qputenv("PATH", folder_.path().toUtf8() + ":/nowhere"); }
    ~X11WorkspaceOpening() override { qputenv("PATH", path_); }

    void install(const QString& name) {
        QFile program(folder_.filePath(name));
        ASSERT_TRUE(program.open(QFile::WriteOnly));
        const auto opened = folder_.filePath("opened").toUtf8();
        program.write("#!/bin/sh\nprintf '%s\\n' \"" + name.toUtf8() + " $*\" > " + opened +
                      ".new\n/bin/mv " + opened + ".new " + opened + "\n");
        program.setPermissions(QFile::ReadOwner | QFile::ExeOwner);
    }

    std::string opened() {
        QFile file(folder_.filePath("opened"));
        EXPECT_TRUE(runUntil([&] { return file.exists(); }));
        return file.open(QFile::ReadOnly) ? file.readAll().trimmed().toStdString() : "";
    }

private:
    QByteArray path_ = qgetenv("PATH");
    QTemporaryDir folder_;
};

TEST_F(X11WorkspaceOpening, whenAnAddressIsOpened_theDesktopGetsIt) {
    install("xdg-open");
    EXPECT_TRUE(workspace_.openUrl("https://tovik.example/update?from=1.3.6&lang=en"));
    EXPECT_EQ(opened(), "xdg-open https://tovik.example/update?from=1.3.6&lang=en");
}

TEST_F(X11WorkspaceOpening, whenAFileIsOpened_theDesktopGetsItAsItIs) {
    install("xdg-open");
    EXPECT_TRUE(workspace_.openFile("/tmp/a folder/with $HOME"));
    EXPECT_EQ(opened(), "xdg-open /tmp/a folder/with $HOME");
}

TEST_F(X11WorkspaceOpening, whenTheUsualOpenerIsMissing_theOtherOneIsUsed) {
    install("gio");
    EXPECT_TRUE(workspace_.openUrl("https://tovik.example/"));
    EXPECT_EQ(opened(), "gio open https://tovik.example/");
}

TEST_F(X11WorkspaceOpening, whenThereIsNoOpener_saysSo) {
    EXPECT_FALSE(workspace_.openUrl("https://tovik.example/"));
    EXPECT_FALSE(workspace_.openFile("/tmp"));
}

TEST_F(X11WorkspaceOpening, whenItLooksLikeAnOption_isRefused) {
    install("xdg-open");
    EXPECT_FALSE(workspace_.openUrl("--version"));
    EXPECT_FALSE(workspace_.openUrl(""));
}

TEST(X11WorkspaceWithoutDisplay, whenAsked_thereIsNobodyElse) {
    QtMainQueue queue;
    X11Workspace workspace({queue, "tovik-record", "Tovik Record", {}}, ":97531");
    EXPECT_EQ(workspace.frontmostApplication(), std::nullopt);
    EXPECT_FALSE(workspace.activate({"editor", getpid(), std::nullopt, 5}, kOptions));
    EXPECT_TRUE(workspace.isRunning(workspace.currentApplication()));
    const auto activation = workspace.onActivation([](const RunningApplication&) {});
    const auto space = workspace.onActiveSpaceChanged([] {});
    workspace.hideSelf();
}

} // namespace

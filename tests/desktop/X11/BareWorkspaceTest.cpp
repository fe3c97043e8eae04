// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
//
// The workspace where no window manager is at work.
#include "Linux/Desktop/QtMainQueue.h"
#include "Linux/X11/X11Workspace.h"
#include "support/EventLoop.h"
#include "support/WindowProgram.h"
#include "support/XUser.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using namespace tovik;
using namespace tovik::test;
using testing::ElementsAre;

class BareX11Workspace : public testing::Test {
protected:
    BareX11Workspace() { user_.focus(1); } // the window under the pointer, which is none

    std::uint64_t frontWindow() {
        const auto front = workspace_.frontmostApplication();
        return front ? front->window : 0;
    }

    QtMainQueue queue_;
    XUser user_;
    X11Workspace workspace_{{queue_, "tovik-record", "Tovik Record", {}}};
};

TEST_F(BareX11Workspace, whenNoWindowHasTheKeyboard_nothingIsInFront) {
    WindowProgram editor("Editor");
    EXPECT_EQ(workspace_.frontmostApplication(), std::nullopt);
}

TEST_F(BareX11Workspace, whenAWindowHasTheKeyboard_itsProgramIsInFront) {
    WindowProgram editor("Editor");
    user_.focus(editor.window());
    const auto front = workspace_.frontmostApplication();
    ASSERT_TRUE(front);
    EXPECT_EQ(front->bundleIdentifier, "editor");
    EXPECT_EQ(front->processIdentifier, editor.process());
    EXPECT_EQ(front->window, editor.window());
}

TEST_F(BareX11Workspace, whenAWindowInsideHasTheKeyboard_theProgramsWindowIsInFront) {
    WindowProgram editor("Editor", "editor", "inner-focus");
    ASSERT_NE(editor.innerWindow(), 0U);
    user_.focus(editor.innerWindow());
    EXPECT_EQ(frontWindow(), editor.window());
}

TEST_F(BareX11Workspace, whenTheKeyboardGoesFromWindowToWindow_tellsOfEach) {
    WindowProgram editor("Editor");
    WindowProgram terminal("Terminal");
    std::vector<std::string> told;
    const auto subscription = workspace_.onActivation(
        [&](const RunningApplication& application) { told.push_back(*application.bundleIdentifier); });
    const auto focus = [&](const WindowProgram& program, std::size_t count) {
        user_.focus(program.window());
        return runUntil([&] { return told.size() >= count; });
    };
    EXPECT_TRUE(focus(editor, 1));
    EXPECT_TRUE(focus(terminal, 2));
    user_.focus(1);
    runPendingEvents();
    EXPECT_TRUE(focus(editor, 3));
    EXPECT_THAT(told, ElementsAre("editor", "terminal", "editor"));
}

TEST_F(BareX11Workspace, whenAProgramIsActivated_getsTheKeyboard) {
    WindowProgram editor("Editor");
    WindowProgram terminal("Terminal");
    user_.focus(editor.window());
    const auto target = workspace_.frontmostApplication();
    user_.focus(terminal.window());
    EXPECT_TRUE(workspace_.activate(*target, kActivateAllWindows));
    EXPECT_EQ(user_.focused(), editor.window());
}

TEST_F(BareX11Workspace, whenTheActivatedWindowIsHidden_itIsShown) {
    WindowProgram editor("Editor");
    user_.focus(editor.window());
    const auto target = workspace_.frontmostApplication();
    user_.unmap(editor.window());
    EXPECT_TRUE(workspace_.activate(*target, kActivateAllWindows));
    EXPECT_TRUE(user_.isViewable(editor.window()));
    EXPECT_EQ(user_.focused(), editor.window());
}

TEST_F(BareX11Workspace, whenTheWindowIsGone_activationFails) {
    WindowProgram editor("Editor");
    user_.focus(editor.window());
    const auto target = workspace_.frontmostApplication();
    editor.close();
    // The server may hear of the end of a connection after what another one asks.
    EXPECT_TRUE(runUntil([&] { return !workspace_.isRunning(*target); }));
    EXPECT_FALSE(workspace_.activate(*target, kActivateAllWindows));
}

} // namespace

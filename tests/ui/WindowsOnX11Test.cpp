// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Linux/X11/X11Workspace.h"
#include "UserInterface/Controls/WindowSystem.h"
#include "UserInterface/Overlay/FloatingPanel.h"
#include "UserInterface/Window/MainWindowController.h"
#include "WaveformOverlay.h"
#include "support/EventLoop.h"
#include "support/WindowProgram.h"
#include "support/XUser.h"
#include "ui/WindowStage.h"

#include <QApplication>
#include <QScreen>

#include <gmock/gmock.h>

#include <algorithm>
#include <memory>
#include <tuple>
#include <vector>

// Last: its macros take common names away from the headers above.
#include <X11/Xlib.h>
#include <X11/extensions/shape.h>

namespace tovik {
namespace {

using test::runUntil;

/// The staged X server, seen by a client of its own.
class XView {
public:
    XView() : display_(XOpenDisplay(nullptr)) {}
    ~XView() { XCloseDisplay(display_); }
    XView(const XView&) = delete;
    XView& operator=(const XView&) = delete;

    [[nodiscard]] bool isViewable(Window window) const { return attributes(window).map_state == IsViewable; }
    [[nodiscard]] bool bypassesWindowManager(Window window) const {
        return attributes(window).override_redirect != 0;
    }
    [[nodiscard]] int shapeRectangles(Window window, int kind) const {
        int count = 0;
        int order = 0;
        XFree(XShapeGetRectangles(display_, window, kind, &count, &order));
        return count;
    }
    /// Whether the first top-level window lies above that which holds the second.
    [[nodiscard]] bool isAbove(Window window, Window other) const {
        const auto stack = topLevels();
        const auto place = [&](Window searched) {
            return std::find(stack.begin(), stack.end(), topLevelOf(searched)) - stack.begin();
        };
        return place(window) > place(other);
    }
    void makeFullScreen(Window window) const {
        XEvent event{};
        event.xclient.type = ClientMessage;
        event.xclient.window = window;
        event.xclient.message_type = XInternAtom(display_, "_NET_WM_STATE", False);
        event.xclient.format = 32;
        event.xclient.data.l[0] = 1;
        event.xclient.data.l[1] = static_cast<long>(XInternAtom(display_, "_NET_WM_STATE_FULLSCREEN", False));
        XSendEvent(display_, root(), False, SubstructureNotifyMask | SubstructureRedirectMask, &event);
        XSync(display_, False);
    }
    [[nodiscard]] int widthOf(Window window) const { return attributes(window).width; }
    void resize(Window window, unsigned width, unsigned height) const {
        XResizeWindow(display_, window, width, height);
        XSync(display_, False);
    }

private:
    [[nodiscard]] Window root() const { return DefaultRootWindow(display_); }
    [[nodiscard]] XWindowAttributes attributes(Window window) const {
        XWindowAttributes result{};
        XGetWindowAttributes(display_, window, &result);
        return result;
    }
    [[nodiscard]] std::vector<Window> topLevels() const {
        Window rootWindow = 0;
        Window parent = 0;
        Window* children = nullptr;
        unsigned count = 0;
        XQueryTree(display_, root(), &rootWindow, &parent, &children, &count);
        std::vector<Window> result(children, children + count);
        XFree(children);
        return result;
    }
    [[nodiscard]] Window topLevelOf(Window window) const {
        for (;;) {
            Window rootWindow = 0;
            Window parent = 0;
            Window* children = nullptr;
            unsigned count = 0;
            if (XQueryTree(display_, window, &rootWindow, &parent, &children, &count) == 0) {
                return window;
            }
            XFree(children);
            if (parent == rootWindow || parent == 0) {
                return window;
            }
            window = parent;
        }
    }

    Display* display_;
};

struct WindowsOnX11Test : testing::Test {
    test::ManualTime time;
    test::FakeScreens screens;
    test::FakeWorkspace workspace;
    DesktopCompositing compositing;
    test::XUser user;
    XView server;

    WindowsOnX11Test() {
        const QRect screen = QGuiApplication::primaryScreen()->geometry();
        const Rect frame{0, 0, static_cast<double>(screen.width()), static_cast<double>(screen.height())};
        screens.setScreens({{frame, frame}});
        user.setDesktopCount(1); // the window manager listens
    }

    /// A program into which somebody types.
    std::unique_ptr<test::WindowProgram> focusedProgram() {
        auto program = std::make_unique<test::WindowProgram>("Editor");
        user.clickInto(program->window());
        EXPECT_TRUE(runUntil([&] { return user.focused() == program->window(); }));
        return program;
    }
    [[nodiscard]] bool typingReaches(test::WindowProgram& program) {
        program.forgetKeys();
        user.tap("a");
        return runUntil([&] { return !program.keys().empty(); });
    }
};

TEST_F(WindowsOnX11Test, thePill_leavesTheKeyboardWhereItIs) {
    const auto program = focusedProgram();
    WaveformOverlay overlay(time, time, screens, workspace, compositing);
    overlay.show(time.now());
    time.advance(Seconds{0.2});
    ASSERT_TRUE(runUntil([&] { return server.isViewable(overlay.window()->winId()); }));
    EXPECT_EQ(user.focused(), program->window());
    EXPECT_TRUE(typingReaches(*program));
    overlay.hide();
    time.advance(Seconds{0.2});
    test::runPendingEvents();
    EXPECT_EQ(user.focused(), program->window());
    EXPECT_TRUE(typingReaches(*program));
}

TEST_F(WindowsOnX11Test, thePill_letsClicksThroughAndIsNoBusinessOfTheWindowManager) {
    WaveformOverlay overlay(time, time, screens, workspace, compositing);
    overlay.show(time.now());
    const auto window = overlay.window()->winId();
    ASSERT_TRUE(runUntil([&] { return server.isViewable(window); }));
    EXPECT_TRUE(server.bypassesWindowManager(window));
    EXPECT_TRUE(runUntil([&] { return server.shapeRectangles(window, ShapeInput) == 0; }));
}

TEST_F(WindowsOnX11Test, thePill_liesAboveAFullScreenWindow) {
    const auto program = focusedProgram();
    server.makeFullScreen(program->window());
    const int screenWidth = QGuiApplication::primaryScreen()->geometry().width();
    ASSERT_TRUE(runUntil([&] { return server.widthOf(program->window()) == screenWidth; }));
    WaveformOverlay overlay(time, time, screens, workspace, compositing);
    overlay.show(time.now());
    const auto window = overlay.window()->winId();
    ASSERT_TRUE(runUntil([&] { return server.isViewable(window); }));
    EXPECT_TRUE(server.isAbove(window, program->window()));
}

TEST_F(WindowsOnX11Test, thePill_isOnEveryDesktop) {
    user.setDesktopCount(2);
    WaveformOverlay overlay(time, time, screens, workspace, compositing);
    overlay.show(time.now());
    const auto window = overlay.window()->winId();
    ASSERT_TRUE(runUntil([&] { return server.isViewable(window); }));
    const test::WindowProgram program("Editor");
    user.setDesktop(1);
    ASSERT_TRUE(runUntil([&] { return !server.isViewable(program.window()); }));
    EXPECT_TRUE(server.isViewable(window));
    user.setDesktop(0);
}

TEST_F(WindowsOnX11Test, withoutACompositor_thePillIsCutToItsShape) {
    ASSERT_FALSE(compositing.isActive());
    WaveformOverlay overlay(time, time, screens, workspace, compositing);
    overlay.show(time.now());
    const auto window = overlay.window()->winId();
    ASSERT_TRUE(runUntil([&] { return server.isViewable(window); }));
    // A rounded shape takes a rectangle for each line of its corners.
    EXPECT_TRUE(runUntil([&] { return server.shapeRectangles(window, ShapeBounding) > 8; }));
}

TEST_F(WindowsOnX11Test, aHint_leavesTheKeyboardWhereItIs) {
    const auto program = focusedProgram();
    QtHintPanels panels(time, time, compositing);
    const auto hint = panels.makePanel({.text = "Hands-free · Fn+Shift to finish",
                                        .frame = {500, 700, 216, 28},
                                        .fontSize = 12,
                                        .weight = FontWeight::semibold,
                                        .textWhite = 0.86});
    hint->fadeIn(Seconds{0.2});
    time.advance(Seconds{0.2});
    test::runPendingEvents();
    EXPECT_EQ(user.focused(), program->window());
    EXPECT_TRUE(typingReaches(*program));
}

TEST_F(WindowsOnX11Test, theMainWindow_takesTheKeyboardWhenItIsPresented) {
    X11Workspace desktop({time, "tovik-record", "Tovik Record", {}});
    test::WindowStage stage(&desktop);
    stage.screens = screens;
    stage.build();
    auto& window = stage.controller->window();
    ASSERT_TRUE(runUntil([&] { return window.isActiveWindow(); }));
    window.close();
    const auto program = focusedProgram();
    // Qt takes a moment before it believes that it has lost the keyboard.
    ASSERT_TRUE(runUntil([] { return QGuiApplication::focusWindow() == nullptr; }));
    stage.controller->present();
    stage.time.runPending();
    EXPECT_TRUE(runUntil([&] { return window.isActiveWindow(); }));
}

TEST_F(WindowsOnX11Test, theMainWindow_keepsItsWidthWhateverIsAskedOfIt) {
    test::WindowStage stage;
    stage.screens = screens;
    stage.build();
    auto& window = stage.controller->window();
    ASSERT_TRUE(runUntil([&] { return window.isActiveWindow(); }));
    for (const auto& [width, height, becomes] :
         {std::tuple{900U, 300U, 560}, std::tuple{500U, 1000U, 760}, std::tuple{100U, 600U, 600}}) {
        server.resize(window.winId(), width, height);
        EXPECT_TRUE(runUntil([&, expected = becomes] { return window.height() == expected; }));
        EXPECT_EQ(window.width(), 500);
        EXPECT_EQ(server.widthOf(window.winId()), 500);
    }
}

TEST_F(WindowsOnX11Test, theMinimisedMainWindow_runsNothing) {
    test::WindowStage stage;
    stage.screens = screens;
    stage.build();
    auto& window = stage.controller->window();
    ASSERT_TRUE(runUntil([&] { return window.isActiveWindow(); }));
    EXPECT_EQ(stage.time.pendingCount(), 1U);
    user.iconify(window.winId());
    EXPECT_TRUE(runUntil([&] { return stage.time.pendingCount() == 0; }));
}

} // namespace
} // namespace tovik

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    testing::InitGoogleMock(&argc, argv);
    return RUN_ALL_TESTS();
}

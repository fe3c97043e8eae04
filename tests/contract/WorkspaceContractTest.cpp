// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
//
// What every workspace of the program does: that of the X server, under a window manager, and the one of the
// tests.
#include "Linux/Desktop/QtMainQueue.h"
#include "Linux/X11/X11Workspace.h"
#include "support/EventLoop.h"
#include "support/FakeWorkspace.h"
#include "support/WindowProgram.h"
#include "support/XUser.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <string>

namespace {

using namespace tovik;
using namespace tovik::test;
using testing::ElementsAre;
using testing::IsEmpty;

/// A workspace, and the programs and windows it tells of. Deeds return when the workspace has told of them.
class World {
public:
    virtual ~World() = default;
    virtual Workspace& workspace() = 0;
    /// A program of this name starts and comes to the front.
    virtual void start(const std::string& name) = 0;
    /// The user goes to its window.
    virtual void bringToFront(const std::string& name) = 0;
    virtual void quit(const std::string& name) = 0;
    virtual void changeSpace() = 0;
    /// Returns false when the program does not come to the front.
    virtual bool waitForFront(const std::string& name) = 0;
};

class FakeWorld : public World {
public:
    Workspace& workspace() override { return workspace_; }
    void start(const std::string& name) override {
        const auto number = static_cast<std::int64_t>(programs_.size()) + 100;
        programs_[name] = {name, number, name, static_cast<std::uint64_t>(number)};
        bringToFront(name);
    }
    void bringToFront(const std::string& name) override { workspace_.bringToFront(programs_.at(name)); }
    void quit(const std::string& name) override { workspace_.quit(programs_.at(name)); }
    void changeSpace() override { workspace_.changeSpace(); }
    bool waitForFront(const std::string& name) override {
        return workspace_.frontmostApplication() == programs_.at(name);
    }

private:
    FakeWorkspace workspace_;
    std::map<std::string, RunningApplication> programs_;
};

class XWorld : public World {
public:
    XWorld() { user_.setDesktopCount(2); }

    Workspace& workspace() override { return workspace_; }
    void start(const std::string& name) override {
        programs_[name] = std::make_unique<WindowProgram>(name);
        EXPECT_TRUE(waitForFront(name));
    }
    void bringToFront(const std::string& name) override {
        user_.clickInto(programs_.at(name)->window());
        EXPECT_TRUE(waitForFront(name));
    }
    void quit(const std::string& name) override {
        const auto window = programs_.at(name)->window();
        programs_.erase(name);
        EXPECT_TRUE(runUntil([&] {
            const auto front = workspace_.frontmostApplication();
            return !front || front->window != window;
        }));
        runPendingEvents();
    }
    void changeSpace() override {
        desktop_ = 1 - desktop_;
        bool told = false;
        const auto changed = workspace_.onActiveSpaceChanged([&] { told = true; });
        user_.setDesktop(desktop_);
        EXPECT_TRUE(runUntil([&] { return told; }));
    }
    bool waitForFront(const std::string& name) override {
        const auto window = programs_.at(name)->window();
        const bool inFront = runUntil([&] {
            const auto front = workspace_.frontmostApplication();
            return front && front->window == window;
        });
        user_.sync();
        runPendingEvents();
        return inFront;
    }

private:
    QtMainQueue queue_;
    XUser user_;
    X11Workspace workspace_{{queue_, "tovik-record", "Tovik Record", {}}};
    std::map<std::string, std::unique_ptr<WindowProgram>> programs_;
    long desktop_ = 0;
};

using MakeWorld = std::unique_ptr<World> (*)();

class WorkspaceContract : public testing::TestWithParam<MakeWorld> {
protected:
    Workspace& workspace() { return world_->workspace(); }

    [[nodiscard]] Subscription recordFront() {
        return workspace().onActivation([this](const RunningApplication& application) {
            front_.push_back(application.bundleIdentifier.value_or("nameless"));
        });
    }

    std::unique_ptr<World> world_ = GetParam()();
    std::vector<std::string> front_;
};

TEST_P(WorkspaceContract, whenNoProgramRuns_nothingIsInFront) {
    EXPECT_EQ(workspace().frontmostApplication(), std::nullopt);
}

TEST_P(WorkspaceContract, whenAProgramIsInFront_tellsWhatItIs) {
    world_->start("editor");
    const auto front = workspace().frontmostApplication();
    ASSERT_TRUE(front);
    EXPECT_EQ(front->bundleIdentifier, "editor");
    EXPECT_EQ(front->localizedName, "editor");
    EXPECT_GT(front->processIdentifier, 0);
    EXPECT_NE(front->window, 0U);
    EXPECT_TRUE(workspace().isRunning(*front));
}

TEST_P(WorkspaceContract, thisProgram_runsAndIsNotAnother) {
    world_->start("editor");
    const auto own = workspace().currentApplication();
    EXPECT_EQ(own.bundleIdentifier, "tovik-record");
    EXPECT_TRUE(workspace().isRunning(own));
    EXPECT_NE(own.processIdentifier, workspace().frontmostApplication()->processIdentifier);
}

TEST_P(WorkspaceContract, whenProgramsComeToTheFront_tellsOfEachOnce) {
    const auto recording = recordFront();
    world_->start("editor");
    world_->start("terminal");
    world_->bringToFront("editor");
    world_->bringToFront("editor");
    EXPECT_THAT(front_, ElementsAre("editor", "terminal", "editor"));
}

TEST_P(WorkspaceContract, whenTheFrontProgramEnds_tellsNothingOfTheMomentWithout) {
    world_->start("editor");
    const auto recording = recordFront();
    world_->quit("editor");
    EXPECT_THAT(front_, IsEmpty());
    EXPECT_EQ(workspace().frontmostApplication(), std::nullopt);
}

TEST_P(WorkspaceContract, whenASubscriptionIsDropped_tellsNoMore) {
    auto recording = recordFront();
    world_->start("editor");
    recording.end();
    world_->start("terminal");
    EXPECT_THAT(front_, ElementsAre("editor"));
}

TEST_P(WorkspaceContract, whenAHandlerEndsItsOwnSubscription_isToldNoMore) {
    int told = 0;
    Subscription once;
    once = workspace().onActivation([&](const RunningApplication&) {
        ++told;
        once.end();
    });
    world_->start("editor");
    world_->start("terminal");
    EXPECT_EQ(told, 1);
}

TEST_P(WorkspaceContract, whenAProgramIsActivated_comesToTheFront) {
    world_->start("editor");
    const auto editor = workspace().frontmostApplication();
    world_->start("terminal");
    EXPECT_TRUE(workspace().activate(*editor, kActivateAllWindows | kActivateIgnoringOtherApps));
    EXPECT_TRUE(world_->waitForFront("editor"));
}

TEST_P(WorkspaceContract, whenAProgramHasEnded_cannotBeActivatedAndLeavesTheFrontAlone) {
    world_->start("editor");
    const auto editor = workspace().frontmostApplication();
    world_->start("terminal");
    world_->quit("editor");
    EXPECT_FALSE(workspace().isRunning(*editor));
    EXPECT_FALSE(workspace().activate(*editor, kActivateAllWindows | kActivateIgnoringOtherApps));
    EXPECT_TRUE(world_->waitForFront("terminal"));
}

TEST_P(WorkspaceContract, whenTheUserGoesToAnotherSpace_tells) {
    int told = 0;
    auto subscription = workspace().onActiveSpaceChanged([&] { ++told; });
    world_->changeSpace();
    EXPECT_EQ(told, 1);
    subscription.end();
    world_->changeSpace();
    EXPECT_EQ(told, 1);
}

INSTANTIATE_TEST_SUITE_P(Fake, WorkspaceContract, testing::Values(MakeWorld([]() -> std::unique_ptr<World> {
                             return std::make_unique<FakeWorld>();
                         })));
INSTANTIATE_TEST_SUITE_P(X11, WorkspaceContract, testing::Values(MakeWorld([]() -> std::unique_ptr<World> {
                             return std::make_unique<XWorld>();
                         })));

} // namespace

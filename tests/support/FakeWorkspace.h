// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/Workspace.h"

#include <functional>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tovik::test {

/// A desktop that the test arranges: which programs run and which one is in front.
class FakeWorkspace : public Workspace {
public:
    struct Activation {
        RunningApplication application;
        unsigned options;

        bool operator==(const Activation&) const = default;
    };

    [[nodiscard]] std::optional<RunningApplication> frontmostApplication() const override {
        return frontmost_;
    }
    [[nodiscard]] RunningApplication currentApplication() const override { return current; }
    [[nodiscard]] bool isRunning(const RunningApplication& application) const override {
        return application.processIdentifier == current.processIdentifier ||
               running_.contains(application.processIdentifier);
    }

    [[nodiscard]] Subscription onActivation(std::function<void(const RunningApplication&)> handler) override {
        return activations_.add(std::move(handler));
    }
    [[nodiscard]] Subscription onActiveSpaceChanged(std::function<void()> handler) override {
        return spaceChanges_.add(std::move(handler));
    }

    void hideSelf() override { calls.emplace_back("hideSelf"); }
    void deactivateSelf() override { calls.emplace_back("deactivateSelf"); }

    bool activate(const RunningApplication& application, unsigned options) override {
        calls.emplace_back("activate");
        activated.push_back({application, options});
        if (!activationWorks || !isRunning(application)) {
            return false;
        }
        bringToFront(application);
        return true;
    }

    bool openUrl(const std::string& address) override {
        openedUrls.push_back(address);
        return openingWorks;
    }
    bool openFile(const std::string& path) override {
        openedFiles.push_back(path);
        return openingWorks;
    }

    /// The program is started where it was not running, and comes to the front; observers hear of it.
    void bringToFront(const RunningApplication& application) {
        launch(application);
        if (frontmost_ == application) {
            return;
        }
        frontmost_ = application;
        activations_.tell(application);
    }
    /// Nothing is in front any more.
    void clearFront() { frontmost_.reset(); }
    /// The program runs, behind the others.
    void launch(const RunningApplication& application) { running_.insert(application.processIdentifier); }
    /// The program ends; when it was in front, nothing is any more.
    void quit(const RunningApplication& application) {
        running_.erase(application.processIdentifier);
        if (frontmost_ && frontmost_->processIdentifier == application.processIdentifier) {
            clearFront();
        }
    }
    void changeSpace() { spaceChanges_.tell(); }

    /// This program.
    RunningApplication current{"tovik-record", 4242, "Tovik Record", 0};
    bool activationWorks = true;
    bool openingWorks = true;

    /// hideSelf, deactivateSelf and activate calls by name, in order.
    std::vector<std::string> calls;
    std::vector<Activation> activated;
    std::vector<std::string> openedUrls;
    std::vector<std::string> openedFiles;

private:
    std::optional<RunningApplication> frontmost_;
    std::set<std::int64_t> running_;
    Observers<RunningApplication> activations_;
    Observers<> spaceChanges_;
};

/// A clipboard that remembers all it was given.
class FakePasteboard : public Pasteboard {
public:
    void replaceContents(std::string_view text) override { texts_.emplace_back(text); }

    /// What a paste would insert now; nothing as long as nothing was put there.
    [[nodiscard]] std::optional<std::string> contents() const {
        return texts_.empty() ? std::nullopt : std::optional(texts_.back());
    }
    /// Everything put there so far, in order.
    [[nodiscard]] const std::vector<std::string>& texts() const { return texts_; }

private:
    std::vector<std::string> texts_;
};

/// Starts nothing, and remembers what it was asked to start.
class FakeProcessLauncher : public ProcessLauncher {
public:
    struct Launch {
        std::string executable;
        std::vector<std::string> arguments;

        bool operator==(const Launch&) const = default;
    };

    Result<void> launch(const std::string& executable, const std::vector<std::string>& arguments) override {
        launches_.push_back({executable, arguments});
        if (failure_) {
            return *failure_;
        }
        return {};
    }

    /// From now on every launch fails with this error; nullopt ends the failing.
    void fail(std::optional<Error> error) { failure_ = std::move(error); }

    /// Every attempt, also the failed ones, in order.
    [[nodiscard]] const std::vector<Launch>& launches() const { return launches_; }

private:
    std::vector<Launch> launches_;
    std::optional<Error> failure_;
};

} // namespace tovik::test

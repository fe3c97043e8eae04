// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/UserInterface.h"

#include <cstddef>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tovik::test {

/// A tray that the test looks at and clicks in.
class FakeStatusItem : public StatusItem {
public:
    explicit FakeStatusItem(bool hasButton = true) : hasButton_(hasButton) {}

    [[nodiscard]] bool hasButton() const override { return hasButton_; }
    void setImage(const StatusImage& image) override { images_.push_back(image); }
    void setToolTip(const std::string& text) override { toolTips_.push_back(text); }
    void setMenu(std::shared_ptr<Menu> menu) override { menu_ = std::move(menu); }

    void setHasButton(bool hasButton) { hasButton_ = hasButton; }

    /// All images so far, the one that shows now last.
    [[nodiscard]] const std::vector<StatusImage>& images() const { return images_; }
    [[nodiscard]] std::optional<StatusImage> image() const {
        return images_.empty() ? std::nullopt : std::optional(images_.back());
    }
    [[nodiscard]] const std::vector<std::string>& toolTips() const { return toolTips_; }
    [[nodiscard]] const std::shared_ptr<Menu>& menu() const { return menu_; }

    /// As if the user opened the menu, or the submenu of this title in it.
    void openMenu(std::string_view submenuTitle = {}) {
        auto menu = menu_;
        if (menu && menu->onWillOpen) {
            menu->onWillOpen();
        }
        if (submenuTitle.empty() || !menu) {
            return;
        }
        for (const auto& item : menu->items()) {
            if (item.title == submenuTitle && item.submenu) {
                if (const auto submenu = item.submenu; submenu->onWillOpen) {
                    submenu->onWillOpen();
                }
                return;
            }
        }
    }

    /// As if the user chose the item at the end of this path of titles. False when there is no such item or
    /// it cannot be chosen.
    bool choose(const std::vector<std::string>& path) {
        auto menu = menu_;
        for (std::size_t depth = 0; menu && depth < path.size(); ++depth) {
            const auto* item = find(*menu, path[depth]);
            if (!item || !item->isEnabled) {
                return false;
            }
            if (depth + 1 == path.size()) {
                // The action may rebuild the menu that holds it.
                const auto action = item->action;
                if (action) {
                    action();
                }
                return static_cast<bool>(action);
            }
            menu = item->submenu;
        }
        return false;
    }

private:
    static const MenuItem* find(const Menu& menu, const std::string& title) {
        for (const auto& item : menu.items()) {
            if (!item.isSeparator && item.title == title) {
                return &item;
            }
        }
        return nullptr;
    }

    bool hasButton_;
    std::vector<StatusImage> images_;
    std::vector<std::string> toolTips_;
    std::shared_ptr<Menu> menu_;
};

/// Remembers what the pill was asked to show.
class FakeRecordingOverlay : public RecordingOverlay {
public:
    void show(Date startedAt) override {
        calls.emplace_back("show");
        shownSince.push_back(startedAt);
    }
    void hide() override { calls.emplace_back("hide"); }
    void tovik() override { calls.emplace_back("tovik"); }
    void setLevel(float level) override { levels.push_back(level); }

    /// show, hide and tovik calls by name, in order.
    std::vector<std::string> calls;
    std::vector<Date> shownSince;
    std::vector<float> levels;
};

/// Remembers every panel that was made and what became of it. A fade-out ends when the test says so.
class FakeHintPanels : public HintPanels {
public:
    struct Panel {
        HintDescription description;
        std::vector<Seconds> fadeIns;
        std::vector<Seconds> fadeOuts;
        std::function<void()> fadeOutCompletion;
        bool isOnScreen = true;
    };

    [[nodiscard]] std::unique_ptr<HintPanel> makePanel(const HintDescription& description) override {
        panels.push_back(std::make_shared<Panel>(Panel{description, {}, {}, nullptr, true}));
        return std::make_unique<Handle>(panels.back());
    }

    /// The panel's fade-out comes to its end.
    static void finishFadeOut(Panel& panel) {
        if (const auto completion = std::exchange(panel.fadeOutCompletion, nullptr)) {
            completion();
        }
    }

    /// In the order in which they were made, those that are gone included.
    std::vector<std::shared_ptr<Panel>> panels;

private:
    class Handle : public HintPanel {
    public:
        explicit Handle(std::shared_ptr<Panel> panel) : panel_(std::move(panel)) {}
        ~Handle() override { panel_->isOnScreen = false; }

        void fadeIn(Seconds duration) override { panel_->fadeIns.push_back(duration); }
        void fadeOut(Seconds duration, std::function<void()> completion) override {
            panel_->fadeOuts.push_back(duration);
            panel_->fadeOutCompletion = std::move(completion);
        }

    private:
        std::shared_ptr<Panel> panel_;
    };
};

/// Answers questions as the test planned, or as if they had been closed without an answer.
class FakeAlert : public Alert {
public:
    struct Question {
        std::string message;
        std::string informativeText;
        std::vector<std::string> buttons;

        bool operator==(const Question&) const = default;
    };

    int runModal(const std::string& message, const std::string& informativeText,
                 const std::vector<std::string>& buttons) override {
        questions_.push_back({message, informativeText, buttons});
        if (onShown) {
            onShown();
        }
        if (answers_.empty()) {
            return -1;
        }
        const auto answer = answers_.front();
        answers_.pop_front();
        return answer;
    }

    /// The button for the next question that has no planned answer yet.
    void answerNext(int button) { answers_.push_back(button); }

    [[nodiscard]] const std::vector<Question>& questions() const { return questions_; }

    /// Called while a question is on screen, before it is answered: the world may change meanwhile.
    std::function<void()> onShown;

private:
    std::vector<Question> questions_;
    std::deque<int> answers_;
};

/// Remembers what the main window is asked to do: by the requests that it was made for, or by its own.
class FakeMainWindow : public MainWindow, public MainWindowOnScreen {
public:
    FakeMainWindow() { follow(*this); }
    explicit FakeMainWindow(MainWindow& requests) { follow(requests); }
    ~FakeMainWindow() override {
        if (onEnd) {
            onEnd();
        }
    }

    /// "present", "toast: <text>", "reloadHistoryTable", "refreshPermissions", in the order of the calls.
    [[nodiscard]] const std::vector<std::string>& calls() const { return calls_; }
    void forgetCalls() {
        calls_.clear();
        toasts_.clear();
        presented_ = 0;
        historyReloads_ = 0;
        permissionRefreshes_ = 0;
    }
    [[nodiscard]] const std::vector<std::string>& toasts() const { return toasts_; }
    [[nodiscard]] int presented() const { return presented_; }
    [[nodiscard]] int historyReloads() const { return historyReloads_; }
    [[nodiscard]] int permissionRefreshes() const { return permissionRefreshes_; }

    /// Called with the same texts as they come, to join them with other calls in one record.
    void onCall(std::function<void(const std::string&)> observer) { observer_ = std::move(observer); }

    /// Called when the window ends.
    std::function<void()> onEnd;

private:
    void follow(MainWindow& requests) {
        subscriptions_.push_back(requests.present.add([this] {
            ++presented_;
            note("present");
        }));
        subscriptions_.push_back(requests.showSavedToast.add([this](const std::string& text) {
            toasts_.push_back(text);
            note("toast: " + text);
        }));
        subscriptions_.push_back(requests.reloadHistoryTable.add([this] {
            ++historyReloads_;
            note("reloadHistoryTable");
        }));
        subscriptions_.push_back(requests.refreshPermissions.add([this] {
            ++permissionRefreshes_;
            note("refreshPermissions");
        }));
    }

    void note(std::string call) {
        calls_.push_back(std::move(call));
        if (observer_) {
            observer_(calls_.back());
        }
    }

    std::vector<std::string> calls_;
    std::vector<std::string> toasts_;
    int presented_ = 0;
    int historyReloads_ = 0;
    int permissionRefreshes_ = 0;
    std::function<void(const std::string&)> observer_;
    std::vector<Subscription> subscriptions_;
};

/// Hands out fakes and keeps sight of them. They live as long as the program that asked for them.
class FakeUserInterface : public UserInterface {
public:
    [[nodiscard]] std::unique_ptr<StatusItem> makeStatusItem() override {
        note("makeStatusItem");
        auto made = std::make_unique<FakeStatusItem>(hasTray);
        statusItem = made.get();
        return made;
    }
    [[nodiscard]] std::unique_ptr<RecordingOverlay> makeRecordingOverlay() override {
        note("makeRecordingOverlay");
        auto made = std::make_unique<FakeRecordingOverlay>();
        overlay = made.get();
        return made;
    }
    [[nodiscard]] std::unique_ptr<HintPanels> makeHintPanels() override {
        note("makeHintPanels");
        auto made = std::make_unique<FakeHintPanels>();
        hintPanels = made.get();
        return made;
    }
    [[nodiscard]] std::unique_ptr<MainWindowOnScreen>
    makeMainWindow(const MainWindowContents& contents) override {
        note("makeMainWindow");
        windowContents.emplace(contents);
        auto made = std::make_unique<FakeMainWindow>(contents.requests);
        mainWindow = made.get();
        return made;
    }

    bool hasTray = true;
    FakeStatusItem* statusItem = nullptr;
    FakeRecordingOverlay* overlay = nullptr;
    FakeHintPanels* hintPanels = nullptr;
    FakeMainWindow* mainWindow = nullptr;
    std::optional<MainWindowContents> windowContents;
    /// Called with the name of each operation.
    std::function<void(const std::string&)> onCall;

private:
    void note(const std::string& call) const {
        if (onCall) {
            onCall(call);
        }
    }
};

} // namespace tovik::test

// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/MainQueue.h"
#include "Platform/Screens.h"
#include "Platform/Subscription.h"
#include "Platform/UserInterface.h"
#include "Platform/Workspace.h"
#include "UserInterface/Window/Accordion.h"
#include "UserInterface/Window/MainWindowLayout.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

class QPoint;
class QWidget;

namespace tovik {

class CleanupSection;
class CorrectionsSection;
class MainWindowView;
class PermissionsSection;
class TranscriptHistorySection;
class TranslationSection;

/// The main window: built once, hidden when closed, presented again on request. Main thread.
class MainWindowController : public MainWindowOnScreen {
public:
    /// What it works with; all of it outlives the controller.
    struct Collaborators {
        const Clock& clock;
        MainQueue& queue;
        const Screens& screens;
        Workspace& workspace;
        /// Pops up the status menu with its upper left corner here, in the coordinates of the desktop. Empty
        /// where there is no status menu.
        std::function<void(const QPoint&)> popUpStatusMenu;
    };

    /// Builds the window and shows it.
    MainWindowController(const Collaborators& collaborators, const MainWindowContents& contents);
    ~MainWindowController() override;

    void present();
    void showSavedToast(const std::string& text);
    void reloadHistoryTable();
    void refreshPermissions();

    [[nodiscard]] FixedWidthWindow& window() { return *window_; }
    [[nodiscard]] MainWindowView& view() { return *view_; }
    [[nodiscard]] Accordion& accordion() { return *accordion_; }
    [[nodiscard]] CorrectionsSection& corrections() { return *corrections_; }
    [[nodiscard]] CleanupSection& cleanup() { return *cleanup_; }
    [[nodiscard]] TranslationSection& translation() { return *translation_; }

private:
    void prepareWindow();
    void buildSections(const MainWindowContents& contents);
    [[nodiscard]] QWidget* contentOf(const SectionHeader& section, const MainWindowContents& contents);
    [[nodiscard]] QWidget* buildPermissionsSection(const MainWindowContents& contents);
    [[nodiscard]] QWidget* buildCorrectionsSection(const MainWindowContents& contents);
    [[nodiscard]] QWidget* buildCleanupSection(const MainWindowContents& contents);
    [[nodiscard]] QWidget* buildTranslationSection(const MainWindowContents& contents);
    void connectHeaderAndFooter(const MainWindowContents& contents);
    void follow(MainWindow& requests);
    void showStatusMenuFromWindow();
    void presentMainWindow();
    void makeKeyAndOrderFront();
    void forceMainWindowFrame();
    void contentHeightChanged(QWidget& section);
    void updateMainWindowHeight(bool animated);

    const Collaborators with_;
    std::unique_ptr<FixedWidthWindow> window_;
    MainWindowView* view_ = nullptr;
    PermissionsSection* permissions_ = nullptr;
    TranscriptHistorySection* history_ = nullptr;
    CorrectionsSection* corrections_ = nullptr;
    CleanupSection* cleanup_ = nullptr;
    TranslationSection* translation_ = nullptr;
    std::unique_ptr<Accordion> accordion_;
    Subscription settingsChanges_;
    std::vector<Subscription> requests_;
    Lifetime lifetime_;
};

} // namespace tovik

// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/Window/MainWindowController.h"

#include "Permissions/PermissionChecklist.h"
#include "Permissions/PermissionRequests.h"
#include "Platform/UserDefaults.h"
#include "Session/StatusMenu.h"
#include "UserInterface/Controls/Buttons.h"
#include "UserInterface/Controls/Painting.h"
#include "UserInterface/Controls/Theme.h"
#include "UserInterface/Controls/WindowSystem.h"
#include "UserInterface/Corrections/CorrectionsSection.h"
#include "UserInterface/History/TranscriptHistorySection.h"
#include "UserInterface/Permissions/PermissionsSection.h"
#include "UserInterface/Settings/CleanupSection.h"
#include "UserInterface/Settings/TranslationSection.h"
#include "UserInterface/Window/AccessibleViews.h"
#include "UserInterface/Window/Accordion.h"
#include "UserInterface/Window/HeaderView.h"
#include "UserInterface/Window/MainWindowLayout.h"
#include "UserInterface/Window/MainWindowView.h"
#include "UserInterface/Window/ToastView.h"

#include <QCoreApplication>
#include <QEvent>
#include <QVBoxLayout>

namespace tovik {

namespace {

constexpr int kMenuGap = 4;

} // namespace

MainWindowController::MainWindowController(const Collaborators& collaborators,
                                           const MainWindowContents& contents)
    : with_(collaborators),
      window_(std::make_unique<FixedWidthWindow>(with_.clock, with_.queue)),
      accordion_(std::make_unique<Accordion>(with_.clock, with_.queue,
                                             [this](bool animated) { updateMainWindowHeight(animated); })) {
    installAccessibleViews();
    prepareWindow();
    buildSections(contents);
    connectHeaderAndFooter(contents);
    follow(contents.requests);
    settingsChanges_ = contents.defaultsChanges.observe([this] {
        cleanup_->refresh();
        translation_->refresh();
    });
    forceMainWindowFrame();
    if (contents.permissions.hasPendingPermissions()) {
        accordion_->setAccordion(QString::fromLatin1(kPermissionsSection), true, false);
    }
    // Otherwise the first button would show a focus ring before anyone has touched the Tab key.
    view_->setFocus(Qt::OtherFocusReason);
    makeKeyAndOrderFront();
    view_->scrollToTop();
    forceMainWindowFrame();
    updateMainWindowHeight(false);
}

MainWindowController::~MainWindowController() {
    corrections_->endEditing();
    cleanup_->endEditing();
    // The accordion speaks to cards that the window owns.
    accordion_.reset();
}

void MainWindowController::prepareWindow() {
    window_->setWindowTitle(QStringLiteral("Tovik Record"));
    window_->setWindowIcon(symbols::applicationIcon());
    window_->setLockedFrameWidth(mainWindowWidth);
    window_->setShouldClose([this] {
        window_->hide();
        return false;
    });
    auto* filling = new QVBoxLayout(window_.get());
    filling->setContentsMargins(0, 0, 0, 0);
    filling->setSizeConstraint(QLayout::SetNoConstraint);
    view_ = new MainWindowView(with_.clock, with_.queue, window_.get());
    filling->addWidget(view_);
}

void MainWindowController::buildSections(const MainWindowContents& contents) {
    for (const SectionHeader& section : mainWindowSections(contents.permissions.hasPendingPermissions())) {
        view_->document().addCard(accordion_->buildAccordionSection(section, contentOf(section, contents)));
    }
}

QWidget* MainWindowController::contentOf(const SectionHeader& section, const MainWindowContents& contents) {
    if (section.title == kPermissionsSection) {
        return buildPermissionsSection(contents);
    }
    if (section.title == kCorrectionsSection) {
        return buildCorrectionsSection(contents);
    }
    if (section.title == kCleanupSection) {
        return buildCleanupSection(contents);
    }
    if (section.title == kTranslationSection) {
        return buildTranslationSection(contents);
    }
    history_ = new TranscriptHistorySection(with_.clock, with_.queue, contents.history);
    return history_;
}

QWidget* MainWindowController::buildPermissionsSection(const MainWindowContents& contents) {
    permissions_ =
        new PermissionsSection(contents.permissions, [&requests = contents.permissionRequests](int index) {
            requests.permissionActionClicked(index);
        });
    return permissions_;
}

QWidget* MainWindowController::buildCorrectionsSection(const MainWindowContents& contents) {
    corrections_ = new CorrectionsSection(contents.dictionary, contents.defaults,
                                          [this](const std::string& text) { showSavedToast(text); });
    QObject::connect(corrections_, &CorrectionsSection::heightChanged, window_.get(),
                     [this] { contentHeightChanged(*corrections_); });
    return corrections_;
}

QWidget* MainWindowController::buildCleanupSection(const MainWindowContents& contents) {
    cleanup_ = new CleanupSection(CleanupSettings(contents.fillerWords, contents.defaults,
                                                  [this](const std::string& text) { showSavedToast(text); }));
    return cleanup_;
}

QWidget* MainWindowController::buildTranslationSection(const MainWindowContents& contents) {
    translation_ = new TranslationSection(TranslationSettings(
        contents.translator, contents.defaults, [this](const std::string& text) { showSavedToast(text); }));
    QObject::connect(translation_, &TranslationSection::heightChanged, window_.get(),
                     [this] { contentHeightChanged(*translation_); });
    return translation_;
}

void MainWindowController::connectHeaderAndFooter(const MainWindowContents& contents) {
    auto* footer = new FooterView(QStringLiteral(TOVIK_VERSION));
    view_->document().addFooter(footer);
    QObject::connect(&footer->updatesButton(), &QPushButton::clicked, window_.get(),
                     [&links = contents.links] { links.openTovikVoiceUpdates(); });
    QObject::connect(&footer->websiteButton(), &QPushButton::clicked, window_.get(),
                     [&links = contents.links] { links.openTovikAIWebsite(); });
    QObject::connect(&view_->header().moreOptionsButton(), &QPushButton::clicked, window_.get(),
                     [this] { showStatusMenuFromWindow(); });
}

void MainWindowController::follow(MainWindow& requests) {
    requests_.push_back(requests.present.add([this] { present(); }));
    requests_.push_back(
        requests.showSavedToast.add([this](const std::string& text) { showSavedToast(text); }));
    requests_.push_back(requests.reloadHistoryTable.add([this] { reloadHistoryTable(); }));
    requests_.push_back(requests.refreshPermissions.add([this] { refreshPermissions(); }));
}

void MainWindowController::showStatusMenuFromWindow() {
    if (with_.popUpStatusMenu) {
        const QWidget& button = view_->header().moreOptionsButton();
        with_.popUpStatusMenu(button.mapToGlobal(QPoint(0, button.height() + kMenuGap)));
    }
}

void MainWindowController::present() {
    with_.queue.async(lifetime_.guard([this] { presentMainWindow(); }));
}

void MainWindowController::presentMainWindow() {
    if (window_->isMinimized()) {
        window_->setWindowState(window_->windowState() & ~Qt::WindowMinimized);
    }
    forceMainWindowFrame();
    makeKeyAndOrderFront();
}

void MainWindowController::makeKeyAndOrderFront() {
    const bool isComingUp = !window_->isVisible();
    window_->show();
    window_->raise();
    // Of a window that is just coming up Qt would ask this later, and take the keyboard back from a window
    // that the user has turned to meanwhile.
    if (!isComingUp) {
        window_->activateWindow();
    }
    // The talk key or another copy of the program may have led here, of which Qt has no event and no time;
    // window managers refuse requests that seem to be of the past. The window has to be theirs by then.
    waitForWindowRequests();
    RunningApplication self = with_.workspace.currentApplication();
    self.window = window_->winId();
    with_.workspace.activate(self, kActivateAllWindows | kActivateIgnoringOtherApps);
}

void MainWindowController::showSavedToast(const std::string& text) {
    view_->toast().showSavedToast(QString::fromStdString(text));
}

void MainWindowController::reloadHistoryTable() {
    history_->reload();
}

void MainWindowController::refreshPermissions() {
    permissions_->refresh();
}

void MainWindowController::forceMainWindowFrame() {
    const auto screen = with_.screens.mainScreen();
    if (!screen) {
        return;
    }
    window_->setMinimumSize(static_cast<int>(mainWindowWidth), static_cast<int>(mainWindowMinHeight));
    window_->setMaximumSize(static_cast<int>(mainWindowWidth), static_cast<int>(mainWindowMaxHeight));
    window_->setFrame(defaultMainWindowFrame(screen->visibleFrame));
}

void MainWindowController::contentHeightChanged(QWidget& section) {
    // From the inside out, now instead of when the event loop comes to it: the cards' height is looked at
    // next.
    for (QWidget* widget = &section; widget && section.isVisible(); widget = widget->parentWidget()) {
        QEvent request(QEvent::LayoutRequest);
        QCoreApplication::sendEvent(widget, &request);
    }
    updateMainWindowHeight(false);
}

void MainWindowController::updateMainWindowHeight(bool animated) {
    if (!view_) {
        return;
    }
    const Rect fitted = fittedMainWindowFrame(window_->frame(), view_->stackFittingHeight());
    if (animated) {
        window_->setFrameAnimated(fitted, theme::kAccordionDuration, theme::kAccordionCurve);
    } else {
        window_->setFrame(fitted);
    }
}

} // namespace tovik

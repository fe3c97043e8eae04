// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Speech/Translation/TranslationManager.h"
#include "UserInterface/Controls/Buttons.h"
#include "UserInterface/Controls/Theme.h"
#include "UserInterface/Controls/WindowSystem.h"
#include "UserInterface/Corrections/CorrectionsSection.h"
#include "UserInterface/History/HistoryRows.h"
#include "UserInterface/History/TranscriptHistorySection.h"
#include "UserInterface/History/TranscriptHistoryTable.h"
#include "UserInterface/Overlay/FloatingPanel.h"
#include "UserInterface/Window/Accordion.h"
#include "UserInterface/Window/HeaderView.h"
#include "UserInterface/Window/MainWindowController.h"
#include "UserInterface/Window/MainWindowLayout.h"
#include "UserInterface/Window/MainWindowView.h"
#include "WaveformOverlay.h"
#include "support/FakeScreens.h"
#include "support/FakeWorkspace.h"
#include "support/ManualTime.h"
#include "ui/StatusMenuStage.h"
#include "ui/WindowStage.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QKeyEvent>
#include <QLineEdit>
#include <QLocale>
#include <QMenu>
#include <QPainter>
#include <QScreen>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <nlohmann/json.hpp>
#include <utility>

/// Takes the pictures of docs/screenshots on whatever X server it finds: take-screenshots calls it.
namespace tovik {
namespace {

/// Something to lie beneath the pill: a page of text.
class Page : public QWidget {
public:
    Page() : QWidget(nullptr, Qt::Window | Qt::FramelessWindowHint | Qt::X11BypassWindowManagerHint) {
        setGeometry(QGuiApplication::primaryScreen()->geometry());
    }

protected:
    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter painter(this);
        painter.fillRect(rect(), Qt::white);
        painter.setPen(QColor(120, 120, 120));
        painter.setFont(theme::font(14));
        for (int line = 1; line < height() / 24; ++line) {
            painter.drawText(24, line * 24,
                             QStringLiteral("The quick brown fox jumps over the lazy dog, and back again, "
                                            "before anyone has noticed it at all."));
        }
    }
};

class Photographer {
public:
    Photographer(QString folder, QString suffix) : folder_(std::move(folder)), suffix_(std::move(suffix)) {}

    /// Part of the screen, as the user sees it.
    using Expectation = std::function<bool(const QImage&)>;

    /// Part of the screen, as the user sees it, once it looks as expected and no longer changes: the X server
    /// and the compositor take their time.
    void takeScreen(const QString& name, const QRect& area, const Expectation& isThere) {
        QImage last;
        QElapsedTimer timer;
        timer.start();
        while (timer.elapsed() < kPatienceMilliseconds) {
            settle();
            const QImage picture = QGuiApplication::primaryScreen()
                                       ->grabWindow(0, area.x(), area.y(), area.width(), area.height())
                                       .toImage();
            if (picture == last && isThere(picture)) {
                save(picture, name);
                return;
            }
            last = picture;
        }
        std::printf("FAILED %s does not show\n", qPrintable(name));
    }

    static void settle() {
        QElapsedTimer timer;
        timer.start();
        while (timer.elapsed() < 200) {
            QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
        }
    }

private:
    static constexpr int kPatienceMilliseconds = 20000;

    void save(const QImage& picture, const QString& name) {
        const QString file = folder_ + QLatin1Char('/') + name + suffix_ + QStringLiteral(".png");
        std::printf("%s %s\n", picture.save(file) ? "took" : "FAILED", qPrintable(file));
    }

    QString folder_;
    QString suffix_;
};

/// Tells of the screen that is really there.
void fillScreen(test::FakeScreens& screens) {
    const QRect screen = QGuiApplication::primaryScreen()->geometry();
    const Rect frame{0, 0, static_cast<double>(screen.width()), static_cast<double>(screen.height())};
    screens.setScreens({{frame, frame}});
    screens.setPointerLocation({10, 10});
}

struct Stage {
    test::ManualTime time;
    test::FakeScreens screens;
    test::FakeWorkspace workspace;
    DesktopCompositing compositing;

    Stage() { fillScreen(screens); }
};

constexpr int kMargin = 24;

QColor colorAt(const QImage& picture, double x, double y) {
    return picture.pixelColor(static_cast<int>(x * picture.devicePixelRatio()),
                              static_cast<int>(y * picture.devicePixelRatio()));
}

/// A dark panel in the middle, the page around it.
bool showsPanel(const QImage& picture) {
    const double middle = picture.height() / picture.devicePixelRatio() / 2;
    return colorAt(picture, kMargin + 3, middle).lightness() < 60 && colorAt(picture, 4, 4).lightness() > 90;
}

/// The ground of the main window at its left side, beside the header.
bool showsWindow(const QImage& picture) {
    const QColor ground = theme::windowBackground(QGuiApplication::palette());
    return std::abs(colorAt(picture, 16, 120).lightness() - ground.lightness()) < 4;
}

QRect around(const Rect& frame, int margin) {
    return QRect(static_cast<int>(frame.x), static_cast<int>(frame.y), static_cast<int>(frame.width),
                 static_cast<int>(frame.height))
        .adjusted(-margin, -margin, margin, margin);
}

void takePills(Photographer& photographer) {
    Stage stage;
    Page page;
    page.show();
    while (!stage.compositing.isActive()) {
        Photographer::settle();
    }
    struct Picture {
        const char* name;
        Seconds elapsed;
        bool speaking;
    };
    for (const Picture& picture :
         {Picture{"pill-silent", Seconds{2}, false}, Picture{"pill-speaking", Seconds{12}, true},
          Picture{"pill-hour", Seconds{3605}, true}}) {
        WaveformOverlay overlay(stage.time, stage.time, stage.screens, stage.workspace, stage.compositing);
        overlay.show(stage.time.now() - std::chrono::duration_cast<Date::duration>(picture.elapsed));
        stage.time.advance(Seconds{0.2});
        for (int index = 0; picture.speaking && index < 40; ++index) {
            overlay.setLevel(static_cast<float>(std::abs(std::sin(index * 0.7) * std::sin(index * 0.23))));
        }
        photographer.takeScreen(QString::fromLatin1(picture.name),
                                around(overlay.window()->panelFrame(), kMargin), showsPanel);
    }
    QtHintPanels panels(stage.time, stage.time, stage.compositing);
    const auto screen = stage.screens.mainScreen()->frame;
    const HintDescription hints[] = {{"Fn+Shift for hands-free · release Fn to stop",
                                      {screen.midX() - 142, screen.bottom() - 30 - 60, 284, 28},
                                      10.5,
                                      FontWeight::medium,
                                      0.82},
                                     {"Hands-free · Fn+Shift to finish",
                                      {screen.midX() - 108, screen.bottom() - 30 - 60, 216, 28},
                                      12,
                                      FontWeight::semibold,
                                      0.86}};
    const char* names[] = {"hint-tip", "hint-hands-free"};
    for (int index = 0; index < 2; ++index) {
        const auto panel = panels.makePanel(hints[index]);
        panel->fadeIn(Seconds{0.2});
        stage.time.advance(Seconds{0.2});
        photographer.takeScreen(QString::fromLatin1(names[index]), around(hints[index].frame, kMargin),
                                showsPanel);
    }
}

void takeWindow(Photographer& photographer, test::WindowStage& stage, const QString& name) {
    Photographer::settle();
    photographer.takeScreen(name, stage.controller->window().frameGeometry(), showsWindow);
}

/// What somebody may have said over a day or two; the last one is the newest.
void fillHistory(test::WindowStage& stage) {
    for (const char* text :
         {"Remind me to water the plants on Friday.", "The invoice is due on March 5 and comes to $1,250.",
          "Could you send me the notes from this morning? I would like to read them again before the "
          "meeting, "
          "and I think that the numbers on the second page are not the ones that we agreed on last week.",
          "Go forward 10 meters.", "First line of a list\nsecond line of a list",
          "Let's meet at 1:30 PM, in front of the main entrance.",
          "I have been thinking about what you said, and you are right: it is better to finish the small "
          "things first.",
          "Thank you, see you tomorrow."}) {
        stage.history.add(text);
        stage.time.pause(Seconds{3725});
    }
}

/// What somebody who has used the program for a while has in it.
void fillSettings(test::WindowStage& stage) {
    stage.dictionary.setDictionary({{"bot to bot", "Tovik Record"},
                                    {"toe vic record", "Tovik Record"},
                                    {"brindle pad", "Brindlepad"},
                                    {"cooper netties", "Kubernetes"},
                                    {"cube or nettys", "Kubernetes"},
                                    {"kubernetes'", "Kubernetes"},
                                    {"post gress", "PostgreSQL"},
                                    {"quill on a i", "Quillon AI"}});
    stage.defaults.set(FillerWords::removeKey, true);
    stage.defaults.set(kTranslationEnabledKey, true);
    stage.defaults.set(kTranslationTargetLanguageKey, "pt-BR");
}

/// The editor just after a correction was added.
void takeEditing(Photographer& photographer, test::WindowStage& stage, const QString& prefix) {
    MainWindowController& window = *stage.controller;
    window.accordion().setAccordion(QString::fromLatin1(kCorrectionsSection), true, false);
    Photographer::settle();
    window.corrections().editor().addCorrectionRow();
    stage.time.advance(Seconds{0.2});
    takeWindow(photographer, stage, prefix + QStringLiteral("corrections-editing"));
    stage.time.advance(Seconds{2});
    window.view().setFocus(Qt::OtherFocusReason);
    window.accordion().setAccordion(QString::fromLatin1(kCorrectionsSection), false, false);
}

/// The history while it is searched, with a row just copied and another drawn aside.
void takeSearching(Photographer& photographer, test::WindowStage& stage, const QString& prefix) {
    MainWindowController& window = *stage.controller;
    const QString section = QString::fromLatin1(kHistorySection);
    auto& history = *window.window().findChild<TranscriptHistorySection*>();
    auto& table = history.historyTableView();
    window.accordion().setAccordion(section, true, false);
    window.view().setScrollOffset(1000);
    history.historySearchField().lineEdit().setText(QStringLiteral("the"));
    table.setFocus(Qt::OtherFocusReason);
    emit table.copyRequested(0);
    table.cellAt(1)->setSwipeOffset(RowSwipe::kActionWidth);
    stage.time.advance(Seconds{0.2});
    takeWindow(photographer, stage, prefix + QStringLiteral("history-searching"));
    stage.time.advance(Seconds{2});
    history.historySearchField().lineEdit().clear();
    window.view().setFocus(Qt::OtherFocusReason);
    window.accordion().setAccordion(section, false, false);
}

void takeMissingTranslator(Photographer& photographer, test::WindowStage& stage, const QString& prefix) {
    const QString section = QString::fromLatin1(kTranslationSection);
    stage.translator.missing =
        "To translate on this machine, install the packages apertium and apertium-eng-spa.";
    stage.controller->accordion().setAccordion(section, true, false);
    takeWindow(photographer, stage, prefix + QStringLiteral("translation-missing"));
    stage.controller->accordion().setAccordion(section, false, false);
}

void takeWindows(Photographer& photographer, const QString& prefix, const QStringList& sectionsToOpen) {
    test::WindowStage granted;
    fillScreen(granted.screens);
    fillHistory(granted);
    fillSettings(granted);
    granted.build();
    takeWindow(photographer, granted, prefix + QStringLiteral("collapsed"));
    for (const SectionHeader& section : mainWindowSections(false)) {
        const QString title = QString::fromStdString(section.title);
        if (!sectionsToOpen.contains(title)) {
            continue;
        }
        granted.controller->accordion().setAccordion(title, true, false);
        const bool isLow = section.title == kPermissionsSection || section.title == kHistorySection;
        granted.controller->view().setScrollOffset(isLow ? 1000 : 0);
        takeWindow(photographer, granted,
                   prefix + QStringLiteral("open-") +
                       title.toLower().replace(QLatin1Char(' '), QLatin1Char('-')));
        granted.controller->accordion().setAccordion(title, false, false);
    }
    takeEditing(photographer, granted, prefix);
    takeSearching(photographer, granted, prefix);
    takeMissingTranslator(photographer, granted, prefix);
    granted.controller->showSavedToast("Input device saved");
    granted.time.advance(Seconds{0.2});
    takeWindow(photographer, granted, prefix + QStringLiteral("toast"));
    granted.controller.reset();

    test::WindowStage pending;
    fillScreen(pending.screens);
    pending.leavePermissionsPending();
    pending.build();
    takeWindow(photographer, pending, prefix + QStringLiteral("permissions-pending"));
}

/// The menu that the window's button opens, with each of its submenus.
void takeMenus(Photographer& photographer, const QString& prefix) {
    test::WindowStage stage;
    fillScreen(stage.screens);
    fillHistory(stage);
    stage.build();
    test::StatusMenuStage menu(stage);
    menu.plugIn({{"internal", "Built-in Audio Analog Stereo"}, {"usb", "USB Headset"}});
    struct Picture {
        const char* name;
        int row;
    };
    for (const Picture& picture :
         {Picture{"input-devices", 0}, Picture{"dictation-language", 1}, Picture{"transcript-history", 4}}) {
        stage.controller->view().header().moreOptionsButton().click();
        QMenu& shown = menu.shown.widget();
        shown.popup(stage.menuPopUps.back());
        shown.setActiveAction(shown.actions().at(picture.row));
        QKeyEvent intoSubmenu(QEvent::KeyPress, Qt::Key_Right, Qt::NoModifier);
        QApplication::sendEvent(&shown, &intoSubmenu);
        Photographer::settle();
        const QRect frame = stage.controller->window().frameGeometry();
        const QRect menus = shown.geometry().united(shown.activeAction()->menu()->geometry());
        const QRect area(frame.left(), frame.top(),
                         std::max(frame.right(), menus.right()) - frame.left() + kMargin,
                         menus.bottom() - frame.top() + kMargin);
        photographer.takeScreen(prefix + QString::fromLatin1(picture.name),
                                area.intersected(QGuiApplication::primaryScreen()->geometry()), showsWindow);
        shown.close();
    }
}

QStringList allSections() {
    QStringList titles;
    for (const SectionHeader& section : mainWindowSections(false)) {
        titles.append(QString::fromStdString(section.title));
    }
    return titles;
}

QPalette darkPalette() {
    QPalette palette(QColor(60, 60, 64), QColor(32, 32, 35));
    palette.setColor(QPalette::WindowText, QColor(235, 235, 238));
    palette.setColor(QPalette::Text, QColor(235, 235, 238));
    palette.setColor(QPalette::ButtonText, QColor(235, 235, 238));
    palette.setColor(QPalette::Base, QColor(24, 24, 27));
    return palette;
}

} // namespace
} // namespace tovik

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    QApplication::setStyle(QStringLiteral("Fusion"));
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    const QStringList arguments = QApplication::arguments();
    if (arguments.size() != 3) {
        std::fprintf(stderr, "usage: %s FOLDER SUFFIX\n", argv[0]);
        return 2;
    }
    tovik::Photographer photographer(arguments[1], arguments[2]);
    tovik::takePills(photographer);
    tovik::takeWindows(photographer, QStringLiteral("window-"), tovik::allSections());
    tovik::takeMenus(photographer, QStringLiteral("menu-"));
    QApplication::setPalette(tovik::darkPalette());
    tovik::takeWindows(photographer, QStringLiteral("window-dark-"), tovik::allSections());
    tovik::takeMenus(photographer, QStringLiteral("menu-dark-"));
    return 0;
}

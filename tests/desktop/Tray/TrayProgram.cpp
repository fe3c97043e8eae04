// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
//
// A program with nothing but a status item, for tests that look at the tray from outside. Tells on standard
// output what happens, and does what the lines on standard input say.
#include "Linux/Desktop/ProgramEnd.h"
#include "Linux/Storage/StandardLog.h"
#include "UserInterface/StatusItem/QtStatusItem.h"

#include <QApplication>
#include <QPixmap>
#include <QSocketNotifier>

#include <iostream>
#include <string>

namespace {

using tovik::Menu;
using tovik::MenuItem;
using tovik::StatusImage;

/// Plain colours, easy to find on a picture of the screen.
QIcon render(const StatusImage& image) {
    QPixmap pixmap(18, 18);
    pixmap.fill(image.kind == StatusImage::Kind::symbol ? QColor(0, 255, 0) : QColor(255, 0, 0));
    return pixmap;
}

class Program {
public:
    Program() : statusItem_(render, log_) {
        if (statusItem_.hasButton()) {
            statusItem_.setImage({});
            statusItem_.setToolTip("Tovik Record");
        }
        more_->onWillOpen = [this] {
            ++openings_;
            more_->setItems({item("Opened " + std::to_string(openings_))});
        };
        auto checked = item("Checked");
        checked.isChecked = true;
        auto disabled = item("Disabled");
        disabled.isEnabled = false;
        MenuItem more;
        more.title = "More";
        more.submenu = more_;
        auto quit = item("Quit");
        quit.keyEquivalent = "q";
        menu_->setItems({item("First"), checked, MenuItem::separator(), disabled, more, quit});
        statusItem_.setMenu(menu_);
        tell();
    }

    void obey(const std::string& command) {
        if (command == "symbol") {
            statusItem_.setImage({StatusImage::Kind::symbol, "waveform", "Recording", 14});
        } else if (command == "icon") {
            statusItem_.setImage({});
        } else if (command == "change") {
            menu_->setItems({item("Changed")});
        }
        tell();
    }

private:
    [[nodiscard]] MenuItem item(const std::string& title) {
        MenuItem made;
        made.title = title;
        made.action = [this, title] { log_.printLine("chosen " + title); };
        return made;
    }
    void tell() { log_.printLine(statusItem_.hasButton() ? "has a button" : "has no button"); }

    tovik::StandardLog log_;
    std::shared_ptr<Menu> menu_ = std::make_shared<Menu>();
    std::shared_ptr<Menu> more_ = std::make_shared<Menu>();
    int openings_ = 0;
    tovik::QtStatusItem statusItem_;
};

} // namespace

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    // The menu, too, is easy to find on a picture.
    application.setStyleSheet("QMenu { background: #0000ff }");
    QApplication::setApplicationName("tray-program");
    QApplication::setApplicationDisplayName("Tray Program");
    const tovik::TerminationSignals termination([] { QApplication::quit(); });
    Program program;
    const QSocketNotifier commands(0, QSocketNotifier::Read);
    QObject::connect(&commands, &QSocketNotifier::activated, &application, [&] {
        std::string command;
        if (std::getline(std::cin, command)) {
            program.obey(command);
        } else {
            QApplication::quit();
        }
    });
    return QApplication::exec();
}

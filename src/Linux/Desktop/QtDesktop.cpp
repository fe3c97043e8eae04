// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Linux/Desktop/QtDesktop.h"

#include <QCloseEvent>
#include <QCursor>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QMessageBox>
#include <QProcess>
#include <QPushButton>
#include <QScreen>

#include <linux/close_range.h>
#include <signal.h>
#include <unistd.h>

#include <algorithm>

namespace tovik {

namespace {

Rect rectOf(const QRect& rect) {
    return {static_cast<double>(rect.x()), static_cast<double>(rect.y()), static_cast<double>(rect.width()),
            static_cast<double>(rect.height())};
}

/// Where no monitor is connected, Qt still lists one without an area.
std::optional<Screen> screenOf(const QScreen* screen) {
    if (!screen || screen->geometry().isEmpty()) {
        return std::nullopt;
    }
    return Screen{rectOf(screen->geometry()), rectOf(screen->availableGeometry())};
}

/// A message box that can always be closed without an answer.
class AlertBox : public QMessageBox {
protected:
    void closeEvent(QCloseEvent* event) override {
        event->accept();
        reject();
    }
    void keyPressEvent(QKeyEvent* event) override {
        if (event->matches(QKeySequence::Cancel)) {
            reject();
            return;
        }
        QMessageBox::keyPressEvent(event);
    }
};

/// Sentences may be broken, but commands in lines of their own stay whole and can be copied.
void makeCommandsReadable(QMessageBox& box) {
    constexpr int kWidest = 560;
    for (auto* const label : box.findChildren<QLabel*>()) {
        if (label->text() != box.informativeText()) {
            continue;
        }
        int widest = 0;
        for (const auto& line : label->text().split('\n')) {
            if (!line.endsWith('.')) {
                widest = std::max(widest, label->fontMetrics().horizontalAdvance(line));
            }
        }
        label->setMinimumWidth(std::min(widest, kWidest));
        label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    }
}

/// A title may hold the sign that marks a shortcut letter.
QString buttonText(const std::string& title) {
    return QString::fromStdString(title).replace(QLatin1String("&"), QLatin1String("&&"));
}

} // namespace

std::optional<Screen> QtScreens::mainScreen() const {
    return screenOf(QGuiApplication::primaryScreen());
}

std::vector<Screen> QtScreens::screens() const {
    std::vector<Screen> all;
    for (const auto* screen : QGuiApplication::screens()) {
        if (const auto known = screenOf(screen)) {
            all.push_back(*known);
        }
    }
    return all;
}

Point QtScreens::pointerLocation() const {
    const auto position = QCursor::pos();
    return {static_cast<double>(position.x()), static_cast<double>(position.y())};
}

int QtAlert::runModal(const std::string& message, const std::string& informativeText,
                      const std::vector<std::string>& buttons) {
    AlertBox box;
    box.setIcon(QMessageBox::Information);
    box.setWindowTitle(QGuiApplication::applicationDisplayName());
    box.setTextFormat(Qt::PlainText);
    box.setText(QString::fromStdString(message));
    box.setInformativeText(QString::fromStdString(informativeText));
    makeCommandsReadable(box);
    std::vector<QAbstractButton*> added;
    added.reserve(buttons.size());
    for (const auto& title : buttons) {
        // One role for all, so that they stand in the order given.
        added.push_back(box.addButton(buttonText(title), QMessageBox::ActionRole));
    }
    if (!added.empty()) {
        box.setDefaultButton(qobject_cast<QPushButton*>(added.front()));
    }
    box.exec();
    const auto chosen = std::find(added.begin(), added.end(), box.clickedButton());
    return chosen == added.end() ? -1 : static_cast<int>(chosen - added.begin());
}

Result<void> QtProcessLauncher::launch(const std::string& executable,
                                       const std::vector<std::string>& arguments) {
    // A library may have left something open without thinking of other programs.
    ::close_range(STDERR_FILENO + 1, ~0U, CLOSE_RANGE_CLOEXEC);
    QProcess process;
    process.setProgram(QString::fromStdString(executable));
    QStringList list;
    for (const auto& argument : arguments) {
        list.append(QString::fromStdString(argument));
    }
    process.setArguments(list);
    process.setStandardInputFile(QProcess::nullDevice());
    // What is blocked here would be blocked there.
    sigset_t none;
    sigset_t before;
    sigemptyset(&none);
    ::pthread_sigmask(SIG_SETMASK, &none, &before);
    const bool isStarted = process.startDetached();
    ::pthread_sigmask(SIG_SETMASK, &before, nullptr);
    if (isStarted) {
        return {};
    }
    return Error{"QProcess", process.error(),
                 "Cannot start " + executable + ": " + process.errorString().toStdString()};
}

} // namespace tovik

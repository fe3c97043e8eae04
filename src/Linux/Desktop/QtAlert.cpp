// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Linux/Desktop/QtAlert.h"

#include <QCloseEvent>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>

#include <algorithm>

namespace tovik {

namespace {

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

} // namespace tovik

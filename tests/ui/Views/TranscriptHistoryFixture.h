// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "UserInterface/History/TranscriptHistorySection.h"
#include "UserInterface/History/TranscriptHistoryTable.h"
#include "UserInterface/Window/MainWindowLayout.h"
#include "UserInterface/Window/MainWindowView.h"
#include "UserInterface/Window/ToastView.h"
#include "ui/WindowStage.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QLabel>
#include <QLineEdit>
#include <QScrollBar>
#include <QTest>
#include <QWheelEvent>

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace tovik::test {

/// The main window with its history section open.
class TranscriptHistoryFixture : public testing::Test {
protected:
    /// The last one is the newest.
    void build(const std::vector<std::string>& texts) {
        add(texts);
        stage.build();
        stage.controller->accordion().setAccordion(QString::fromLatin1(kHistorySection), true, false);
        stage.controller->window().activateWindow();
        QCoreApplication::processEvents();
        section = stage.controller->window().findChild<TranscriptHistorySection*>();
    }
    void add(const std::vector<std::string>& texts) {
        for (const auto& text : texts) {
            stage.history.add(text);
            stage.time.pause(Seconds{1});
        }
    }
    void buildNumbered(int count) {
        std::vector<std::string> texts;
        for (int number = count - 1; number >= 0; --number) {
            texts.push_back("text " + std::to_string(number));
        }
        build(texts);
    }

    [[nodiscard]] TranscriptHistoryTable& table() const { return section->historyTableView(); }
    [[nodiscard]] QLineEdit& search() const { return section->historySearchField().lineEdit(); }
    [[nodiscard]] std::string count() const { return section->historyCountLabel().text().toStdString(); }
    [[nodiscard]] std::string toast() {
        auto& view = stage.controller->view().toast();
        return view.isHidden() ? "" : view.findChild<QLabel*>()->text().toStdString();
    }
    [[nodiscard]] std::vector<std::string> shown() const {
        std::vector<std::string> texts;
        for (const auto* cell : table().visibleCells()) {
            texts.push_back(cell->contents().text.toStdString());
        }
        return texts;
    }
    [[nodiscard]] std::vector<std::string> stored() const {
        std::vector<std::string> texts;
        for (const auto& entry : stage.history.entries()) {
            texts.push_back(entry.text);
        }
        return texts;
    }

    [[nodiscard]] QPoint middleOf(int row) const {
        auto* cell = table().cellAt(row);
        return cell ? cell->geometry().center() : QPoint();
    }
    void doubleClick(const QPoint& place) {
        QTest::mouseClick(&table(), Qt::LeftButton, {}, place);
        QTest::mouseDClick(&table(), Qt::LeftButton, {}, place);
    }
    void drag(const QPoint& from, const QPoint& to) {
        QTest::mousePress(&table(), Qt::LeftButton, {}, from);
        QTest::mouseMove(&table(), from + (to - from) / 2);
        QTest::mouseMove(&table(), to);
        QTest::mouseRelease(&table(), Qt::LeftButton, {}, to);
        stage.time.advance(Seconds{0.2});
    }
    void turnWheel(const QPoint& place, const QPoint& angle) {
        QWheelEvent event(place, table().mapToGlobal(place), {}, angle, Qt::NoButton, Qt::NoModifier,
                          Qt::NoScrollPhase, false);
        QApplication::sendEvent(&table(), &event);
    }
    void openMenuByMouse(int row) {
        const QPoint place = middleOf(row);
        QContextMenuEvent event(QContextMenuEvent::Mouse, place, table().mapToGlobal(place));
        QApplication::sendEvent(&table(), &event);
    }
    void openMenuByKeyboard() {
        QContextMenuEvent event(QContextMenuEvent::Keyboard, {}, {});
        QApplication::sendEvent(&table(), &event);
    }
    void chooseInMenu(int keysDown) {
        ASSERT_NE(section->contextMenu(), nullptr);
        for (int step = 0; step < keysDown; ++step) {
            QTest::keyClick(section->contextMenu(), Qt::Key_Down);
        }
        QTest::keyClick(section->contextMenu(), Qt::Key_Return);
    }

    WindowStage stage;
    TranscriptHistorySection* section = nullptr;
};

} // namespace tovik::test

// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "UserInterface/Controls/Buttons.h"
#include "UserInterface/Controls/Fields.h"
#include "UserInterface/Corrections/CorrectionGroupView.h"
#include "UserInterface/Corrections/CorrectionsListView.h"
#include "UserInterface/Corrections/CorrectionsSection.h"
#include "support/EventLoop.h"
#include "support/MemoryUserDefaults.h"
#include "support/RecordingLog.h"

#include <QApplication>
#include <QPushButton>
#include <QScrollArea>
#include <QTest>
#include <QVBoxLayout>

#include <gtest/gtest.h>

#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace tovik::test {

/// The section as it stands in the window: in a column that scrolls, with a control above and one below.
struct CorrectionsSectionFixture : testing::Test {
    using Control = CorrectionGroupView::Control;

    MemoryUserDefaults defaults;
    RecordingLog log;
    TranscriptionDictionary dictionary{defaults, log};
    std::vector<std::string> toasts;
    std::unique_ptr<QWidget> window = std::make_unique<QWidget>();
    QScrollArea* scroll = new QScrollArea(window.get());
    QPushButton* above = new QPushButton(QStringLiteral("above"));
    QPushButton* below = new QPushButton(QStringLiteral("below"));
    CorrectionsSection* section = nullptr;

    void build(const TranscriptionDictionary::Mapping& mapping) {
        dictionary.setDictionary(mapping);
        section = new CorrectionsSection(dictionary, defaults,
                                         [this](const std::string& text) { toasts.push_back(text); });
        auto* document = new QWidget;
        auto* column = new QVBoxLayout(document);
        column->addWidget(above);
        column->addWidget(section);
        column->addWidget(below);
        column->addStretch();
        scroll->setWidgetResizable(true);
        scroll->setFocusPolicy(Qt::NoFocus);
        scroll->setWidget(document);
        scroll->resize(440, 500);
        window->resize(440, 500);
        window->show();
        QApplication::setActiveWindow(window.get());
        runPendingEvents();
    }

    [[nodiscard]] TranscriptionDictionary::Mapping stored() const {
        return defaults.value(TranscriptionDictionary::dictionaryKey)
            ->get<TranscriptionDictionary::Mapping>();
    }
    [[nodiscard]] CorrectionGroupView& groupOf(const std::string& heard) const {
        return *section->list().showGroupOf(heard);
    }
    [[nodiscard]] FieldShell& heardField(const std::string& heard) const {
        return *qobject_cast<FieldShell*>(groupOf(heard).controlAt({Control::heardField, heard}));
    }
    [[nodiscard]] FieldShell& replacementField(const std::string& heard) const {
        return *qobject_cast<FieldShell*>(groupOf(heard).controlAt({Control::replacementField, heard}));
    }
    [[nodiscard]] BorderlessButton& button(const std::string& heard, Control control) const {
        return *qobject_cast<BorderlessButton*>(groupOf(heard).controlAt({control, heard}));
    }
    static void click(QWidget& control) {
        QTest::mouseClick(&control, Qt::LeftButton);
        runPendingEvents();
    }
    static void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        QTest::keyClick(QApplication::focusWidget(), key, modifiers);
        runPendingEvents();
    }
    /// Replaces what is in the field that has the keyboard.
    static void type(const char* text) {
        press(Qt::Key_A, Qt::ControlModifier);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Delete);
        QTest::keyClicks(QApplication::focusWidget(), QString::fromUtf8(text));
    }
    static void typeInto(QWidget& field, const char* text) {
        click(field);
        type(text);
    }
    [[nodiscard]] std::vector<std::string> shownReplacements() const {
        std::vector<std::string> texts;
        for (auto* group : section->list().shownGroups()) {
            texts.push_back(group->group().corrected);
        }
        return texts;
    }
    [[nodiscard]] static TranscriptionDictionary::Mapping many(int count) {
        TranscriptionDictionary::Mapping mapping;
        for (int number = 0; number < count; ++number) {
            const auto text = std::to_string(10000 + number);
            mapping.emplace("heard " + text, "Meant " + text);
        }
        return mapping;
    }
};

} // namespace tovik::test

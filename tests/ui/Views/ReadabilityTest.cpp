// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/Controls/Buttons.h"
#include "UserInterface/Controls/Theme.h"
#include "UserInterface/Permissions/PermissionsSection.h"
#include "UserInterface/Window/Accordion.h"
#include "UserInterface/Window/MainWindowLayout.h"
#include "UserInterface/Window/MainWindowView.h"
#include "UserInterface/Window/ToastView.h"
#include "ui/WindowStage.h"

#include <QApplication>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QPalette>
#include <QTest>

#include <gmock/gmock.h>

#include <map>
#include <optional>
#include <set>

namespace tovik {
namespace {

/// Where a ring, unlike a text, can be made out.
constexpr double kVisibleContrast = 3;

struct Desktop {
    const char* name;
    QColor text;
    QColor window;
};

/// The strengths that texts of the desktop's colour have by design, however faint that is.
const std::map<QString, double>& strengthsByDesign() {
    static const std::map<QString, double> kStrengths{
        {QStringLiteral("Check access and grant what is missing"), 0.5},
        {QStringLiteral("Review and fix transcript errors"), 0.5},
        {QStringLiteral("Remove filler words, pauses, and more"), 0.5},
        {QStringLiteral("Translate your transcript"), 0.5},
        {QStringLiteral("View and manage past transcripts"), 0.5},
        {QStringLiteral("Comma-separated. Clear to restore defaults."), 0.5},
        {QStringLiteral(
             "Accessibility setup: open Settings, turn on Tovik Record, then return here and Refresh."),
         0.52},
        {QStringLiteral("From:"), 0.68},
        {QStringLiteral("To:"), 0.68},
        {QStringLiteral("Permissions"), 0.92},
        {QStringLiteral("Corrections"), 0.92},
        {QStringLiteral("Cleanup"), 0.92},
        {QStringLiteral("Translation"), 0.92},
        {QStringLiteral("Transcript History"), 0.92},
    };
    return kStrengths;
}

/// The whole window on a desktop of these colours, with every section open.
class OnADesktop : public testing::TestWithParam<Desktop> {
protected:
    OnADesktop() {
        QPalette palette(GetParam().window);
        palette.setColor(QPalette::Window, GetParam().window);
        palette.setColor(QPalette::WindowText, GetParam().text);
        palette.setColor(QPalette::Text, GetParam().text);
        palette.setColor(QPalette::Base, GetParam().window);
        QApplication::setPalette(palette);
        stage.leavePermissionsPending();
        stage.translator.missing = "This computer cannot translate.";
        stage.history.add("go forward ten meters");
        stage.build();
        for (const char* title :
             {"Permissions", "Corrections", "Cleanup", "Translation", "Transcript History"}) {
            stage.controller->accordion().setAccordion(QString::fromLatin1(title), true, false);
        }
        window().activateWindow();
        QCoreApplication::processEvents();
    }
    ~OnADesktop() override {
        stage.controller.reset();
        QApplication::setPalette(before);
    }

    [[nodiscard]] FixedWidthWindow& window() { return stage.controller->window(); }

    [[nodiscard]] static QColor groundOf(const QWidget* view) {
        for (const auto* parent = view; parent != nullptr; parent = parent->parentWidget()) {
            if (qobject_cast<const ToastView*>(parent) != nullptr) {
                return blended(theme::kToastBackground, theme::kCardBackground);
            }
            if (qobject_cast<const PermissionRowView*>(parent) != nullptr) {
                return theme::kRowBackground;
            }
            if (qobject_cast<const AccordionCard*>(parent) != nullptr) {
                return theme::kCardBackground;
            }
        }
        return theme::windowBackground(QGuiApplication::palette());
    }

    static void expectReadable(const QString& text, const QColor& color, const QWidget* view) {
        const QColor ground = groundOf(view);
        if (const auto given = strengthsByDesign().find(text); given != strengthsByDesign().end()) {
            EXPECT_NEAR(color.alphaF(), given->second, 0.003) << text.toStdString();
            EXPECT_GE(contrastRatio(theme::withAlpha(color, 1), ground), kReadableContrast)
                << text.toStdString();
        } else {
            EXPECT_GE(contrastRatio(blended(color, ground), ground), kReadableContrast) << text.toStdString();
        }
    }

    const QPalette before = QApplication::palette();
    test::WindowStage stage;
};

/// Its colours are given with its states.
bool isOfAPermissionsState(const QWidget* view) {
    for (auto* parent = view->parentWidget(); parent != nullptr; parent = parent->parentWidget()) {
        if (auto* const row = qobject_cast<PermissionRowView*>(parent)) {
            return view == &row->statusLabel() || view == &row->actionButton();
        }
    }
    return false;
}

TEST_P(OnADesktop, everyTextCanBeRead) {
    int texts = 0;
    for (const auto* label : window().findChildren<QLabel*>()) {
        if (!label->text().isEmpty() && label->isVisibleTo(&window()) && !isOfAPermissionsState(label)) {
            ++texts;
            expectReadable(label->text(), label->palette().color(QPalette::WindowText), label);
        }
    }
    for (const auto* button : window().findChildren<BorderlessButton*>()) {
        if (!button->text().isEmpty() && button->isVisibleTo(&window()) && !isOfAPermissionsState(button)) {
            ++texts;
            expectReadable(button->text(), button->contentTint(), button);
        }
    }
    for (const auto* field : window().findChildren<QLineEdit*>()) {
        if (field->isVisibleTo(&window())) {
            ++texts;
            expectReadable(field->text(), field->palette().color(QPalette::Text), field);
            expectReadable(field->placeholderText(), field->palette().color(QPalette::PlaceholderText),
                           field);
        }
    }
    EXPECT_GE(texts, 40);
}

TEST_P(OnADesktop, whatHasTheKeyboardShowsARing) {
    std::set<QWidget*> stops;
    for (;;) {
        QWidget* const last = QApplication::focusWidget();
        QTest::keyClick(last ? last : &window(), Qt::Key_Tab);
        QWidget* const focused = QApplication::focusWidget();
        ASSERT_NE(focused, nullptr);
        if (!stops.insert(focused).second) {
            break;
        }
        const QRect place(focused->mapTo(&window(), QPoint(-3, -3)), focused->size() + QSize(6, 6));
        const QImage with = window().grab(place).toImage();
        focused->clearFocus();
        const QImage without = window().grab(place).toImage();
        focused->setFocus(Qt::TabFocusReason);
        int changed = 0;
        for (int y = 0; y < with.height(); ++y) {
            for (int x = 0; x < with.width(); ++x) {
                changed += contrastRatio(with.pixelColor(x, y), without.pixelColor(x, y)) >= kVisibleContrast
                               ? 1
                               : 0;
            }
        }
        EXPECT_GE(changed, 50) << focused->accessibleName().toStdString();
    }
    EXPECT_GE(stops.size(), 25U);
}

INSTANTIATE_TEST_SUITE_P(
    Desktops, OnADesktop,
    testing::Values(Desktop{"light", Qt::black, QColor(239, 239, 239)},
                    Desktop{"softLight", QColor(46, 52, 54), QColor(246, 245, 244)},
                    Desktop{"dark", QColor(235, 235, 238), QColor(32, 32, 35)},
                    Desktop{"black", Qt::white, Qt::black},
                    Desktop{"paleTextOnLight", QColor(190, 190, 190), QColor(250, 250, 250)},
                    Desktop{"justReadableOnLight", QColor(112, 112, 112), QColor(255, 255, 255)},
                    Desktop{"justReadableOnDark", QColor(130, 130, 130), QColor(20, 20, 20)},
                    Desktop{"dimTextOnDark", QColor(90, 90, 90), QColor(20, 20, 20)}),
    [](const auto& row) { return std::string(row.param.name); });

} // namespace
} // namespace tovik

// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/Permissions/PermissionsSection.h"

#include "UserInterface/Controls/Buttons.h"
#include "UserInterface/Controls/Painting.h"
#include "ui/WindowStage.h"

#include <QImage>
#include <QLabel>
#include <QLayout>

#include <gtest/gtest.h>

#include <memory>
#include <vector>

namespace tovik {
namespace {

QColor inkOf(const QWidget& view) {
    return view.palette().color(QPalette::WindowText);
}

struct PermissionRowViewTest : testing::Test {
    PermissionRowView row{TovikVoicePermission::microphone};

    PermissionRowViewTest() {
        row.update(TovikVoicePermissionState::granted);
        row.resize(400, 54);
        row.show();
        row.layout()->activate();
    }
    [[nodiscard]] QRect placeOf(const QWidget& view) const {
        return {view.mapTo(&row, QPoint(0, 0)), view.size()};
    }
};

TEST_F(PermissionRowViewTest, itsPartsStandWhereTheyBelong) {
    EXPECT_EQ(row.height(), 54);
    EXPECT_EQ(row.minimumHeight(), 54);
    const QRect icon = placeOf(*row.findChild<SymbolView*>());
    EXPECT_EQ(icon, QRect(12, 18, 18, 18));
    const QRect button = placeOf(row.actionButton());
    EXPECT_EQ(button, QRect(400 - 10 - 66, 15, 66, 24));
    const QRect status = placeOf(row.statusLabel());
    EXPECT_EQ(status.right() + 1, button.left() - 10);
    const QRect dot = placeOf(row.statusDot());
    EXPECT_EQ(dot.size(), QSize(6, 6));
    EXPECT_EQ(dot.right() + 1, status.left() - 5);
    EXPECT_NEAR(dot.center().y(), 27, 1);
    const QRect detail = placeOf(row.detailLabel());
    EXPECT_EQ(detail.left(), 12 + 18 + 10);
    EXPECT_LE(detail.right() + 1, dot.left() - 10);
}

TEST_F(PermissionRowViewTest, aStateShowsInTextsAndColours) {
    row.update(TovikVoicePermissionState::denied);
    EXPECT_EQ(row.statusLabel().text(), QStringLiteral("Open Settings"));
    EXPECT_EQ(inkOf(row.statusLabel()).rgb(), qRgb(199, 46, 41));
    EXPECT_EQ(inkOf(row.statusDot()).rgb(), qRgb(199, 46, 41));
    EXPECT_EQ(row.actionButton().text(), QStringLiteral("Settings"));
    EXPECT_EQ(row.actionButton().contentTint().rgb(), qRgb(84, 77, 235));
    EXPECT_EQ(row.actionButton().accessibleName(), QStringLiteral("Microphone permission action"));
    EXPECT_EQ(row.actionButton().accessibleDescription(),
              QStringLiteral("Request or open settings for Microphone"));
    EXPECT_EQ(row.detailLabel().text(), QStringLiteral("Capture audio for dictation."));
}

TEST_F(PermissionRowViewTest, whenGranted_theButtonIsDimmedButCanBeClicked) {
    row.update(TovikVoicePermissionState::granted);
    EXPECT_EQ(row.statusLabel().text(), QStringLiteral("Granted"));
    EXPECT_EQ(inkOf(row.statusLabel()).rgb(), qRgb(31, 140, 61));
    EXPECT_EQ(row.actionButton().text(), QStringLiteral("Refresh"));
    EXPECT_NEAR(row.actionButton().contentTint().alphaF(), 0.5, 0.003);
    EXPECT_TRUE(row.actionButton().isEnabled());
    EXPECT_EQ(row.actionButton().accessibleDescription(),
              QStringLiteral("Refresh Microphone permission status"));
}

TEST_F(PermissionRowViewTest, itsFontsAreAsTheRowWantsThem) {
    EXPECT_EQ(row.statusLabel().font().pixelSize(), 10);
    EXPECT_EQ(row.statusLabel().font().weight(), QFont::Medium);
    EXPECT_EQ(row.actionButton().font().pixelSize(), 10);
    EXPECT_EQ(row.actionButton().font().weight(), QFont::DemiBold);
    EXPECT_EQ(row.detailLabel().font().pixelSize(), 10);
}

TEST_F(PermissionRowViewTest, itsGroundIsNearlyWhiteWithARoundBorder) {
    QImage image(row.size(), QImage::Format_ARGB32);
    image.fill(Qt::transparent);
    row.render(&image, QPoint(), QRegion(), QWidget::DrawChildren);
    EXPECT_EQ(image.pixelColor(200, 4).rgb(), qRgb(251, 251, 251));
    EXPECT_EQ(image.pixelColor(200, 0).rgb(), qRgb(230, 227, 250));
    EXPECT_EQ(image.pixelColor(0, 0).alpha(), 0);
}

TEST_F(PermissionRowViewTest, aDetailThatDoesNotFit_isWholeInItsToolTip) {
    PermissionRowView narrow(TovikVoicePermission::accessibility);
    narrow.update(TovikVoicePermissionState::granted);
    narrow.resize(260, 54);
    narrow.show();
    narrow.layout()->activate();
    EXPECT_EQ(narrow.detailLabel().toolTip(),
              QStringLiteral("Paste transcripts into the app you were using."));
}

struct PermissionsSectionTest : testing::Test {
    test::WindowStage stage;
    std::vector<int> clicks;

    std::unique_ptr<PermissionsSection> make() {
        return std::make_unique<PermissionsSection>(stage.checklist,
                                                    [this](int index) { clicks.push_back(index); });
    }
};

TEST_F(PermissionsSectionTest, hasARowForEveryPermissionAndAHint) {
    stage.leavePermissionsPending();
    const auto section = make();
    EXPECT_EQ(section->row(TovikVoicePermission::microphone).statusLabel().text(),
              QStringLiteral("Open Settings"));
    EXPECT_EQ(section->row(TovikVoicePermission::speech).statusLabel().text(), QStringLiteral("Needs setup"));
    EXPECT_EQ(section->row(TovikVoicePermission::accessibility).statusLabel().text(),
              QStringLiteral("Needs setup"));
    EXPECT_EQ(section->hintLabel().text(),
              QStringLiteral("Accessibility setup: open Settings, turn on Tovik Record, then return here and "
                             "Refresh."));
    EXPECT_EQ(section->hintLabel().font().pixelSize(), 10);
    EXPECT_NEAR(inkOf(section->hintLabel()).alphaF(), 0.52, 0.003);
}

TEST_F(PermissionsSectionTest, whenRefreshed_asksTheDesktopAgain) {
    stage.leavePermissionsPending();
    const auto section = make();
    stage.authorization.setMicrophoneStatus(3);
    stage.authorization.setTrusted(true);
    section->refresh();
    EXPECT_EQ(section->row(TovikVoicePermission::microphone).statusLabel().text(), QStringLiteral("Granted"));
    EXPECT_EQ(section->hintLabel().text(),
              QStringLiteral("Grant these once so Tovik Record can listen, transcribe, and paste back into "
                             "the app you were using."));
}

TEST_F(PermissionsSectionTest, everyButtonTellsItsIndex) {
    const auto section = make();
    for (const TovikVoicePermission permission : kAllPermissions) {
        section->row(permission).actionButton().click();
    }
    EXPECT_EQ(clicks, (std::vector<int>{0, 1, 2}));
}

TEST_F(PermissionsSectionTest, rowsAreEightApart) {
    const auto section = make();
    section->resize(400, section->layout()->totalHeightForWidth(400));
    section->show();
    section->layout()->activate();
    const auto& first = section->row(TovikVoicePermission::microphone);
    const auto& second = section->row(TovikVoicePermission::speech);
    EXPECT_EQ(second.y() - first.y(), 54 + 8);
    EXPECT_EQ(first.width(), 400);
    EXPECT_LE(section->hintLabel().height(), 3 * section->hintLabel().fontMetrics().lineSpacing());
}

} // namespace
} // namespace tovik

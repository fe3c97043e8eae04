// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "UserInterface/Window/Accordion.h"

#include "UserInterface/Controls/Buttons.h"
#include "UserInterface/Controls/Painting.h"
#include "support/EventLoop.h"
#include "support/ManualTime.h"

#include <QImage>
#include <QLabel>
#include <QPainter>
#include <QScrollArea>
#include <QScrollBar>
#include <QWidget>

#include <gmock/gmock.h>

#include <memory>
#include <vector>

namespace tovik {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// Black, with a white line across its lower half.
class Sheet : public QWidget {
public:
    using QWidget::QWidget;

protected:
    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter painter(this);
        painter.fillRect(rect(), Qt::black);
        painter.fillRect(QRect(0, height() / 2, width(), height() / 2), QColor(0, 0, 200));
    }
};

struct FadeEffectTest : testing::Test {
    QWidget window;
    QScrollArea scroll{&window};
    Sheet* sheet = new Sheet;
    FadeEffect* effect = nullptr;

    void build(int height) {
        scroll.setFrameShape(QFrame::NoFrame);
        scroll.setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        sheet->resize(100, height);
        scroll.setWidget(sheet);
        effect = new FadeEffect(*sheet);
        sheet->setGraphicsEffect(effect);
        QPalette white = window.palette();
        white.setColor(QPalette::Window, Qt::white);
        window.setPalette(white);
        scroll.resize(100, 100);
        window.resize(100, 100);
        window.show();
        test::runPendingEvents();
    }
    [[nodiscard]] QColor colorAt(int y) {
        const QImage image = window.grab().toImage();
        const auto scale = image.devicePixelRatio();
        return image.pixelColor(static_cast<int>(50 * scale), static_cast<int>(y * scale));
    }
};

TEST_F(FadeEffectTest, atFullOpacity_showsTheViewAsItIs) {
    build(100);
    EXPECT_EQ(colorAt(10), QColor(Qt::black));
    EXPECT_EQ(colorAt(90), QColor(0, 0, 200));
}

TEST_F(FadeEffectTest, inBetween_letsTheGroundShineThrough) {
    build(100);
    effect->setOpacity(0.5);
    EXPECT_NEAR(colorAt(10).red(), 128, 2);
    EXPECT_NEAR(colorAt(90).blue(), 228, 2);
}

TEST_F(FadeEffectTest, atNoOpacity_showsTheGroundAlone) {
    build(100);
    effect->setOpacity(0);
    EXPECT_EQ(colorAt(10), QColor(Qt::white));
}

TEST_F(FadeEffectTest, ofATallView_showsThePartThatIsScrolledTo) {
    build(30000);
    effect->setOpacity(0.5);
    EXPECT_NEAR(colorAt(50).blue(), 128, 2);
    scroll.verticalScrollBar()->setValue(20000);
    test::runPendingEvents();
    EXPECT_NEAR(colorAt(50).blue(), 228, 2);
}

const SectionHeader kHeader{"Cleanup", "Remove filler words, pauses, and more", "paintbrush.fill",
                            theme::rgb(0.15, 0.66, 0.28)};

struct AccordionTest : testing::Test {
    test::ManualTime time;
    std::vector<bool> fits;
    Accordion accordion{time, time, [this](bool animated) { fits.push_back(animated); }};
    QWidget* content = new QWidget;
    std::unique_ptr<AccordionCard> card;

    AccordionTest() {
        content->setFixedHeight(100);
        card.reset(accordion.buildAccordionSection(kHeader, content));
        card->setFixedWidth(440);
        card->show();
    }

    [[nodiscard]] QRect placeOf(const QWidget& view) const {
        return {view.mapTo(card.get(), QPoint(0, 0)), view.size()};
    }
    [[nodiscard]] QString chevron() const { return card->chevron().symbolName(); }
    void layOut() {
        card->layOut();
        card->adjustSize();
    }
};

TEST_F(AccordionTest, atFirst_isCollapsed) {
    layOut();
    EXPECT_TRUE(card->isContentHidden());
    EXPECT_TRUE(card->isCollapsedHeightActive());
    EXPECT_EQ(card->contentAlpha(), 0);
    EXPECT_EQ(card->height(), 62);
    EXPECT_EQ(chevron(), QStringLiteral("chevron.right"));
}

TEST_F(AccordionTest, itsHeaderStandsWhereItBelongs) {
    layOut();
    const QRect badge = placeOf(*card->findChild<SymbolView*>());
    EXPECT_EQ(badge, QRect(16, 15, 32, 32));
    const QRect title = placeOf(card->titleButton());
    EXPECT_EQ(title.left(), 16 + 32 + 14);
    const QRect chevronPlace = placeOf(card->chevron());
    EXPECT_EQ(chevronPlace, QRect(440 - 20 - 18, 22, 18, 18));
    EXPECT_EQ(title.right() + 1, chevronPlace.left() - 12);
    const QRect subtitle = placeOf(*card->findChild<QLabel*>());
    EXPECT_EQ(subtitle.top(), title.bottom() + 1 + 1);
}

TEST_F(AccordionTest, itsTextsHaveTheirSizesAndStrengths) {
    EXPECT_EQ(card->titleButton().text(), QStringLiteral("Cleanup"));
    EXPECT_EQ(card->titleButton().font().pixelSize(), 14);
    EXPECT_EQ(card->titleButton().font().weight(), QFont::DemiBold);
    EXPECT_NEAR(card->titleButton().contentTint().alphaF(), 0.92, 0.003);
    EXPECT_NEAR(card->chevron().contentTint().alphaF(), 0.66, 0.003);
    const auto* subtitle = card->findChild<QLabel*>();
    EXPECT_EQ(subtitle->text(), QStringLiteral("Remove filler words, pauses, and more"));
    EXPECT_NEAR(subtitle->font().pointSizeF() * subtitle->logicalDpiY() / 72, 10.5, 0.01);
    EXPECT_NEAR(subtitle->palette().color(QPalette::WindowText).alphaF(), 0.5, 0.003);
}

TEST_F(AccordionTest, bothButtonsSayWhatTheyDo) {
    for (const BorderlessButton* button : {&card->titleButton(), &card->chevron()}) {
        EXPECT_EQ(button->objectName(), QStringLiteral("Cleanup"));
        EXPECT_EQ(button->accessibleName(), QStringLiteral("Cleanup section"));
        EXPECT_EQ(button->accessibleDescription(), QStringLiteral("Expand or collapse Cleanup settings"));
    }
}

TEST_F(AccordionTest, theCardIsWhiteWithARoundBorder) {
    layOut();
    QImage image(card->size(), QImage::Format_ARGB32);
    image.fill(Qt::transparent);
    card->render(&image, QPoint(), QRegion(), QWidget::DrawChildren);
    EXPECT_EQ(image.pixelColor(220, 4).rgb(), qRgb(255, 255, 255));
    EXPECT_EQ(image.pixelColor(220, 0).rgb(), qRgb(227, 224, 247));
    EXPECT_EQ(image.pixelColor(0, 31).rgb(), qRgb(227, 224, 247));
    EXPECT_EQ(image.pixelColor(0, 0).alpha(), 0);
    EXPECT_EQ(image.pixelColor(439, 61).alpha(), 0);
}

TEST_F(AccordionTest, whenExpandedAtOnce_showsTheContentInItsPlace) {
    accordion.setAccordion(QStringLiteral("Cleanup"), true, false);
    layOut();
    EXPECT_FALSE(card->isContentHidden());
    EXPECT_FALSE(card->isCollapsedHeightActive());
    EXPECT_EQ(card->contentAlpha(), 1);
    EXPECT_EQ(chevron(), QStringLiteral("chevron.down"));
    EXPECT_EQ(placeOf(*content), QRect(20, 61, 400, 100));
    EXPECT_EQ(card->height(), 61 + 100 + 12);
    EXPECT_THAT(fits, ElementsAre(false));
    EXPECT_EQ(time.pendingCount(), 0U);
}

TEST_F(AccordionTest, whenExpandedWithAnimation_fadesInOverItsTime) {
    accordion.setAccordion(QStringLiteral("Cleanup"), true, true);
    EXPECT_FALSE(card->isContentHidden());
    EXPECT_EQ(card->contentAlpha(), 0);
    EXPECT_FALSE(card->isCollapsedHeightActive());
    EXPECT_EQ(chevron(), QStringLiteral("chevron.down"));
    EXPECT_THAT(fits, ElementsAre(true));

    time.advance(Seconds{0.1});
    EXPECT_GT(card->contentAlpha(), 0.7);
    EXPECT_LT(card->contentAlpha(), 1);
    time.advance(Seconds{0.1});
    EXPECT_EQ(card->contentAlpha(), 1);
    EXPECT_THAT(fits, ElementsAre(true, false));
    EXPECT_EQ(time.pendingCount(), 0U);
}

TEST_F(AccordionTest, whenCollapsedWithAnimation_hidesTheContentAtTheEnd) {
    accordion.setAccordion(QStringLiteral("Cleanup"), true, false);
    accordion.setAccordion(QStringLiteral("Cleanup"), false, true);
    EXPECT_FALSE(card->isContentHidden());
    EXPECT_TRUE(card->isCollapsedHeightActive());
    EXPECT_EQ(chevron(), QStringLiteral("chevron.right"));
    time.advance(Seconds{0.2});
    EXPECT_TRUE(card->isContentHidden());
    EXPECT_EQ(card->contentAlpha(), 0);
}

TEST_F(AccordionTest, whenAlreadyInThatState_changesNothing) {
    accordion.setAccordion(QStringLiteral("Cleanup"), false, true);
    EXPECT_THAT(fits, IsEmpty());
    EXPECT_EQ(time.pendingCount(), 0U);
    EXPECT_EQ(chevron(), QStringLiteral("chevron.right"));

    accordion.setAccordion(QStringLiteral("Cleanup"), true, false);
    fits.clear();
    accordion.setAccordion(QStringLiteral("Cleanup"), true, false);
    EXPECT_THAT(fits, IsEmpty());
}

TEST_F(AccordionTest, anUnknownName_isIgnored) {
    accordion.setAccordion(QStringLiteral("Weather"), true, false);
    accordion.toggleAccordion(QStringLiteral("Weather"));
    EXPECT_THAT(fits, IsEmpty());
}

TEST_F(AccordionTest, titleAndChevron_bothToggle) {
    card->titleButton().click();
    time.advance(Seconds{0.2});
    EXPECT_FALSE(card->isContentHidden());
    card->chevron().click();
    time.advance(Seconds{0.2});
    EXPECT_TRUE(card->isContentHidden());
}

TEST_F(AccordionTest, whenCollapsedWhileExpanding_goesBackFromWhereItStands) {
    card->titleButton().click();
    time.advance(Seconds{0.05});
    const double reached = card->contentAlpha();
    ASSERT_GT(reached, 0);
    card->titleButton().click();
    EXPECT_EQ(card->contentAlpha(), reached);
    time.advance(Seconds{0.2});
    EXPECT_TRUE(card->isContentHidden());
    EXPECT_EQ(time.pendingCount(), 0U);
}

} // namespace
} // namespace tovik

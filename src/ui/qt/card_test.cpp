#include "ui/qt/card.h"

#include "tests/support/offscreen.h"
#include "ui/panel_colors.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QEvent>
#include <QLabel>

using namespace wegslot;

namespace {

/// Counts how often a widget is painted of its own accord.
struct Painted final : QObject {
    int times = 0;
    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() == QEvent::Paint) ++times;
        return false;
    }
};

struct CardTest : testing::Test {
    Offscreen<QApplication> application;
    Observable<Scheme> scheme{Scheme::light};
    CardGround ground;
    QVBoxLayout column{&ground};
    QLabel* content = nullptr;
    std::unique_ptr<Card> card = makeCard();

    CardTest() {
        QPalette colors;
        colors.setColor(QPalette::Window, QColor(250, 241, 222));
        ground.setPalette(colors);
        column.setContentsMargins(16, 16, 16, 16);
        column.addWidget(card.get());
        column.addStretch();
        ground.resize(380, 200);
        ground.show();
        QApplication::processEvents();
    }
    ~CardTest() override { card.reset(); } // before its parent

    std::unique_ptr<Card> makeCard() {
        auto label = std::make_unique<QLabel>(QStringLiteral("Inhoud"));
        label->setFixedHeight(40);
        content = label.get();
        return std::make_unique<Card>(std::move(label), scheme);
    }
    [[nodiscard]] QColor at(int x, int y) {
        QApplication::processEvents();
        return ground.grab().toImage().pixelColor(x, y);
    }
    [[nodiscard]] QColor bare() { return at(2, 198); }
};

} // namespace

TEST_F(CardTest, TakesTheFullWidthWithTwelvePixelsAroundItsContent) {
    EXPECT_EQ(card->geometry(), QRect(16, 16, 348, 64));
    EXPECT_EQ(content->geometry(), QRect(12, 12, 324, 40));
}

TEST_F(CardTest, IsWhiteInTheLightSchemeWithRoundCorners) {
    EXPECT_EQ(at(190, 20), QColor(255, 255, 255));
    EXPECT_EQ(at(30, 70), QColor(255, 255, 255));
    EXPECT_NE(at(16, 16), QColor(255, 255, 255));
    EXPECT_NE(at(19, 18), QColor(255, 255, 255)); // still outside the arc of 14
    EXPECT_EQ(at(21, 21), QColor(255, 255, 255)); // and this inside
}

TEST_F(CardTest, CastsAWarmShadowOnItsParent) {
    const QColor below = at(190, 82);
    EXPECT_LT(below.blue(), bare().blue()); // orange has the least of blue
    EXPECT_EQ(at(190, 92), bare());         // 80 + 3 + 8 is its reach
    EXPECT_EQ(at(190, 10), bare());         // 16 + 3 - 8
}

TEST_F(CardTest, WhatIsBetweenTheCardAndItsGroundDoesNotCutTheGlow) {
    column.removeWidget(card.get());
    auto section = std::make_unique<QWidget>();
    QVBoxLayout tight(section.get());
    tight.setContentsMargins(0, 0, 0, 0);
    tight.addWidget(card.get());
    column.insertWidget(0, section.get());
    QApplication::processEvents();
    ASSERT_EQ(section->geometry(), QRect(16, 16, 348, 64));
    EXPECT_NE(at(190, 82), bare());
    EXPECT_NE(at(13, 50), bare());
    EXPECT_NE(at(366, 50), bare());
    // It goes where what is between goes.
    column.insertSpacing(0, 20);
    QApplication::processEvents();
    ASSERT_EQ(section->y(), 36);
    EXPECT_NE(at(190, 102), bare());
    card->setParent(nullptr);
}

TEST_F(CardTest, TheDarkSchemeChangesFillAndShadowAtOnceAndNothingElse) {
    QPalette colors;
    colors.setColor(QPalette::Window, QColor(31, 32, 67));
    ground.setPalette(colors);
    const QRect before = card->geometry();
    scheme.set(Scheme::dark);
    // 6 % of white on navy.
    EXPECT_NEAR(at(190, 20).red(), 31 + 0.06 * (255 - 31), 1);
    EXPECT_NEAR(at(190, 20).blue(), 67 + 0.06 * (255 - 67), 1);
    EXPECT_EQ(at(190, 82), bare());
    EXPECT_EQ(card->geometry(), before);
    scheme.set(Scheme::light);
    EXPECT_EQ(at(190, 20), QColor(255, 255, 255));
    EXPECT_NE(at(190, 82), bare());
}

TEST_F(CardTest, BothAreRepaintedWithoutBeingAsked) {
    Painted onCard;
    Painted onGround;
    card->installEventFilter(&onCard);
    ground.installEventFilter(&onGround);
    scheme.set(Scheme::dark);
    EXPECT_EQ(onCard.times, 0); // from within the news the old value still stands
    QApplication::processEvents();
    EXPECT_EQ(onCard.times, 1);
    EXPECT_EQ(onGround.times, 1);
    card->hide();
    QApplication::processEvents();
    EXPECT_EQ(onGround.times, 2);
}

TEST_F(CardTest, TheShadowGoesWithTheCard) {
    content->setFixedHeight(80);
    QApplication::processEvents();
    EXPECT_NE(at(190, 122), bare());
    card->hide();
    EXPECT_EQ(at(190, 122), bare());
    card->show();
    EXPECT_NE(at(190, 122), bare());
    card.reset();
    EXPECT_EQ(at(190, 122), bare());
}

TEST_F(CardTest, MeasuresAreThoseOfTheStyle) {
    EXPECT_EQ(cardFill(Scheme::light), brand::white);
    EXPECT_EQ(cardFill(Scheme::dark), brand::white.withOpacity(0.06));
    EXPECT_EQ(Card::shadow(Scheme::light).color, brand::orange.withOpacity(0.1));
    EXPECT_EQ(Card::shadow(Scheme::dark).color.opacity, 0);
    EXPECT_EQ(Card::shadow(Scheme::light).blurRadius, 8);
    EXPECT_EQ(Card::shadow(Scheme::light).offsetDown, 3);
    EXPECT_EQ(Card::cornerRadius, 14);
}

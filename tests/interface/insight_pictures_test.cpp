// What the window "Inzicht" looks like, without a screen.

#include "app/linux/user_language.h"
#include "tests/interface/insight_stage.h"
#include "tests/interface/picture.h"

#include <gtest/gtest.h>

#include <QLabel>

using namespace wegslot;
using namespace wegslot::insight;
using namespace std::chrono_literals;

namespace {

class InsightPicturesTest : public testing::TestWithParam<int> {
protected:
    InsightPicturesTest() : stage(static_cast<double>(GetParam())) {}

    void SetUp() override {
        ASSERT_TRUE(PictureStage::hasFont()) << "install the packages of tools/packages/test";
    }

    [[nodiscard]] testing::AssertionResult shows(InsightStage& insight, const std::string& name) {
        InsightStage::turn();
        if (PictureStage::roundsHeights()) {
            [] { GTEST_SKIP() << "here Qt rounds the heights of fonts: rows lie elsewhere"; }();
            return testing::AssertionSuccess();
        }
        return looksLike(PictureStage::picture(*insight.window),
                         "insight-" + name + "-" + std::to_string(GetParam()) + "x");
    }

    PictureStage stage;
};

INSTANTIATE_TEST_SUITE_P(AtScale, InsightPicturesTest, testing::Values(1, 2));

/// In the language of a locale, for which there must be a catalogue.
UserLanguage languageOf(const std::string& locale) {
    return UserLanguage(
        [&locale](const char* name) {
            return std::string(name) == "LANG" ? locale : std::string();
        },
        WEGSLOT_BUILD_FOLDER "/CMakeCache.txt");
}

void enlargeText() {
    QFont large(PictureStage::ordinary.family);
    large.setPixelSize(22);
    QApplication::setFont(large);
}

/// Looks closely at the lock that came too soon, and has it explained.
void askWhy(InsightStage& insight, const char* answer) {
    insight.model.choose(insight.unjustLock());
    insight.model.zoom(1.0 / 200);
    insight.model.why(*insight.model.chosen());
    insight.model.showAnswer(*insight.model.chosen(), message(answer));
}

/// The texts of which less is seen than there is.
std::vector<std::string> cutIn(const QWidget& window) {
    std::vector<std::string> texts;
    const auto look = [&texts](const QWidget& part, const QString& text) {
        if (!part.isVisible() || text.isEmpty()) return;
        const bool wraps = part.sizePolicy().hasHeightForWidth();
        const bool isWhole = wraps ? part.height() >= part.heightForWidth(part.width())
                                   : part.width() >= part.sizeHint().width();
        if (!isWhole) texts.push_back(text.toStdString());
    };
    for (const QLabel* const text : window.findChildren<QLabel*>())
        look(*text, text->text());
    for (const QAbstractButton* const button : window.findChildren<QAbstractButton*>())
        look(*button, button->text());
    return texts;
}

constexpr auto answerText = "iPhone van Anna was 6 seconden zwakker dan -75 dBm.";

} // namespace

TEST_P(InsightPicturesTest, ADay) {
    InsightStage insight;
    EXPECT_TRUE(shows(insight, "day"));
    insight.scheme.set(Scheme::dark);
    EXPECT_TRUE(shows(insight, "day-dark"));
}

TEST_P(InsightPicturesTest, ALockExplained) {
    InsightStage insight;
    askWhy(insight, answerText);
    EXPECT_TRUE(shows(insight, "lock"));
    insight.scheme.set(Scheme::dark);
    EXPECT_TRUE(shows(insight, "lock-dark"));
}

TEST_P(InsightPicturesTest, NothingIsKept) {
    InsightStage insight(false);
    EXPECT_TRUE(shows(insight, "empty"));
    insight.scheme.set(Scheme::dark);
    EXPECT_TRUE(shows(insight, "empty-dark"));
}

TEST_P(InsightPicturesTest, ADayOfWhichNothingIsKept) {
    InsightStage insight;
    insight.model.go(-1);
    EXPECT_TRUE(shows(insight, "no-day"));
}

TEST_P(InsightPicturesTest, ForgettingIsAskedAbout) {
    InsightStage insight;
    insight.model.askForgetting(true);
    EXPECT_TRUE(shows(insight, "forget"));
}

TEST_P(InsightPicturesTest, LargerText) {
    enlargeText();
    InsightStage insight;
    askWhy(insight, answerText);
    EXPECT_TRUE(shows(insight, "larger-text"));
}

TEST_P(InsightPicturesTest, InGerman) {
    const auto language = languageOf("de");
    InsightStage insight(true, QLocale(QLocale::German));
    askWhy(insight, answerText);
    EXPECT_TRUE(shows(insight, "de"));
}

TEST(InsightInALanguageTest, EveryTextIsReadWholeHoweverLarge) {
    const PictureStage stage;
    for (const bool isLarge : {false, true}) {
        if (isLarge) enlargeText();
        for (const std::string locale : {"C", "de", "en", "fr", "nl"}) {
            const auto language = languageOf(locale);
            InsightStage insight;
            askWhy(insight, answerText);
            InsightStage::turn();
            EXPECT_EQ(cutIn(*insight.window), std::vector<std::string>{}) << locale << isLarge;
            insight.model.askForgetting(true);
            InsightStage::turn();
            EXPECT_EQ(cutIn(*insight.window), std::vector<std::string>{}) << locale << isLarge;
            InsightStage nothing(false);
            EXPECT_EQ(cutIn(*nothing.window), std::vector<std::string>{}) << locale << isLarge;
        }
    }
}

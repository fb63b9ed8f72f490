// What the panel's drawing owes the eye, measured on its pixels: what must not be missed stands out
// from what is behind it, and what belongs on one line lies on it.

#include "tests/interface/picture_stage.h"
#include "tests/support/panel_world.h"
#include "ui/contrast.h"
#include "ui/qt/panel/panel_view.h"
#include "ui/qt/panel/stepper_view.h"

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QSlider>

#include <algorithm>
#include <optional>
#include <stdexcept>
#include <utility>
#include <vector>

using namespace wegslot;
using namespace std::chrono_literals;

namespace {

Color colorOf(QRgb pixel) {
    return {static_cast<std::uint8_t>(qRed(pixel)), static_cast<std::uint8_t>(qGreen(pixel)),
            static_cast<std::uint8_t>(qBlue(pixel))};
}

/// Panel with a key that is near, one that is weak and one that is not heard.
class PanelDrawingTest : public testing::Test, protected PanelWorld {
protected:
    explicit PanelDrawingTest(const PictureStage::Face& font = PictureStage::ordinary)
        : face(font),
          stage(1, font) {}

    void SetUp() override { ASSERT_TRUE(PictureStage::hasFont(face)); }

    void open(std::vector<KeyDevice> keys) {
        model.emplace(run(keys), PanelModel::Expand::asNeeded, [] {});
        view.emplace(PanelContext{*model, images, scheme, world.time}, 700);
        view->setAttribute(Qt::WA_DontShowOnScreen);
        model->appear();
    }
    void openThree() {
        open({keyNamed("iPhone", 1), keyNamed("Apple Watch", 2), keyNamed("Bandje", 3)});
        for (int second = 0; second < 11; ++second) {
            world.hearApple(1, -48, 0x10, "iPhone");
            world.hearApple(2, second < 5 ? -50 : -82, 0x10, "Apple Watch");
            world.pass(1s);
        }
        draw();
    }

    void draw() { draw(model->content()); }
    void draw(const PanelContent& content) {
        view->show(content);
        view->show();
        for (int i = 0; i < 3; ++i)
            QCoreApplication::processEvents();
        picture = PictureStage::picture(*view);
    }
    void draw(Scheme now) {
        scheme.set(now);
        draw();
        colors = panelColors(now);
    }

    template <typename Kind>
    [[nodiscard]] std::vector<Kind*> all() const {
        std::vector<Kind*> found;
        for (QWidget* const widget : view->findChildren<QWidget*>())
            if (auto* const one = dynamic_cast<Kind*>(widget); one != nullptr && one->isVisible())
                found.push_back(one);
        return found;
    }
    [[nodiscard]] QRect place(const QWidget& widget) const {
        return {widget.mapTo(&*view, QPoint()), widget.size()};
    }
    [[nodiscard]] Color at(int x, int y) const { return colorOf(picture.pixel(x, y)); }
    [[nodiscard]] bool standsOut(int x, int y, const Color& behind) const {
        return contrast(at(x, y), behind) >= leastContrast;
    }
    [[nodiscard]] int pixelsThatStandOut(const QRect& area, const Color& behind) const {
        int count = 0;
        for (int y = area.top(); y <= area.bottom(); ++y)
            for (int x = area.left(); x <= area.right(); ++x)
                count += standsOut(x, y, behind) ? 1 : 0;
        return count;
    }

    /// The first and the last column of `area` in which something is seen.
    [[nodiscard]] std::pair<int, int> ink(const QRect& area, const Color& behind) const {
        std::pair<int, int> found{area.right() + 1, area.left() - 1};
        for (int x = area.left(); x <= area.right(); ++x)
            for (int y = area.top(); y <= area.bottom(); ++y)
                if (contrast(at(x, y), behind) > 1.4) {
                    found.first = std::min(found.first, x);
                    found.second = x;
                }
        return found;
    }
    [[nodiscard]] int left(const QWidget& widget, const Color& behind) const {
        return ink(place(widget), behind).first;
    }
    [[nodiscard]] int right(const QWidget& widget, const Color& behind) const {
        return ink(place(widget), behind).second;
    }

    /// The text that says this, wherever it stands.
    [[nodiscard]] const Text& text(const std::string& said) const {
        for (const Text* const one : all<Text>())
            if (one->text().toStdString() == said) return *one;
        throw std::runtime_error("nowhere: " + said);
    }
    [[nodiscard]] const QAbstractButton& button(const std::string& name) const {
        for (const QAbstractButton* const one : all<QAbstractButton>())
            if (one->accessibleName().toStdString() == name) return *one;
        throw std::runtime_error("no button: " + name);
    }

    /// Where the mark of each bar has its middle.
    [[nodiscard]] std::vector<QPoint> marks() {
        std::vector<QPoint> places;
        const auto bars = all<SignalBarView>();
        for (std::size_t i = 0; i < bars.size(); ++i) {
            const QRect bar = place(*bars[i]).marginsRemoved(SignalBarView::beyond);
            const double marker =
                std::get<panel::KeyRow>(model->content().keys.rows.at(i)).bar.marker;
            places.emplace_back(bar.left() + static_cast<int>(marker * bar.width()), bar.top());
        }
        return places;
    }

    PictureStage::Face face;
    PictureStage stage;
    SymbolImages images;
    std::optional<PanelModel> model;
    std::optional<PanelView> view;
    QImage picture;
    PanelColors colors = panelColors(Scheme::light);
};

struct PanelInFontsTest : PanelDrawingTest, testing::WithParamInterface<PictureStage::Face> {
    PanelInFontsTest() : PanelDrawingTest(GetParam()) {}
};

INSTANTIATE_TEST_SUITE_P(In, PanelInFontsTest,
                         testing::Values(PictureStage::ordinary, PictureStage::wide,
                                         PictureStage::unequalDigits),
                         [](const auto& test) {
                             return QString(test.param.family).remove(' ').toStdString();
                         });

} // namespace

TEST_F(PanelDrawingTest, TheSymbolsOfKeysStandOutFromTheirCards) {
    openThree();
    for (const Scheme now : {Scheme::light, Scheme::dark}) {
        draw(now);
        int symbols = 0;
        for (const SymbolView* const symbol : all<SymbolView>()) {
            if (symbol->width() != 18) continue; // the tile
            ++symbols;
            EXPECT_GE(pixelsThatStandOut(place(*symbol), colors.card), 20);
        }
        EXPECT_EQ(symbols, 3);
    }
}

TEST_F(PanelDrawingTest, TheMarkOfAThresholdStandsOutFromBothOfItsSides) {
    openThree();
    for (const Scheme now : {Scheme::light, Scheme::dark}) {
        draw(now);
        ASSERT_EQ(marks().size(), 3U);
        for (const QPoint& mark : marks())
            for (int y = mark.y() + 1; y < mark.y() + 13; ++y)
                for (const int side : {-5, 5}) {
                    const Color behind = at(mark.x() + side, y);
                    EXPECT_GE(pixelsThatStandOut({mark.x() - 2, y, 5, 1}, behind), 1)
                        << y - mark.y();
                }
    }
}

TEST_F(PanelDrawingTest, TheTileHasAnEdgeAllAround) {
    openThree();
    for (const Scheme now : {Scheme::light, Scheme::dark}) {
        draw(now);
        const auto symbols = all<SymbolView>();
        const auto tile =
            std::ranges::find_if(symbols, [](const auto* one) { return one->width() == 40; });
        ASSERT_NE(tile, symbols.end());
        const QRect area = place(**tile);
        for (const QPoint& edge :
             {QPoint(area.left(), area.center().y()), QPoint(area.right(), area.center().y()),
              QPoint(area.center().x(), area.top()), QPoint(area.center().x(), area.bottom())})
            EXPECT_TRUE(standsOut(edge.x(), edge.y(), colors.ground));
        // And the symbol from the tile.
        EXPECT_GE(pixelsThatStandOut(area.adjusted(6, 6, -6, -6), brand::navy), 20);
    }
}

TEST_F(PanelDrawingTest, TheDotOfEveryPhaseStandsOut) {
    openThree();
    for (const Scheme now : {Scheme::light, Scheme::dark}) {
        draw(now);
        for (const Color& phase :
             {brand::danger, brand::lila, brand::orange, brand::success, brand::navy}) {
            PanelContent content = model->content();
            content.header.dot = phase;
            draw(content);
            const auto dots = all<Dot>();
            ASSERT_EQ(dots.size(), 1U);
            const QRect area = place(*dots[0]);
            EXPECT_GE(pixelsThatStandOut(area, colors.ground), 12);
            EXPECT_EQ(at(area.center().x(), area.center().y()), phase);
        }
    }
}

TEST_F(PanelDrawingTest, AMarkAtTheEndOfItsBarIsWhollySeen) {
    auto lowest = keyNamed("iPhone", 1);
    auto highest = keyNamed("Apple Watch", 2);
    lowest.threshold = Dbm{-100};
    highest.threshold = Dbm{-30};
    open({lowest, highest});
    world.pass(1s);
    draw();
    const auto bars = all<SignalBarView>();
    ASSERT_EQ(bars.size(), 2U);
    const QRect first = place(*bars[0]).marginsRemoved(SignalBarView::beyond);
    const QRect second = place(*bars[1]).marginsRemoved(SignalBarView::beyond);
    EXPECT_TRUE(standsOut(first.left() - 1, first.center().y(), colors.card));
    EXPECT_TRUE(standsOut(second.right() + 1, second.center().y(), colors.card));
}

TEST_F(PanelDrawingTest, WhatIsInARowBeginsAndEndsOnOneLine) {
    openThree();
    const QRect bar = place(*all<SignalBarView>()[0]).marginsRemoved(SignalBarView::beyond);
    int symbols = 0;
    for (const SymbolView* const symbol : all<SymbolView>()) {
        if (symbol->width() != 18) continue; // the tile
        ++symbols;
        EXPECT_NEAR(left(*symbol, colors.card), bar.left(), 1);
    }
    EXPECT_EQ(symbols, 3);
    for (const char* const first : {"Nu -48 dBm", "Ver", "Geen signaal"})
        EXPECT_NEAR(left(text(first), colors.card), bar.left(), 1) << first;
    EXPECT_NEAR(left(button("Stel in vanaf hier"), colors.card), bar.left(), 1);
    EXPECT_NEAR(right(text("Lockt onder -75 dBm"), colors.card), bar.right(), 1);
    int nearest = 0; // of the badge and the end of each slider
    for (const Text* const one : all<Text>())
        if (one->text() == "Dichtbij") nearest = std::max(nearest, right(*one, colors.card));
    EXPECT_NEAR(nearest, bar.right(), 1);
    EXPECT_NEAR(right(button("Verwijder deze sleutel: iPhone"), colors.card), bar.right(), 1);
}

TEST_F(PanelDrawingTest, TheSwitchAndTheLastWordEndWhereTheCardsDo) {
    openThree();
    const int edge = place(*all<Card>()[0]).right();
    EXPECT_NEAR(right(button("Wegslot aan of uit"), colors.ground), edge, 1);
    EXPECT_NEAR(right(button("Stop"), colors.ground), edge, 1);
}

TEST_F(PanelDrawingTest, TheSwitchIsSeenToBeUnderThePointer) {
    openThree();
    for (const bool isOn : {true, false}) {
        world.settings().enabled.set(isOn);
        draw();
        auto* const found = all<Switch>().at(0);
        const QImage before = picture.copy(place(*found));
        found->setAttribute(Qt::WA_UnderMouse);
        draw();
        EXPECT_NE(picture.copy(place(*found)), before) << isOn;
        found->setAttribute(Qt::WA_UnderMouse, false);
    }
}

TEST_F(PanelDrawingTest, TheStrengthOfADeviceNearbyEndsWithItsColumn) {
    open({});
    world.hearApple(1, -58, 0x10, "iPhone van Anna");
    world.hearApple(2, -8, 0x10, "iPhone van Bob");
    world.pass(1s);
    draw();
    const int longer = right(text("-58 dBm"), colors.ground);
    EXPECT_NEAR(longer, place(text("-58 dBm")).right(), 1);
    EXPECT_EQ(right(text("-8 dBm"), colors.ground), longer);
}

TEST_F(PanelDrawingTest, WithLargerTextTitlesAndControlsAreLargerToo) {
    const auto sizes = [this](int pixels) {
        QFont font(face.family);
        font.setPixelSize(pixels);
        QApplication::setFont(font);
        open({keyNamed("iPhone", 1)});
        model->openSettings(true);
        world.pass(1s);
        draw();
        const QSlider& slider = *all<ThresholdSlider>().at(0);
        const QRect knob = place(slider).adjusted(0, 0, -slider.width() / 2, 0);
        std::vector<std::pair<std::string, double>> found{
            {"title", all<SectionTitle>().at(0)->fontMetrics().height()},
            {"switch", all<Switch>().at(0)->width()},
            {"stepper", all<StepButton>().at(0)->width()},
            {"slider", knob.height()}};
        const CheckBox& box = *all<CheckBox>().at(0);
        const QRect side(place(box).topLeft(), QSize(box.height(), box.height()));
        const auto [first, last] = ink(side, colors.ground);
        found.emplace_back("box", last - first);
        view.reset();
        model.reset();
        return found;
    };
    const auto ordinary = sizes(14);
    const auto large = sizes(22);
    for (std::size_t i = 0; i < ordinary.size(); ++i)
        EXPECT_NEAR(large[i].second / ordinary[i].second, 22 / 15.0, 0.11) << ordinary[i].first;
}

TEST_P(PanelInFontsTest, TheNoteOfAForeignKeyIsReadWholeAndSoIsAnOrdinaryName) {
    for (const char* const name : {"Bandje", "Sleutelbos van Anna", "Fietssleutel van Annemarie"}) {
        auto key = keyNamed(name, 1);
        key.isApple = false;
        open({key});
        world.pass(1s);
        draw();
        for (const std::string& said :
             {std::string(name), std::string("Ander merk, alleen luisteren")}) {
            const Text& shown = text(said);
            EXPECT_GE(shown.width(), shown.sizeHint().width()) << name << ": " << said;
        }
        view.reset();
        model.reset();
    }
}

TEST_P(PanelInFontsTest, TheNoteStandsBehindTheNameWhereBothHaveRoom) {
    const auto isBehind = [this](const char* name) {
        auto key = keyNamed(name, 1);
        key.isApple = false;
        world.settings().keys.set({key});
        draw();
        return place(text("Ander merk, alleen luisteren")).top() < place(text(name)).bottom();
    };
    open({});
    EXPECT_TRUE(isBehind("Tag"));
    EXPECT_FALSE(isBehind("Fietssleutel van Annemarie"));
    EXPECT_TRUE(isBehind("Tag"));
}

TEST_P(PanelInFontsTest, ANumberThatChangesMovesNothingBehindIt) {
    const auto end = [this](const char* said, Text::Fit fit) {
        Text text(brand::body(11), fit);
        text.show(said, brand::navy);
        text.resize(text.sizeHint());
        QImage image(text.size(), QImage::Format_RGB32);
        image.fill(Qt::white);
        text.render(&image, {}, {}, QWidget::DrawChildren);
        picture = image;
        return std::pair{text.sizeHint().width(), ink(image.rect(), brand::white).second};
    };
    for (const auto fit : {Text::Fit::whole, Text::Fit::wrapped}) {
        EXPECT_EQ(end("Nu -11 dBm", fit), end("Nu -48 dBm", fit));
        EXPECT_EQ(end("Weg na 10 s zwak signaal", fit), end("Weg na 44 s zwak signaal", fit));
    }
}

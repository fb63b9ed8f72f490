// The panel's window and its menu on real X servers: above a window of their own colour they are
// told from it, with a compositor and without one.

#include "tests/interface/screens.h"
#include "tests/support/panel_world.h"
#include "ui/contrast.h"
#include "ui/qt/panel/panel_window.h"

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QMenu>
#include <QTimer>

using namespace wegslot;
using namespace std::chrono_literals;

namespace {

/// `compositor`: whether the window manager blends windows.
struct FrameCase {
    std::string manager;
    bool compositor = false;
    Scheme scheme{};
};

class PanelFrameTest : public testing::TestWithParam<FrameCase>, protected PanelWorld {
protected:
    void SetUp() override {
        for (const std::string& tool :
             {std::string("Xvfb"), std::string("xprop"), GetParam().manager})
            if (!isInstalled(tool)) GTEST_SKIP() << tool << " is not installed";
        screen.emplace(GetParam().manager);
        ASSERT_TRUE(screen->isManaged);
        on.emplace(std::map<std::string, std::string>{
            {"DISPLAY", screen->display}, {"WAYLAND_DISPLAY", ""}, {"QT_QPA_PLATFORM", "xcb"}});
        scheme.set(GetParam().scheme);
        // A window of the panel's own colour. The window manager does not know
        // it, for one that becomes active closes a panel that opens meanwhile.
        behind.emplace(nullptr, Qt::BypassWindowManagerHint);
        QPalette colors;
        colors.setColor(QPalette::Window, QColor(ground().red, ground().green, ground().blue));
        behind->setPalette(colors);
        // Not over all of the screen: xfwm4 would not blend what is above it.
        behind->setGeometry(QGuiApplication::primaryScreen()->geometry().adjusted(4, 4, -4, -4));
        behind->show();
        ASSERT_TRUE(happens([this] { return at({20, 700}) == ground(); }));
        panel.emplace(run({keyNamed("iPhone", 1), keyNamed("Apple Watch", 2)}), images,
                      PanelHost::popup);
        panel->open(QPoint(640, 20));
        place = placeOf<PanelView>();
        ASSERT_EQ(place.size(), QSize(380, 600));
        ASSERT_TRUE(happens([this] { return edgeIsSeen(place); }));
    }

    [[nodiscard]] Color ground() const { return panelColors(GetParam().scheme).ground; }

    [[nodiscard]] static Color at(QPoint place) {
        const QColor seen = OnScreen::seen({place, QSize(1, 1)}).pixelColor(0, 0);
        return {static_cast<std::uint8_t>(seen.red()), static_cast<std::uint8_t>(seen.green()),
                static_cast<std::uint8_t>(seen.blue())};
    }

    template <typename Kind>
    [[nodiscard]] QRect placeOf() const {
        for (const QWidget* const child : panel->findChildren<QWidget*>())
            if (const auto* const one = dynamic_cast<const Kind*>(child))
                return {one->mapToGlobal(QPoint()), one->size()};
        return {};
    }

    /// The hairline lies around `framed`.
    [[nodiscard]] bool edgeIsSeen(const QRect& framed) const {
        const QPoint middle = framed.center();
        return std::ranges::all_of(
            std::vector{
                QPoint(framed.left() - 1, middle.y()), QPoint(framed.right() + 1, middle.y()),
                QPoint(middle.x(), framed.top() - 1), QPoint(middle.x(), framed.bottom() + 1)},
            [this](QPoint edge) { return contrast(at(edge), ground()) >= leastContrast; });
    }

    /// Something dark beyond the hairline, which fades.
    [[nodiscard]] bool hasShadow(const QRect& framed) const {
        const QPoint near(framed.center().x(), framed.bottom() + 4);
        const QPoint further(framed.center().x(), framed.bottom() + 12);
        return at(near) != ground() &&
               contrast(at(near), ground()) > contrast(at(further), ground());
    }

    std::optional<X11Screen> screen;
    std::optional<OnScreen> on;
    std::optional<QWidget> behind;
    SymbolImages images;
    std::optional<PanelWindow> panel;
    QRect place;
};

INSTANTIATE_TEST_SUITE_P(On, PanelFrameTest,
                         testing::Values(FrameCase{"openbox", false, Scheme::light},
                                         FrameCase{"openbox", false, Scheme::dark},
                                         FrameCase{"xfwm4", true, Scheme::light},
                                         FrameCase{"xfwm4", true, Scheme::dark}),
                         [](const auto& test) {
                             return test.param.manager +
                                    (test.param.scheme == Scheme::light ? "Light" : "Dark");
                         });

} // namespace

TEST_P(PanelFrameTest, APanelAboveItsOwnColourHasAnEdgeAndAShadowWhereThereCanBeOne) {
    EXPECT_TRUE(edgeIsSeen(place));
    if (GetParam().scheme == Scheme::light) { // a dark one is hardly seen on navy
        EXPECT_EQ(hasShadow(place), GetParam().compositor);
    }
    // Round corners only where what is behind them can be seen.
    const bool isSquare = contrast(at(place.topLeft() - QPoint(1, 1)), ground()) >= leastContrast;
    EXPECT_EQ(isSquare, !GetParam().compositor);
    EXPECT_EQ(at({place.left() - 40, place.center().y()}), ground());
}

TEST_P(PanelFrameTest, TheMenuHasTheSame) {
    QAbstractButton* button = nullptr;
    for (QAbstractButton* const one : panel->findChildren<QAbstractButton*>())
        if (one->accessibleName() == "Pauzeer") button = one;
    ASSERT_NE(button, nullptr);
    const QRect at(button->mapToGlobal(QPoint()), button->size());
    // While it is open nothing else of this test goes on.
    QRect framed;
    bool hasEdge = false;
    bool isShadowed = false;
    QTimer looks;
    QObject::connect(&looks, &QTimer::timeout, [&, left = 250]() mutable {
        auto* const list = dynamic_cast<QMenu*>(QApplication::activePopupWidget());
        if (list == nullptr) return;
        framed = list->geometry().marginsRemoved(list->contentsMargins());
        hasEdge = edgeIsSeen(framed);
        if (!hasEdge && --left > 0) return;
        isShadowed = hasShadow(framed);
        list->close();
        looks.stop();
    });
    looks.start(20ms);
    ASSERT_TRUE(OnScreen::clicks(at.center()));
    EXPECT_TRUE(happens([&looks] { return !looks.isActive(); }));
    EXPECT_TRUE(hasEdge);
    EXPECT_NEAR(framed.left(), at.left(), 2);
    EXPECT_NEAR(framed.top(), at.bottom() + 1, 2);
    if (GetParam().scheme == Scheme::light) { // a dark one is hardly seen on navy
        EXPECT_EQ(isShadowed, GetParam().compositor);
    }
}

TEST_P(PanelFrameTest, APressOnTheShadowIsAPressElsewhere) {
    ASSERT_TRUE(OnScreen::clicks({place.left() - 8, place.center().y()}));
    EXPECT_TRUE(happens([this] { return !panel->isVisible(); }));
}

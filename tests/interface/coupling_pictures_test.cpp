// What the window in which a phone is coupled looks like, from the first question to the key; and
// that keys and a screen reader reach all of it.

#include "app/linux/user_language.h"
#include "tests/interface/picture.h"
#include "tests/interface/picture_stage.h"
#include "tests/support/fake_coupling_radio.h"
#include "tests/support/world.h"
#include "ui/qt/coupling/coupling_window.h"

#include <QAbstractButton>
#include <QAccessible>
#include <QKeyEvent>
#include <QPainter>

using namespace wegslot;
using namespace wegslot::coupling;
using namespace std::chrono_literals;

namespace {

constexpr Visitor anonymous{};

/// The window on a radio that does as a test says.
class CouplingStage {
public:
    explicit CouplingStage(Scheme in = Scheme::light) : scheme(in) {
        world.run();
        renew();
    }

    void renew() {
        window.reset();
        coupling.emplace(
            Coupling::World{.radio = radio,
                            .scanner = world.scanner(),
                            .settings = world.settings(),
                            .clock = world.time,
                            .scheduler = world.time,
                            .suffix = [] { return 0x4F2A; },
                            .paste = [this](const std::string& name,
                                            std::string_view identity) -> std::optional<Failure> {
                                pasted.push_back(name + ": " + std::string(identity));
                                if (identity == "x") return Failure{"dit is geen identiteit"};
                                return std::nullopt;
                            }});
        window.emplace(*coupling,
                       CouplingWindow::Surroundings{images, scheme, world.time, world.time});
        window->open();
    }

    void meet() {
        coupling->act(Action::iphone);
        radio.listener->appears();
        radio.listener->visitorCame(anonymous);
    }
    void bond() {
        meet();
        radio.listener->bonded({.name = "iPhone van Anna", .identity = numbered(7)});
    }
    void own() {
        bond();
        coupling->act(Action::yes);
        radio.listener->isGone();
    }
    void pocket() {
        own();
        world.keepHearing(7, -50, 20);
    }
    void judge(int every) {
        pocket();
        coupling->act(Action::proceed);
        for (int second = 0; second < 120; ++second) {
            if (every > 0 && second % every == 0) world.hear(7, -70);
            world.pass(1s);
        }
    }

    [[nodiscard]] QImage picture() { return PictureStage::picture(*window); }

    [[nodiscard]] QAbstractButton* button(const QString& text) {
        QCoreApplication::processEvents(); // what is new is shown by then
        for (QAbstractButton* const one : window->findChildren<QAbstractButton*>())
            if (one->isVisible() && one->text() == text) return one;
        return nullptr;
    }

    void type(int key) {
        QWidget* const focused = window->focusWidget();
        QWidget& target = focused == nullptr ? *window : *focused;
        QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier);
        QCoreApplication::sendEvent(&target, &press);
        QKeyEvent release(QEvent::KeyRelease, key, Qt::NoModifier);
        QCoreApplication::sendEvent(&target, &release);
    }

    std::vector<std::string> pasted;
    World world;
    FakeCouplingRadio radio;
    SymbolImages images;
    Observable<Scheme> scheme;
    std::optional<Coupling> coupling;
    std::optional<CouplingWindow> window;
};

/// Every page once, in the order of a life in which all goes well, and then the others.
std::vector<QImage> allPages(Scheme scheme) {
    CouplingStage stage(scheme);
    std::vector<QImage> pages;
    const auto keep = [&] { pages.push_back(stage.picture()); };
    keep();
    stage.coupling->act(Action::iphone);
    keep();
    stage.radio.listener->appears();
    stage.world.pass(8s);
    keep();
    stage.radio.listener->visitorCame(anonymous);
    keep();
    stage.radio.listener->codeCame(123'456);
    keep();
    stage.coupling->act(Action::yes);
    stage.radio.listener->bonded({.name = "iPhone van Anna", .identity = std::nullopt});
    keep();
    stage.radio.listener->visitorChanged({.name = "iPhone van Anna", .identity = numbered(7)});
    keep();
    stage.coupling->act(Action::yes);
    keep();
    stage.radio.listener->isGone();
    keep();
    stage.world.keepHearing(7, -50, 20);
    keep();
    stage.coupling->act(Action::proceed);
    keep();
    stage.world.keepHearing(7, -70, 120);
    keep();
    stage.world.settings().keys.set({});
    stage.renew();
    stage.judge(20);
    keep();
    stage.world.settings().keys.set({});
    stage.renew();
    stage.judge(0);
    keep();
    stage.renew();
    stage.coupling->act(Action::android);
    stage.radio.listener->appears();
    stage.radio.listener->acquaintanceCame({.name = "Telefoon", .identity = numbered(7)});
    keep();
    stage.renew();
    stage.meet();
    stage.radio.listener->refused(Refusal::failed, "AuthenticationFailed");
    stage.radio.listener->isGone();
    keep();
    stage.renew();
    stage.coupling->act(Action::paste);
    stage.coupling->paste("", "x");
    keep();
    stage.coupling->paste("Horloge", "goed");
    keep();
    stage.renew();
    stage.coupling->act(Action::android);
    stage.radio.listener->cannotAppear({.obstacle = Obstacle::noRoom});
    stage.radio.listener->isGone();
    keep();
    return pages;
}

/// Side by side, four in a row.
QImage sheetOf(const std::vector<QImage>& pages) {
    int width = 0;
    int height = 0;
    for (const QImage& page : pages) {
        width = std::max(width, page.width());
        height = std::max(height, page.height());
    }
    constexpr int across = 4;
    const int down = (static_cast<int>(pages.size()) + across - 1) / across;
    QImage sheet(across * (width + 8), down * (height + 8), QImage::Format_RGB32);
    sheet.fill(QColor(128, 128, 128));
    QPainter painter(&sheet);
    for (int i = 0; i < static_cast<int>(pages.size()); ++i)
        painter.drawImage(i % across * (width + 8), i / across * (height + 8),
                          pages[static_cast<std::size_t>(i)]);
    return sheet;
}

class CouplingPictures : public testing::TestWithParam<Scheme> {};

} // namespace

TEST_P(CouplingPictures, EveryStepLooksAsItDid) {
    const PictureStage stage;
    if (!PictureStage::hasFont()) GTEST_SKIP() << "the font of the references is not installed";
    const std::string scheme = GetParam() == Scheme::light ? "" : "-dark";
    EXPECT_TRUE(looksLike(sheetOf(allPages(GetParam())), "coupling" + scheme + "-1x"));
}

INSTANTIATE_TEST_SUITE_P(All, CouplingPictures, testing::Values(Scheme::light, Scheme::dark));

TEST(CouplingInALanguageTest, EveryStepHasRoomForItsWords) {
    const PictureStage stage;
    if (!PictureStage::hasFont()) GTEST_SKIP() << "the font of the references is not installed";
    for (const std::string locale : {"de", "en", "fr"}) {
        const UserLanguage language(
            [&locale](const char* name) {
                return std::string(name) == "LANG" ? locale : std::string();
            },
            WEGSLOT_BUILD_FOLDER "/CMakeCache.txt");
        EXPECT_TRUE(looksLike(sheetOf(allPages(Scheme::light)), "coupling-" + locale + "-1x"));
    }
}

TEST(CouplingWindowTest, IsWalkedThroughByKeys) {
    const PictureStage application;
    CouplingStage stage;
    stage.button("iPhone")->setFocus();
    stage.type(Qt::Key_Space);
    EXPECT_EQ(stage.radio.takeCalls(), std::vector<std::string>{"appear"});
    stage.radio.listener->appears();
    stage.radio.listener->visitorCame(anonymous);
    stage.radio.listener->codeCame(42);
    stage.type(Qt::Key_Return); // no answer to a code that nobody has looked at
    EXPECT_TRUE(std::holds_alternative<step::Comparing>(stage.coupling->step().get()));
    stage.button("Ja, dezelfde")->setFocus();
    stage.type(Qt::Key_Space);
    EXPECT_EQ(stage.radio.takeCalls(), std::vector<std::string>{"same"});
    stage.type(Qt::Key_Escape);
    stage.radio.listener->isGone();
    EXPECT_TRUE(std::holds_alternative<step::Choosing>(stage.coupling->step().get()));
    stage.type(Qt::Key_Escape);
    EXPECT_TRUE(std::holds_alternative<step::Closed>(stage.coupling->step().get()));
    EXPECT_FALSE(stage.window->isVisible());
}

TEST(CouplingWindowTest, EnterGoesOnWhereThereIsOneThingToDo) {
    const PictureStage application;
    CouplingStage stage;
    stage.pocket();
    stage.type(Qt::Key_Return);
    EXPECT_TRUE(std::holds_alternative<step::ListeningAway>(stage.coupling->step().get()));
}

TEST(CouplingWindowTest, AKeyThatIsHeldFromThePageBeforeAnswersNothing) {
    const PictureStage application;
    CouplingStage stage;
    stage.pocket();
    QKeyEvent held(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier, {}, true);
    QCoreApplication::sendEvent(&*stage.window, &held);
    EXPECT_TRUE(std::holds_alternative<step::Pocketing>(stage.coupling->step().get()));
}

TEST(CouplingWindowTest, AScreenReaderIsToldThePageAndItsChoices) {
    const PictureStage application;
    CouplingStage stage;
    stage.meet();
    stage.radio.listener->codeCame(123'456);
    QAccessibleInterface* const window = QAccessible::queryAccessibleInterface(&*stage.window);
    EXPECT_EQ(window->text(QAccessible::Name), "Toont je apparaat dezelfde code?");
    EXPECT_TRUE(window->text(QAccessible::Description).contains("123 456"));
    for (const char* const label : {"Nee, een andere", "Ja, dezelfde"}) {
        QAbstractButton* const button = stage.button(label);
        ASSERT_NE(button, nullptr) << label;
        EXPECT_EQ(QAccessible::queryAccessibleInterface(button)->text(QAccessible::Name), label);
        EXPECT_TRUE(button->focusPolicy() & Qt::TabFocus);
    }
}

TEST(CouplingWindowTest, AnIdentityIsPastedUnseenAndNotKept) {
    const PictureStage application;
    CouplingStage stage;
    stage.coupling->act(Action::paste);
    auto fields = stage.window->findChildren<QLineEdit*>();
    ASSERT_EQ(fields.size(), 2);
    fields[0]->setText("Horloge");
    fields[1]->setText("x");
    EXPECT_FALSE(fields[1]->displayText().contains("x"));
    stage.button("Maak er een sleutel van")->click();
    EXPECT_EQ(stage.pasted, std::vector<std::string>{"Horloge: x"});
    EXPECT_EQ(fields[1]->text(), "");
    EXPECT_EQ(fields[0]->text(), "Horloge");
    fields[1]->setText("goed");
    stage.button("Maak er een sleutel van")->click();
    EXPECT_TRUE(std::holds_alternative<step::Pasted>(stage.coupling->step().get()));
    EXPECT_EQ(fields[0]->text(), "");
}

TEST(CouplingWindowTest, TheCountdownCounts) {
    const PictureStage application;
    CouplingStage stage;
    stage.coupling->act(Action::iphone);
    stage.radio.listener->appears();
    const auto shows = [&stage](const QString& text) {
        for (const QLabel* const label : stage.window->findChildren<QLabel*>())
            if (label->isVisible() && label->text() == text) return true;
        return false;
    };
    EXPECT_TRUE(shows("Nog 2:00"));
    stage.world.pass(55s);
    EXPECT_TRUE(shows("Nog 1:05"));
}

TEST(CouplingWindowTest, ClosingItPutsEverythingBack) {
    const PictureStage application;
    CouplingStage stage;
    stage.meet();
    stage.radio.calls.clear();
    stage.window->close();
    EXPECT_EQ(stage.radio.takeCalls(), (std::vector<std::string>{"forget", "disappear"}));
    stage.radio.listener->isGone();
    EXPECT_TRUE(std::holds_alternative<step::Closed>(stage.coupling->step().get()));
}

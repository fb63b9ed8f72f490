// What the panel looks like, without a screen.

#include "app/linux/user_language.h"
#include "tests/interface/picture.h"
#include "tests/interface/picture_stage.h"
#include "tests/support/panel_world.h"
#include "ui/qt/panel/panel_view.h"

#include <QAbstractButton>
#include <QLabel>

#include <optional>

using namespace wegslot;
using namespace std::chrono_literals;

namespace {

/// The panel as a picture shows it: on a stage, without a window system's ideas.
class PanelPicturesTest : public testing::TestWithParam<int>, protected PanelWorld {
protected:
    explicit PanelPicturesTest(const PictureStage::Face& font = PictureStage::ordinary,
                               std::string prefix = "panel-")
        : face(font),
          namePrefix(std::move(prefix)),
          stage(static_cast<double>(GetParam()), font) {}

    void SetUp() override {
        ASSERT_TRUE(PictureStage::hasFont(face)) << "install the packages of tools/packages/test";
    }

    /// Text as large as some set it.
    void enlarge() const {
        QFont large(face.family);
        large.setPixelSize(22);
        QApplication::setFont(large);
    }

    /// With one key near, one weak and one of another make, not heard.
    void openThreeKeys(int height = 600, PanelModel::Expand expand = PanelModel::Expand::asNeeded) {
        auto band = keyNamed("Bandje", 3);
        band.isApple = false;
        open({keyNamed("iPhone van Anna", 1), keyNamed("Apple Watch", 2), band}, height, expand);
        for (int second = 0; second < 11; ++second) {
            hear(1, -48, "iPhone van Anna");
            hear(2, second < 5 ? -50 : -82, "Apple Watch");
            world.pass(1s);
        }
    }

    void open(const std::vector<KeyDevice>& keys = {}, int height = 600,
              PanelModel::Expand expand = PanelModel::Expand::asNeeded) {
        model.emplace(run(keys), expand, [] {});
        view.emplace(PanelContext{*model, images, scheme, world.time}, height);
        view->setAttribute(Qt::WA_DontShowOnScreen);
        model->appear();
    }

    /// Skips the test where there is nothing to compare with.
    [[nodiscard]] testing::AssertionResult shows(const std::string& name) {
        layOut();
        if (PictureStage::roundsHeights()) {
            [] { GTEST_SKIP() << "here Qt rounds the heights of fonts: rows lie elsewhere"; }();
            return testing::AssertionSuccess();
        }
        return looksLike(PictureStage::picture(*view),
                         namePrefix + name + "-" + std::to_string(GetParam()) + "x");
    }

    void layOut() {
        view->show(model->content());
        view->show();
        // Scroll areas lay out what is in them at their next turn.
        for (int i = 0; i < 3; ++i)
            QCoreApplication::processEvents();
    }

    /// The texts of which less is seen than there is.
    [[nodiscard]] std::vector<std::string> cut() const {
        std::vector<std::string> texts;
        const auto look = [&texts](const QWidget& part, const QString& text) {
            if (!part.isVisible() || text.isEmpty()) return;
            const bool wraps = part.sizePolicy().hasHeightForWidth();
            const bool isWhole = wraps ? part.height() >= part.heightForWidth(part.width())
                                       : part.width() >= part.sizeHint().width();
            if (!isWhole) texts.push_back(text.toStdString());
        };
        for (const QLabel* const text : view->findChildren<QLabel*>())
            look(*text, text->text());
        for (const QAbstractButton* const button : view->findChildren<QAbstractButton*>())
            look(*button, button->text());
        return texts;
    }

    void hear(unsigned number, int rssi, std::string_view name) {
        world.hearApple(number, rssi, 0x10, name);
    }

    PictureStage::Face face;
    std::string namePrefix;
    PictureStage stage;
    SymbolImages images;
    std::optional<PanelModel> model;
    std::optional<PanelView> view;
};

INSTANTIATE_TEST_SUITE_P(AtScale, PanelPicturesTest, testing::Values(1, 2));

/// In a font in which less has room.
struct PanelInAWideFontTest : PanelPicturesTest {
    PanelInAWideFontTest() : PanelPicturesTest(PictureStage::wide, "panel-wide-font-") {}
};

INSTANTIATE_TEST_SUITE_P(AtScale, PanelInAWideFontTest, testing::Values(1));

/// In the language of a locale.
struct PanelInALanguageTest : PanelPicturesTest {
    void openIn(const std::string& locale) {
        language.reset(); // a language ends before the next one begins
        language.emplace(
            [&locale](const char* name) {
                return std::string(name) == "LANG" ? locale : std::string();
            },
            WEGSLOT_BUILD_FOLDER "/CMakeCache.txt");
        auto band = keyNamed("Tag", 3);
        band.isApple = false;
        band.isPasted = true;
        view.reset();
        model.reset();
        open({keyNamed("iPhone", 1), keyNamed("Watch", 2), band}, 1600, PanelModel::Expand::all);
        hear(1, -52, "iPhone");
        hear(2, -82, "Watch");
        hear(4, -58, "iPad");
        world.pass(1s);
    }

    std::optional<UserLanguage> language;
};

INSTANTIATE_TEST_SUITE_P(AtScale, PanelInALanguageTest, testing::Values(1));

Release newer() {
    return {.version = "1.4",
            .build = 27,
            .url = "x",
            .sha256 = "",
            .signature = "",
            .notes = "Reageert sneller als je terugkomt.\nEn één fout minder."};
}

} // namespace

TEST_P(PanelPicturesTest, NoKeys) {
    open();
    world.pass(1s);
    EXPECT_TRUE(shows("no-keys"));
}

TEST_P(PanelPicturesTest, OneKeyNear) {
    open({keyNamed("iPhone van Anna", 1)});
    hear(1, -52, "iPhone van Anna");
    world.pass(1s);
    EXPECT_TRUE(shows("one-key"));
    scheme.set(Scheme::dark);
    EXPECT_TRUE(shows("one-key-dark"));
}

TEST_P(PanelPicturesTest, ThreeKeysNearWeakAndAway) {
    openThreeKeys();
    EXPECT_TRUE(shows("three-keys"));
    scheme.set(Scheme::dark);
    EXPECT_TRUE(shows("three-keys-dark"));
}

TEST_P(PanelPicturesTest, DevicesNearby) {
    open({}, 1600);
    hear(1, -44, "iPhone van Anna");
    hear(2, -58, "Apple Watch van Anna");
    hear(3, -71, "iPad van de buren met een heel lange naam erbij");
    for (unsigned number = 4; number < 8; ++number)
        world.hearApple(number, -60 - static_cast<int>(number));
    world.settings().showOtherDevices.set(true);
    for (unsigned number = 10; number < 35; ++number)
        world.central.advertise({.id = numbered(number),
                                 .rssi = -50 - static_cast<int>(number),
                                 .localName = "Band " + std::to_string(number)});
    world.pass(1s);
    EXPECT_TRUE(shows("nearby"));
    scheme.set(Scheme::dark);
    EXPECT_TRUE(shows("nearby-dark"));
}

TEST_P(PanelPicturesTest, APhoneToCouple) {
    open();
    hear(1, -44, "iPhone van Anna");
    hear(2, -58, "Apple Watch van Anna");
    world.central.setChanging(numbered(1), true);
    world.pass(1s);
    EXPECT_TRUE(shows("phone-to-couple"));
    scheme.set(Scheme::dark);
    EXPECT_TRUE(shows("phone-to-couple-dark"));
}

TEST_P(PanelPicturesTest, AKeyThatLostItsBond) {
    open({keyNamed("iPhone van Anna", 1)});
    hear(1, -52, "iPhone van Anna");
    world.central.setChanging(numbered(1), true);
    world.pass(1s);
    EXPECT_TRUE(shows("bond-lost"));
    scheme.set(Scheme::dark);
    EXPECT_TRUE(shows("bond-lost-dark"));
}

TEST_P(PanelPicturesTest, RemovedAndJustSet) {
    open({keyNamed("iPhone van Anna", 1), keyNamed("Apple Watch", 2)});
    hear(1, -52, "iPhone van Anna");
    hear(2, -47, "Apple Watch");
    world.pass(1s);
    model->removeKey(numbered(1));
    model->setFromHere(numbered(2));
    EXPECT_TRUE(shows("removed-and-set"));
    scheme.set(Scheme::dark);
    EXPECT_TRUE(shows("removed-and-set-dark"));
}

TEST_P(PanelPicturesTest, TheFirstKeyAndWhatIsOfferedWithIt) {
    open();
    hear(1, -52, "iPhone van Anna");
    world.pass(1s);
    model->choose(numbered(1));
    model->openNearby(false);
    hear(1, -52, "iPhone van Anna");
    world.pass(1s);
    EXPECT_TRUE(shows("login-offered"));
    scheme.set(Scheme::dark);
    EXPECT_TRUE(shows("login-offered-dark"));
}

TEST_P(PanelPicturesTest, AllOpen) {
    open({keyNamed("iPhone van Anna", 1), keyNamed("Apple Watch", 2)}, 1600,
         PanelModel::Expand::all);
    hear(1, -52, "iPhone van Anna");
    hear(3, -58, "iPad van Anna");
    world.pass(1s);
    update.set(update_state::Available{newer()});
    EXPECT_TRUE(shows("all"));
    scheme.set(Scheme::dark);
    EXPECT_TRUE(shows("all-dark"));
}

TEST_P(PanelPicturesTest, UpdatesOfferedDownloadingAndFailed) {
    open({keyNamed("iPhone van Anna", 1)});
    hear(1, -52, "iPhone van Anna");
    world.pass(1s);
    update.set(update_state::Available{newer()});
    EXPECT_TRUE(shows("update-offered"));
    update.set(update_state::Downloading{newer()});
    EXPECT_TRUE(shows("update-downloading"));
    update.set(update_state::InstallFailed{"Handtekening van de update klopt niet"});
    EXPECT_TRUE(shows("update-failed"));
}

TEST_P(PanelPicturesTest, PausedByHand) {
    open({keyNamed("iPhone van Anna", 1)});
    hear(1, -52, "iPhone van Anna");
    world.pass(1s);
    model->pause(Seconds{900});
    world.pass(1s);
    EXPECT_TRUE(shows("paused"));
}

TEST_P(PanelPicturesTest, BluetoothOff) {
    open({keyNamed("iPhone van Anna", 1)});
    world.central.setState(CentralState::poweredOff);
    world.pass(1s);
    EXPECT_TRUE(shows("bluetooth-off"));
}

TEST_P(PanelPicturesTest, LongNames) {
    auto band = keyNamed("Een sleutel met een naam die nergens op een regel past", 1);
    band.isApple = false;
    open({band});
    world.pass(1s);
    EXPECT_TRUE(shows("long-names"));
}

TEST_P(PanelPicturesTest, LargerText) {
    enlarge();
    open({keyNamed("iPhone van Anna", 1), keyNamed("Apple Watch", 2)}, 1600,
         PanelModel::Expand::all);
    hear(1, -52, "iPhone van Anna");
    hear(3, -58, "iPad van Anna");
    world.pass(1s);
    EXPECT_TRUE(shows("larger-text"));
}

TEST_P(PanelInAWideFontTest, AllOfIt) {
    openThreeKeys(1200, PanelModel::Expand::all);
    hear(4, -58, "iPad van Anna");
    world.central.connected(numbered(1));
    world.central.rssiRead(numbered(1), -48);
    world.pass(1s);
    update.set(update_state::Available{newer()});
    EXPECT_TRUE(shows("all"));
    scheme.set(Scheme::dark);
    EXPECT_TRUE(shows("all-dark"));
}

TEST_P(PanelInAWideFontTest, LargerText) {
    enlarge();
    openThreeKeys(1600, PanelModel::Expand::all);
    hear(4, -58, "iPad van Anna");
    world.pass(1s);
    EXPECT_TRUE(shows("larger-text"));
}

TEST_P(PanelInAWideFontTest, NoKeysAndADeviceNearby) {
    open();
    hear(2, -58, "Apple Watch van Anna-Sophie");
    world.pass(1s);
    EXPECT_TRUE(shows("no-keys"));
}

TEST_P(PanelInALanguageTest, AllOfIt) {
    for (const char* const name : {"en", "de"}) {
        openIn(name);
        EXPECT_TRUE(shows(std::string("all-") + name));
    }
}

TEST_P(PanelInALanguageTest, EveryTextIsReadWholeHoweverLarge) {
    for (const bool isLarge : {false, true}) {
        if (isLarge) enlarge();
        for (const char* const name : {"C", "de", "en", "fr", "nl"}) {
            openIn(name);
            layOut();
            EXPECT_EQ(cut(), std::vector<std::string>{}) << name << (isLarge ? ", large" : "");
        }
    }
}

TEST_P(PanelInALanguageTest, ATextThatIsCutWouldBeNoticed) {
    openIn("de");
    layOut();
    for (QLabel* const text : view->findChildren<QLabel*>())
        text->setFixedWidth(8);
    EXPECT_GT(cut().size(), 10U);
}

// The status item in the bar of a real desktop: swaybar, which keeps the list of items too, in a
// compositor without a screen.

#include "tests/support/environment.h"
#include "tests/support/headless_sway.h"
#include "tests/support/offscreen.h"
#include "tests/tray/tray_stage.h"
#include "ui/qt/symbol_images.h"
#include "ui/qt/tray_painter.h"

#include <QColor>
#include <QGuiApplication>
#include <QImage>

#include <filesystem>
#include <optional>

using namespace wegslot;

namespace {

namespace fs = std::filesystem;

/// Pixels of Wegslot's orange, in which the tests paint the icon: no bar has any.
int orangePixels(const QImage& image) {
    int count = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x) {
            const QColor color = image.pixelColor(x, y);
            if (std::abs(color.red() - 245) + std::abs(color.green() - 157) +
                    std::abs(color.blue() - 36) <
                30)
                ++count;
        }
    return count;
}

struct TrayHostsTest : TrayStage {
    const TrayContent lock{"lock.fill", brand::orange, "Gelockt"};
    const TrayContent openLock{"lock.open", brand::orange, "Je bent in de buurt"};
    const Offscreen<QGuiApplication> application;
    const SymbolImages images;
    RuntimeFolder folder;

    void SetUp() override {
        TrayStage::SetUp();
        // For programs that do not run as the user of the test.
        const std::string socket = loop.daemon.address().substr(std::string("unix:path=").size());
        fs::permissions(fs::path(socket).parent_path(),
                        fs::perms::others_exec | fs::perms::others_read, fs::perm_options::add);
        makeItem();
    }
    void makeItem() {
        item.reset();
        item = std::make_unique<TrayItem>(session, loop.time, actions(), trayPainter(images));
        item->show(lock);
    }
    [[nodiscard]] bool waitUntilTaken() {
        return loop.runUntil([this] { return item->isTaken().get(); });
    }
    [[nodiscard]] bool waitUntilLost() {
        return loop.runUntil([this] { return !item->isTaken().get(); });
    }
    /// What the watcher has in its list, as it writes it.
    std::string listed() {
        std::string text;
        std::unique_ptr<dbus::Bus> bus = loop.connect();
        const Handle driving = loop.attach(*bus);
        bool answered = false;
        const auto asking = bus->call(
            {.destination = watcherName,
             .path = "/StatusNotifierWatcher",
             .interface = "org.freedesktop.DBus.Properties",
             .member = "Get",
             .arguments = {std::string(watcherName), std::string("RegisteredStatusNotifierItems")}},
            [&](const dbus::Message& answer) {
                auto reader = answer.read();
                reader.variant([&text](dbus::Reader& value) {
                    for (const std::string& entry : value.texts())
                        text += entry + " ";
                });
                answered = true;
            });
        EXPECT_TRUE(loop.runUntil([&answered] { return answered; }));
        return text;
    }
    [[nodiscard]] std::string wholeName() const { return ownName() + "/StatusNotifierItem "; }
};

struct SwaybarTest : TrayHostsTest {
    void SetUp() override {
        for (const char* const tool : {"sway", "swaybar", "swaymsg", "grim"})
            if (!isInstalled(tool)) GTEST_SKIP() << "no " << tool;
        TrayHostsTest::SetUp();
    }
    void startSway() {
        const Environment environment({{"DBUS_SESSION_BUS_ADDRESS", loop.daemon.address()}});
        sway.emplace(folder, "xwayland disable\n"
                             "output * bg #000000 solid_color\n"
                             "bar {\n  position top\n  tray_output *\n  height 32\n}\n");
        ASSERT_TRUE(sway->isListening) << sway->program().output();
    }
    [[nodiscard]] std::map<std::string, std::string> clientEnvironment() const {
        return {{"XDG_RUNTIME_DIR", folder.path()},
                {"WAYLAND_DISPLAY", HeadlessSway::socketName},
                {"SWAYSOCK", commandSocket()}};
    }
    [[nodiscard]] std::string commandSocket() const {
        for (const auto& entry : fs::directory_iterator(folder.path()))
            if (entry.path().filename().string().starts_with("sway-ipc")) return entry.path();
        return {};
    }
    void tell(const std::string& command) const {
        Program swaymsg({.words = {"swaymsg", "-s", commandSocket(), command},
                         .environment = clientEnvironment()});
        ASSERT_EQ(swaymsg.ended(), 0) << swaymsg.output();
    }
    [[nodiscard]] QImage screen() const {
        const std::string file = folder.path() + "/screen.png";
        Program grim({.words = {"grim", file}, .environment = clientEnvironment()});
        EXPECT_EQ(grim.ended(), 0) << grim.output();
        return QImage(QString::fromStdString(file));
    }
    [[nodiscard]] bool shows(const std::function<bool(int orange)>& enough) {
        return loop.runUntil([&] { return enough(orangePixels(screen())); });
    }
    std::optional<HeadlessSway> sway;
};

} // namespace

TEST_F(SwaybarTest, ShowsTheItemThatWasThereBeforeIt) {
    startSway();
    ASSERT_TRUE(waitUntilTaken()) << sway->program().output();
    EXPECT_EQ(listed(), wholeName());
    EXPECT_TRUE(shows([](int orange) { return orange > 60; }));
}

TEST_F(SwaybarTest, ShowsTheItemThatComesAfterIt) {
    item.reset();
    startSway();
    ASSERT_TRUE(loop.runUntil([this] { return screen().width() > 0; }));
    EXPECT_EQ(orangePixels(screen()), 0);
    makeItem();
    ASSERT_TRUE(waitUntilTaken()) << sway->program().output();
    EXPECT_EQ(listed(), wholeName());
    EXPECT_TRUE(shows([](int orange) { return orange > 60; }));
}

TEST_F(SwaybarTest, ShowsTheIconOfTheWholeApplication) {
    item.reset();
    startSway();
    TemporaryFolder home;
    auto environment = clientEnvironment();
    environment["HOME"] = home.path().string();
    environment["XDG_CONFIG_HOME"] = (home.path() / "config").string();
    environment["DBUS_SESSION_BUS_ADDRESS"] = loop.daemon.address();
    environment["DBUS_SYSTEM_BUS_ADDRESS"] = loop.daemon.address();
    environment["QT_QPA_PLATFORM"] = "offscreen"; // the icon needs no windows
    environment["XDG_CURRENT_DESKTOP"] = "sway";  // whose bar is dark
    Program wegslot({.words = {WEGSLOT_PROGRAM}, .environment = environment});
    ASSERT_TRUE(becomesTrue([this] { return !listed().empty(); })) << wegslot.output();
    const auto isShown = [this] {
        const QImage right = screen().copy(1280 - 40, 0, 40, 32);
        int white = 0;
        for (int y = 0; y < right.height(); ++y)
            for (int x = 0; x < right.width(); ++x)
                white += qGray(right.pixel(x, y)) > 200 ? 1 : 0;
        return white > 20;
    };
    EXPECT_TRUE(becomesTrue(isShown)) << wegslot.output();
    wegslot.stop();
    EXPECT_EQ(wegslot.ended(), 0) << wegslot.output();
    EXPECT_TRUE(becomesTrue([this] { return listed().empty(); }));
}

TEST_F(SwaybarTest, FollowsTheIcon) {
    startSway();
    ASSERT_TRUE(waitUntilTaken());
    int filled = 0;
    ASSERT_TRUE(shows([&filled](int orange) { return (filled = orange) > 60; }));
    item->show(openLock); // an outline has less of it
    EXPECT_TRUE(shows([&filled](int orange) { return orange > 10 && orange < filled * 2 / 3; }));
    TrayContent white = openLock;
    white.color = brand::white;
    item->show(white);
    EXPECT_TRUE(shows([](int orange) { return orange == 0; }));
}

TEST_F(SwaybarTest, ShowsTheItemAgainAfterItsRestart) {
    startSway();
    ASSERT_TRUE(waitUntilTaken());
    tell("reload"); // ends the bar and starts another
    ASSERT_TRUE(waitUntilLost());
    ASSERT_TRUE(waitUntilTaken());
    EXPECT_EQ(listed(), wholeName());
    EXPECT_TRUE(shows([](int orange) { return orange > 60; }));
}

TEST_F(SwaybarTest, KnowsTheItemOfANewConnectionAndForgetsTheOld) {
    startSway();
    ASSERT_TRUE(waitUntilTaken());
    const std::string before = listed();
    session.renew();
    ASSERT_TRUE(waitUntilLost());
    ASSERT_TRUE(waitUntilTaken());
    EXPECT_NE(wholeName(), before);
    EXPECT_TRUE(loop.runUntil([this] { return listed() == wholeName(); }));
    EXPECT_TRUE(shows([](int orange) { return orange > 60; }));
}

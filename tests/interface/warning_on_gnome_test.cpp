// The warning on GNOME, through the X server that it starts for programs of that kind.

#include "tests/interface/picture.h"
#include "tests/interface/screens.h"
#include "tests/interface/shown_panel.h"
#include "tests/support/gnome_desktop.h"

#include <filesystem>

using namespace wegslot;

namespace {

const QRect placeOnGnome(200, 12 + 32, 400, 96); ///< 800 wide, below the bar at the top

struct WarningOnGnomeTest : testing::Test {
    BusLoop loop;
    std::optional<GnomeDesktop> gnome;
    std::optional<OnScreen> on;
    std::map<std::string, std::string> variables;
    ShownPanel warning;

    void SetUp() override {
        if (const std::string obstacle = GnomeDesktop::obstacle(); !obstacle.empty())
            GTEST_SKIP() << obstacle;
        if (!isInstalled("Xwayland")) GTEST_SKIP() << "Xwayland is not installed";
        gnome.emplace(loop, std::vector<std::string>{"--unsafe-mode"}); // lets us see the screen
        ASSERT_TRUE(gnome->start()) << gnome->shell().output();
        variables = gnome->variables();
        variables["DISPLAY"] = display();
        variables["XAUTHORITY"] = permission();
        variables["QT_QPA_PLATFORM"] = "xcb";
        ASSERT_TRUE(variables["DISPLAY"].starts_with(':')) << gnome->shell().output();
        on.emplace(variables);
    }
    void TearDown() override {
        warning.hud.hide();
        ShownPanel::settle();
    }

    /// It says so when it starts: "Using public X11 display :0, ...".
    [[nodiscard]] std::string display() {
        const std::string said = gnome->shell().output();
        const auto start = said.find("X11 display :");
        if (start == std::string::npos) return "";
        const std::string rest = said.substr(start + std::string("X11 display ").size());
        return rest.substr(0, rest.find_first_not_of("0123456789", 1));
    }
    [[nodiscard]] std::string permission() const {
        const std::string folder = variables.at("XDG_RUNTIME_DIR");
        for (const auto& entry : std::filesystem::directory_iterator(folder))
            if (entry.path().filename().string().starts_with(".mutter-Xwaylandauth"))
                return entry.path().string();
        return "";
    }
    void ask(const std::string& interface, const std::string& path, const std::string& member,
             std::vector<dbus::Argument> arguments) {
        bool done = false;
        const auto bus = loop.connect();
        const auto attached = loop.attach(*bus);
        const auto call = bus->call({.destination = interface,
                                     .path = path,
                                     .interface = interface,
                                     .member = member,
                                     .arguments = std::move(arguments)},
                                    [&done](const dbus::Message&) { done = true; });
        static_cast<void>(loop.runUntil([&done] { return done; }));
    }
    void evaluate(const std::string& script) {
        ask("org.gnome.Shell", "/org/gnome/Shell", "Eval", {script});
    }
    /// The shell starts with its overview, which covers all windows but its own.
    void leaveOverview() { evaluate("Main.overview.hide()"); }

    /// Leaves it again each time: a shell that is still starting comes back to it.
    [[nodiscard]] bool appears() {
        return happens([this] {
            leaveOverview();
            return isSeen();
        });
    }

    /// A person's mouse and keyboard.
    void plugIn() {
        evaluate("const Clutter = imports.gi.Clutter;"
                 "const seat = Clutter.get_default_backend().get_default_seat();"
                 "global.mouse = seat.create_virtual_device(0 + "
                 "Clutter.InputDeviceType.POINTER_DEVICE);"
                 "global.keys = seat.create_virtual_device(0 + "
                 "Clutter.InputDeviceType.KEYBOARD_DEVICE);");
    }
    void clicks(QPoint at) {
        evaluate("global.mouse.notify_absolute_motion(0, " + std::to_string(at.x()) + ", " +
                 std::to_string(at.y()) +
                 ");"
                 "global.mouse.notify_button(0, 1, 1); global.mouse.notify_button(0, 1, 0);");
    }
    void typesEscape() {
        evaluate("global.keys.notify_keyval(0, 0xff1b, 1); global.keys.notify_keyval(0, 0xff1b, "
                 "0);");
    }
    [[nodiscard]] QImage seen() {
        const std::string file = variables.at("XDG_RUNTIME_DIR") + "/seen.png";
        ask("org.gnome.Shell.Screenshot", "/org/gnome/Shell/Screenshot", "Screenshot",
            {false, false, file});
        return QImage(QString::fromStdString(file));
    }
    [[nodiscard]] bool isSeen() {
        const QRect middle(22, 0, 356, 96);
        return difference(seen().copy(middle.translated(placeOnGnome.topLeft())),
                          ShownPanel::panel().grab(middle).toImage())
            .isNone();
    }
};

} // namespace

TEST_F(WarningOnGnomeTest, IsWhollySeenAboveAFullScreenWindowWhichKeepsTheKeyboard) {
    const FullScreenProgram film(variables);
    ASSERT_TRUE(film.isShown) << film.output();
    warning.show();
    EXPECT_TRUE(appears());
    EXPECT_EQ(ShownPanel::panel().frameGeometry(), placeOnGnome);
    EXPECT_FALSE(film.everLostKeyboard()) << film.output();
    EXPECT_TRUE(film.hasKeyboard());
}

TEST_F(WarningOnGnomeTest, AClickOnTheButtonCancelsOnceAndEscapeDoesAfterAClickOnThePanel) {
    plugIn();
    warning.show();
    ASSERT_TRUE(appears());
    clicks(placeOnGnome.topLeft() + ShownPanel::button().geometry().center());
    EXPECT_TRUE(happens([this] { return warning.cancelled == 1; }));
    typesEscape(); // to whoever has the keyboard
    clicks(placeOnGnome.topLeft() + QPoint(100, 20));
    ASSERT_TRUE(happens([] { return ShownPanel::panel().isActiveWindow(); }));
    EXPECT_EQ(warning.cancelled, 1);
    typesEscape();
    EXPECT_TRUE(happens([this] { return warning.cancelled == 2; }));
}

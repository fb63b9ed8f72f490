// The whole application on a bare desktop, driven as a person would: no bar shows its icon, so the
// panel opens by itself; a key is picked, its threshold moved, a pause made and ended, the screen
// locked. What came of it is read from the preferences and the log.

#include "tests/interface/screens.h"
#include "tests/support/look_alike_bluez.h"
#include "tests/support/mocked_logind.h"
#include "tests/support/own_home.h"

#include <gtest/gtest.h>

#include <chrono>

using namespace wegslot;

namespace {

constexpr auto address = "AA:BB:CC:DD:EE:01";

class PanelOnX11Test : public testing::Test {
protected:
    void SetUp() override {
        for (const char* const tool : {"Xvfb", "openbox", "xdotool", "xprop"})
            if (!isInstalled(tool)) GTEST_SKIP() << tool << " is not installed";
        screen.emplace("openbox");
        ASSERT_TRUE(screen->isManaged);
        variables = home.variables(loop);
        variables["DISPLAY"] = screen->display;
        variables["XDG_SESSION_TYPE"] = "x11";
        bluez.addAdapter();
        bluez.addDevice(
            address, std::int16_t{-50},
            {{"AddressType", std::string("public")}, {"Name", std::string("Telefoon")}});
        application.emplace(start());
    }

    [[nodiscard]] Program::Start start() const {
        return {.words = {WEGSLOT_PROGRAM}, .environment = variables};
    }

    /// Until it is so, while the phone goes on sending.
    [[nodiscard]] bool happens(const std::function<bool()>& condition) {
        using Clock = std::chrono::steady_clock;
        auto next = Clock::now();
        return loop.runUntil([&] {
            if (Clock::now() >= next) {
                strength = static_cast<std::int16_t>(-101 - strength);
                bluez.report(address, strength, {{"ManufacturerData", ofThePhone}});
                next = Clock::now() + std::chrono::milliseconds{300};
            }
            return condition();
        });
    }

    /// What a program says that has to do with this screen, at its end.
    [[nodiscard]] std::string said(std::vector<std::string> words) {
        Program program({.words = std::move(words), .environment = variables});
        EXPECT_TRUE(happens([&program] { return !program.isRunning(); }));
        return program.output();
    }

    [[nodiscard]] bool isOpen() {
        const std::string found =
            said({"xdotool", "search", "--onlyvisible", "--name", "^Wegslot$"});
        return !found.empty() && found.find_first_not_of("0123456789\n") == std::string::npos;
    }

    void type(std::vector<std::string> keys) {
        std::vector<std::string> words{"xdotool", "key", "--delay", "30"};
        words.insert(words.end(), keys.begin(), keys.end());
        static_cast<void>(said(std::move(words)));
    }

    /// Closes the panel and has a second start open it again.
    void reopen() {
        type({"Escape"});
        ASSERT_TRUE(happens([this] { return !isOpen(); }));
        Program second(start());
        ASSERT_TRUE(happens([&second] { return !second.isRunning(); }));
        EXPECT_EQ(second.ended(), 0) << second.output();
        ASSERT_TRUE(happens([this] { return isOpen(); }));
    }

    /// The same as fast as it goes: Qt may learn only afterwards that the panel before is gone.
    void reopenAtOnce() {
        const auto bus = loop.connect();
        const auto attached = loop.attach(*bus);
        loop.settle();
        type({"Escape"});
        ASSERT_TRUE(happens([this] { return !isOpen(); }));
        bool answered = false;
        const auto opening = bus->call({.destination = "nl.wegslot.Wegslot",
                                        .path = "/nl/wegslot/Wegslot",
                                        .interface = "org.freedesktop.Application",
                                        .member = "Activate",
                                        .arguments = {dbus::Dictionary{}}},
                                       [&](const dbus::Message&) { answered = true; });
        ASSERT_TRUE(happens([&] { return answered; }));
    }

    [[nodiscard]] bool logs(const std::string& text) {
        return happens([&] { return home.log().find(text) != std::string::npos; });
    }
    [[nodiscard]] bool prefers(const std::string& text) {
        return happens([&] { return home.preferences().find(text) != std::string::npos; });
    }

    /// Of the one key, in dBm, as it is stored.
    [[nodiscard]] double threshold() const {
        const std::string text = home.preferences();
        const auto found = text.find("\"threshold\":");
        return found == std::string::npos ? 0 : std::stod(text.substr(found + 12));
    }

    OwnHome home;
    std::optional<X11Screen> screen;
    std::map<std::string, std::string> variables;
    BusLoop loop;
    LookAlikeBluez bluez{loop};
    MockedLogind logind{loop};
    std::int16_t strength = -50;
    const LookAlikeBluez::ManufacturerData ofThePhone{{0x004C, {0x10, 0x00}}};
    std::optional<Program> application;
};

} // namespace

TEST_F(PanelOnX11Test, IsDrivenByKeysAndMouseFromTheFirstStartToTheEnd) {
    ASSERT_TRUE(happens([this] { return isOpen(); })) << application->output();
    ASSERT_TRUE(logs("naam=Telefoon")) << home.log();
    // The switch, the group of devices, and "Kies" of the only one.
    type({"Tab", "Tab", "Tab", "space"});
    EXPECT_TRUE(prefers("\"Telefoon\"")) << home.log();
    EXPECT_TRUE(logs("Sleutel in de buurt, bewaking actief"));

    reopenAtOnce();
    const double before = threshold();
    // The switch, the cross of the key, and its slider.
    type({"Tab", "Tab", "Tab", "Right", "Right", "Right"});
    EXPECT_TRUE(happens([&] { return threshold() == before + 3; })) << before << threshold();

    reopen();
    // Backwards from the end: "Stop", the log, and "Pauzeer" with its first entry.
    type({"shift+Tab", "shift+Tab", "shift+Tab", "space"});
    type({"Down", "Return"});
    EXPECT_TRUE(logs("Handmatig gepauzeerd tot ")) << home.log();
    reopen();
    type({"shift+Tab", "shift+Tab", "shift+Tab", "space"});
    EXPECT_TRUE(logs(" Hervat\n")) << home.log();

    reopen();
    type({"shift+Tab", "shift+Tab", "shift+Tab", "shift+Tab", "space"});
    EXPECT_TRUE(logs("Mac wordt gelockt")) << home.log();

    reopen();
    const std::string window = said({"xdotool", "search", "--onlyvisible", "--name", "^Wegslot$"});
    // "Stop" is at the lower right.
    static_cast<void>(said({"xdotool", "mousemove", "--window", window.substr(0, window.find('\n')),
                            "342", "574", "click", "1"}));
    EXPECT_TRUE(happens([this] { return !application->isRunning(); }));
    EXPECT_EQ(application->ended(), 0) << application->output();
}

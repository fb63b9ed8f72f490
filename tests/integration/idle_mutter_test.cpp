// The idle time of GNOME: of the real window manager without a screen, and of one that a test
// plays.

#include "platform/linux/idle/mutter_idle.h"
#include "tests/integration/answering_service.h"
#include "tests/support/bus_loop.h"
#include "tests/support/captured_log.h"
#include "tests/support/environment.h"
#include "tests/support/program.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

using namespace wegslot;
using namespace std::chrono_literals;

namespace {

constexpr auto service = "org.gnome.Mutter.IdleMonitor";

struct IdleMutterTest : testing::Test {
    [[nodiscard]] bool isFound() {
        return loop.runUntil([this] { return idle.isThere(); });
    }
    [[nodiscard]] bool isLost() {
        return loop.runUntil([this] { return !idle.isThere(); });
    }

    /// Asked until there is one: a machine with much to do may need longer than the patience.
    [[nodiscard]] std::optional<Seconds> answer() {
        std::optional<Seconds> idleTime;
        static_cast<void>(loop.runUntil([&] { return (idleTime = idle.idleTime()).has_value(); }));
        return idleTime;
    }

    CapturedLog log;
    BusLoop loop;
    dbus::Connection sessionBus{loop.opener(), loop.attacher(), loop.time};
    MutterIdle idle{sessionBus};
};

struct PlayedMutterTest : IdleMutterTest {
    /// Until it is found.
    void play(const AnsweringService::Answer& answer) {
        mutter.emplace(loop.daemon.address(), service, answer);
        ASSERT_TRUE(isFound());
    }

    std::optional<AnsweringService> mutter;
};

TEST_F(PlayedMutterTest, NotThereWithoutTheName) {
    loop.settle();
    EXPECT_FALSE(idle.isThere());
    EXPECT_EQ(idle.idleTime(), std::nullopt);
    EXPECT_EQ(idle.name(), "Mutter");
}

TEST_F(PlayedMutterTest, AnswersInMilliseconds) {
    play([](sd_bus*, sd_bus_message* call) {
        const bool right =
            sd_bus_message_is_method_call(call, service, "GetIdletime") > 0 &&
            std::string(sd_bus_message_get_path(call)) == "/org/gnome/Mutter/IdleMonitor/Core";
        sd_bus_reply_method_return(call, "t", std::uint64_t{right ? 11764U : 0U});
    });
    EXPECT_EQ(answer(), Seconds{11.764});
}

TEST_F(PlayedMutterTest, ErrorIsNoAnswer) {
    play([](sd_bus*, sd_bus_message* call) {
        sd_bus_reply_method_errorf(call, SD_BUS_ERROR_UNKNOWN_METHOD, "as told");
    });
    EXPECT_EQ(idle.idleTime(), std::nullopt);
}

TEST_F(PlayedMutterTest, NonsenseIsNoAnswer) {
    std::atomic<int> nonsense = 0;
    play([&](sd_bus*, sd_bus_message* call) {
        if (nonsense == 0) sd_bus_reply_method_return(call, "s", "long");
        if (nonsense == 1) sd_bus_reply_method_return(call, "");
        if (nonsense == 2) sd_bus_reply_method_return(call, "t", UINT64_MAX);
        if (nonsense == 3) sd_bus_reply_method_return(call, "x", std::int64_t{-1});
        if (nonsense == 4) sd_bus_reply_method_return(call, "t", std::uint64_t{0});
    });
    for (; nonsense < 4; ++nonsense)
        EXPECT_EQ(idle.idleTime(), std::nullopt) << nonsense;
    EXPECT_EQ(answer(), 0s);
}

TEST_F(PlayedMutterTest, SilenceIsNoAnswerAndSoon) {
    play([](sd_bus*, sd_bus_message*) {});
    const Environment patient{{{"SYSTEMD_BUS_TIMEOUT", "1h"}}}; // by the library's own this hangs
    EXPECT_EQ(idle.idleTime(), std::nullopt);
    EXPECT_TRUE(idle.isThere());
}

TEST_F(PlayedMutterTest, ComesAndGoesWithTheNameAndTheBus) {
    const auto twoSeconds = [](sd_bus*, sd_bus_message* call) {
        sd_bus_reply_method_return(call, "t", std::uint64_t{2000});
    };
    play(twoSeconds);
    mutter.reset();
    EXPECT_EQ(idle.idleTime(), std::nullopt); // not yet known to have gone
    ASSERT_TRUE(isLost());
    play(twoSeconds);
    EXPECT_EQ(answer(), 2s);

    loop.daemon.stop();
    ASSERT_TRUE(isLost());
    EXPECT_EQ(idle.idleTime(), std::nullopt);
    mutter.reset();
    loop.daemon.start();
    mutter.emplace(loop.daemon.address(), service, twoSeconds);
    loop.time.advance(dbus::Connection::retryInterval);
    ASSERT_TRUE(isFound());
    EXPECT_EQ(answer(), 2s);
}

/// Typing on a keyboard that the window manager lends to programs that show a desktop elsewhere.
class RemoteKeyboard {
public:
    explicit RemoteKeyboard(BusLoop& loop) : loop_(loop), bus_(loop.connect()) {
        attached_ = loop.attach(*bus_);
        ask("/org/gnome/Mutter/RemoteDesktop", "org.gnome.Mutter.RemoteDesktop", "CreateSession",
            {}, [this](const dbus::Message& answer) {
                session_ = answer.read().text().value_or("/none");
            });
        ask(session_, sessionInterface, "Start", {}, {});
    }

    void press() {
        constexpr std::uint32_t letterA = 30;
        for (const bool down : {true, false})
            ask(session_, sessionInterface, "NotifyKeyboardKeycode", {letterA, down}, {});
    }

private:
    static constexpr auto sessionInterface = "org.gnome.Mutter.RemoteDesktop.Session";

    void ask(const std::string& path, const std::string& interface, const std::string& member,
             std::vector<dbus::Argument> arguments, const dbus::Bus::Listener& listener) {
        bool answered = false;
        const auto asking = bus_->call({.destination = "org.gnome.Mutter.RemoteDesktop",
                                        .path = path,
                                        .interface = interface,
                                        .member = member,
                                        .arguments = std::move(arguments)},
                                       [&](const dbus::Message& answer) {
                                           answered = true;
                                           EXPECT_EQ(answer.error(), std::nullopt) << member;
                                           if (listener) listener(answer);
                                       });
        ASSERT_TRUE(loop_.runUntil([&] { return answered; })) << member;
    }

    BusLoop& loop_;
    std::unique_ptr<dbus::Bus> bus_;
    std::string session_;
    Handle attached_;
};

struct RealMutterTest : IdleMutterTest {
    void SetUp() override {
        if (!isInstalled("mutter")) GTEST_SKIP() << "no mutter";
        start();
    }

    void start() {
        mutter.emplace(Program::Start{
            .words = {"mutter", "--headless", "--wayland", "--no-x11", "--virtual-monitor",
                      "800x600"},
            .environment = {{"DBUS_SESSION_BUS_ADDRESS", loop.daemon.address()},
                            {"DBUS_SYSTEM_BUS_ADDRESS", "unix:path=" + folder.path() + "/none"},
                            {"XDG_RUNTIME_DIR", folder.path()},
                            {"WAYLAND_DISPLAY", ""},
                            {"DISPLAY", ""}}});
        ASSERT_TRUE(isFound()) << mutter->output();
    }

    [[nodiscard]] bool hasBeenIdle() {
        return loop.runUntil([this] { return idle.idleTime().value_or(0s) > 0.5s; });
    }

    RuntimeFolder folder;
    std::optional<Program> mutter;
};

TEST_F(RealMutterTest, GrowsUntilAKeyIsPressed) {
    ASSERT_TRUE(hasBeenIdle()) << mutter->output();
    RemoteKeyboard keyboard(loop);
    ASSERT_TRUE(hasBeenIdle());
    EXPECT_TRUE(loop.runUntil([&] {
        keyboard.press();
        return idle.idleTime().value_or(1s) < 0.5s;
    }));
    EXPECT_TRUE(hasBeenIdle());
}

TEST_F(RealMutterTest, HungOneAnswersNothing) {
    ASSERT_TRUE(hasBeenIdle()) << mutter->output();
    mutter->signal(SIGSTOP);
    EXPECT_EQ(idle.idleTime(), std::nullopt);
    EXPECT_TRUE(idle.isThere());
    mutter->signal(SIGCONT);
    EXPECT_TRUE(hasBeenIdle());
}

TEST_F(RealMutterTest, OneThatCrashedIsNotThereUntilItIsBack) {
    ASSERT_TRUE(hasBeenIdle()) << mutter->output();
    mutter->signal(SIGKILL);
    ASSERT_TRUE(isLost());
    start();
    EXPECT_TRUE(hasBeenIdle());
}

} // namespace

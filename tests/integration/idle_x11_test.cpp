// The idle time of an X11 session, as a real X server without a screen counts it.

#include "base/virtual_time.h"
#include "platform/linux/idle/x11_idle.h"
#include "platform/linux/idle/x11_server.h"
#include "tests/support/headless_sway.h"
#include "tests/support/program.h"
#include "tests/support/waiting.h"

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <unistd.h>

using namespace wegslot;
using namespace std::chrono_literals;

namespace {

/// A display of this process's own: a number that the servers of other tests, which begin at 0,
/// do not reach, so that a server can come back under it.
const std::string number = std::to_string(100 + getpid() % 50000);
const std::string display = ":" + number;

class XServer {
public:
    explicit XServer(std::vector<std::string> words = {"Xvfb", display, "-noreset"},
                     std::map<std::string, std::string> environment = {})
        : program_({.words = announcing(std::move(words)),
                    .environment = std::move(environment),
                    .unprivileged = false}) {
        listening =
            becomesTrue([this] {
                return !program_.isRunning() ||
                       ("\n" + program_.output()).find("\n" + number + "\n") != std::string::npos;
            }) &&
            program_.isRunning();
    }

    void hang() const { program_.signal(SIGSTOP); }
    void goOn() const { program_.signal(SIGCONT); }
    void die() {
        program_.signal(SIGKILL);
        static_cast<void>(program_.ended());
    }
    [[nodiscard]] std::string output() const { return program_.output(); }

    bool listening = false;

private:
    /// It prints its number when it takes connections.
    static std::vector<std::string> announcing(std::vector<std::string> words) {
        words.insert(words.end(), {"-displayfd", "1", "-nolisten", "tcp"});
        return words;
    }

    Program program_;
};

void person(const std::vector<std::string>& does) {
    std::vector<std::string> words{"xdotool"};
    words.insert(words.end(), does.begin(), does.end());
    Program program({.words = words, .environment = {{"DISPLAY", display}}});
    ASSERT_EQ(program.ended(), 0) << program.output();
}

struct IdleX11Test : testing::Test {
    void SetUp() override {
        for (const char* const tool : {"Xvfb", "xdotool"})
            if (!isInstalled(tool)) GTEST_SKIP() << "no " << tool;
    }

    void connect() { idle = std::make_unique<X11Idle>(environment, time); }

    [[nodiscard]] bool isFound() const {
        return becomesTrue([this] { return idle->isThere(); });
    }

    [[nodiscard]] bool hasBeenIdle() const {
        return becomesTrue([this] { return idle->idleTime().value_or(0s) > 0.5s; });
    }

    /// Whether `touch`, done again and again, ends an idleness of at least half a second.
    [[nodiscard]] bool isEndedBy(const std::function<void()>& touch) const {
        if (!hasBeenIdle()) return false;
        return becomesTrue([&] {
            touch();
            return idle->idleTime().value_or(1s) < 0.5s;
        });
    }

    DisplayEnvironment environment{.x11Display = display};
    VirtualTime time{TimePoint{1000h}};
    std::unique_ptr<X11Idle> idle;
};

TEST_F(IdleX11Test, GrowsUntilTheMouseMoves) {
    const XServer server;
    ASSERT_TRUE(server.listening) << server.output();
    connect();
    ASSERT_TRUE(isFound());
    EXPECT_EQ(idle->name(), "X11");
    int place = 0;
    EXPECT_TRUE(isEndedBy([&] {
        place = 100 - place;
        person({"mousemove", std::to_string(place), "50"});
    }));
    EXPECT_TRUE(hasBeenIdle());
}

TEST_F(IdleX11Test, KeyEndsIt) {
    const XServer server;
    ASSERT_TRUE(server.listening) << server.output();
    connect();
    ASSERT_TRUE(isFound());
    EXPECT_TRUE(isEndedBy([] { person({"key", "a"}); }));
}

TEST_F(IdleX11Test, HungServerAnswersNothingAndIsWaitedForOnce) {
    const XServer server;
    ASSERT_TRUE(server.listening) << server.output();
    connect();
    ASSERT_TRUE(isFound());
    ASSERT_TRUE(idle->idleTime());
    server.hang();
    const long before = waitsSoFar();
    for (int question = 0; question < 100; ++question)
        EXPECT_EQ(idle->idleTime(), std::nullopt);
    EXPECT_LT(waitsSoFar() - before, 50); // one for each would be a hundred
    EXPECT_TRUE(idle->isThere());

    server.goOn();
    EXPECT_TRUE(becomesTrue([this] { return idle->idleTime().has_value(); }));
}

TEST_F(IdleX11Test, HungServerHoldsUpNeitherBeginningNorEnd) {
    const XServer server;
    ASSERT_TRUE(server.listening) << server.output();
    connect();
    ASSERT_TRUE(isFound());
    server.hang();
    // It goes on only when all of this is over: what waited for it would wait for ever.
    EXPECT_EQ(idle->idleTime(), std::nullopt);
    connect(); // while the one before waits for an answer
    EXPECT_FALSE(idle->isThere());
    EXPECT_EQ(idle->idleTime(), std::nullopt);
    time.advance(X11Idle::retryInterval * 3); // an attempt under way is not made again
    connect();                                // while the one before waits for its connection

    server.goOn();
    EXPECT_TRUE(isFound());
}

TEST_F(IdleX11Test, ServerThatDiedIsNotThereUntilOneComesBack) {
    XServer server;
    ASSERT_TRUE(server.listening) << server.output();
    connect();
    ASSERT_TRUE(isFound());
    server.die();
    EXPECT_TRUE(becomesTrue([this] { return !idle->idleTime() && !idle->isThere(); }));

    const XServer next;
    ASSERT_TRUE(next.listening) << next.output();
    EXPECT_FALSE(idle->isThere());
    EXPECT_TRUE(becomesTrue([this] {
        time.advance(X11Idle::retryInterval);
        return idle->isThere();
    }));
    EXPECT_TRUE(hasBeenIdle());
}

TEST_F(IdleX11Test, SessionOfWaylandHasNoneEvenWithAServer) {
    const XServer server;
    ASSERT_TRUE(server.listening) << server.output();
    environment.waylandDisplay = "wayland-0";
    const X11Idle wayland(environment, time);
    environment.waylandDisplay = "";
    connect();
    ASSERT_TRUE(isFound());
    EXPECT_FALSE(wayland.isThere());
}

TEST_F(IdleX11Test, ServerInACompositorIsNone) {
    for (const char* const tool : {"sway", "Xwayland"})
        if (!isInstalled(tool)) GTEST_SKIP() << "no " << tool;
    const RuntimeFolder folder;
    HeadlessSway sway(folder);
    ASSERT_TRUE(sway.isListening) << sway.program().output();
    const XServer server(
        {"Xwayland", display, "-rootless"},
        {{"XDG_RUNTIME_DIR", folder.path()}, {"WAYLAND_DISPLAY", HeadlessSway::socketName}});
    ASSERT_TRUE(server.listening) << server.output();
    EXPECT_EQ(X11Server::connect(display), nullptr);
}

} // namespace

// The idle time of a Wayland session, against a compositor that does what the test tells it to.
// Virtual time stands still while messages are on their way, so that what is answered is exact.

#include "platform/linux/idle/wayland_idle.h"
#include "tests/integration/idle_compositor.h"
#include "tests/support/bus_loop.h"
#include "tests/support/waiting.h"

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <optional>
#include <string>
#include <vector>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

using namespace wegslot;
using namespace std::chrono_literals;

namespace {

using enum IdleCompositor::Protocol;

struct IdleWaylandTest : testing::Test {
    void connect() { idle.emplace(environment, loop.time, loop.time, loop); }

    /// Asked until there is one: a machine with much to do may need longer than the patience.
    [[nodiscard]] std::optional<Seconds> answer() {
        std::optional<Seconds> idleTime;
        static_cast<void>(loop.runUntil([&] { return (idleTime = idle->idleTime()).has_value(); }));
        return idleTime;
    }

    /// Until the seats are watched. Two round trips: one for what is offered, one for the watching.
    [[nodiscard]] bool isWatching() {
        return loop.runUntil([this] { return idle->isThere(); }) && answer() == 0s &&
               answer() == 0s;
    }

    void SetUp() override {
        compositor.emplace(socket, std::vector{ext});
        connect();
        ASSERT_TRUE(isWatching());
    }

    /// Reads what the compositor has sent, and passes time.
    void pass(Nanoseconds duration) { loop.pass(duration); }

    TemporaryFolder folder;
    std::string socket = (folder.path() / "compositor").string();
    DisplayEnvironment environment{.waylandDisplay = socket};
    BusLoop loop;
    std::optional<IdleCompositor> compositor;
    std::optional<WaylandIdle> idle;
};

TEST_F(IdleWaylandTest, NobodyIsIdleBeforeTheFirstEvent) {
    pass(119s);
    EXPECT_EQ(answer(), 0s);
    EXPECT_EQ(idle->name(), "Wayland (ext-idle-notify-v1)");
}

TEST_F(IdleWaylandTest, EventsAreReadWhenTheyComeAndNotWhenAsked) {
    compositor->removeSeat(1);
    compositor->sayIdle(0);
    pass(0s);
    pass(9s);
    EXPECT_EQ(answer(), 10s);
}

TEST_F(IdleWaylandTest, TouchEndsIt) {
    compositor->removeSeat(1);
    compositor->sayIdle(0);
    pass(0s);
    pass(9s);
    compositor->sayActive(0);
    EXPECT_EQ(answer(), 0s);
    pass(1min);
    EXPECT_EQ(answer(), 0s);
    compositor->sayIdle(0);
    EXPECT_EQ(answer(), 1s);
}

TEST_F(IdleWaylandTest, AFilmThatPlaysInAnEmptyRoomIsNobodysHandsForLong) {
    EXPECT_TRUE(idle->canBeHeldUp());
    pass(121s);
    EXPECT_EQ(idle->idleTime(), std::nullopt);
    EXPECT_TRUE(idle->isThere());
    compositor->sayIdle(0);
    EXPECT_EQ(answer(), 1s);
}

TEST_F(IdleWaylandTest, WhereInputIsToldApartHandsCountForAsLongAsTheyType) {
    compositor.emplace(socket, std::vector{ext}, 2);
    connect();
    ASSERT_TRUE(isWatching());
    EXPECT_FALSE(idle->canBeHeldUp());
    pass(1h);
    EXPECT_EQ(answer(), 0s);
}

TEST_F(IdleWaylandTest, SeatTouchedLastDecides) {
    compositor->sayIdle(0);
    pass(0s);
    pass(3s);
    EXPECT_EQ(answer(), 0s);
    compositor->sayIdle(1);
    pass(0s);
    pass(4s);
    EXPECT_EQ(answer(), 5s);
    compositor->sayActive(0);
    EXPECT_EQ(answer(), 0s);
}

TEST_F(IdleWaylandTest, SeatThatIsRemovedCountsNoMore) {
    compositor->sayIdle(0);
    pass(0s);
    pass(3s);
    compositor->removeSeat(1);
    EXPECT_EQ(answer(), 4s);
    EXPECT_EQ(compositor->requests().back(), "unwatch 1");
}

TEST_F(IdleWaylandTest, SeatThatIsAddedCounts) {
    compositor->removeSeat(1);
    compositor->sayIdle(0);
    EXPECT_EQ(answer(), 1s);
    compositor->addSeat(2);
    EXPECT_EQ(answer(), 0s);
    EXPECT_EQ(answer(), 0s); // it is watched now
    compositor->sayIdle(2);
    EXPECT_EQ(answer(), 1s);
}

TEST_F(IdleWaylandTest, NotThereWhileThereAreNoSeats) {
    compositor->removeSeat(0);
    compositor->removeSeat(1);
    pass(0s);
    EXPECT_FALSE(idle->isThere());
    EXPECT_EQ(idle->idleTime(), std::nullopt);
    compositor->addSeat(0);
    EXPECT_TRUE(isWatching());
}

TEST_F(IdleWaylandTest, HungCompositorAnswersNothingAndIsWaitedForOnce) {
    compositor->sayIdle(0);
    compositor->sayIdle(1);
    ASSERT_EQ(answer(), 1s);
    compositor->signal(SIGSTOP);
    const long before = waitsSoFar();
    for (int question = 0; question < 100; ++question)
        EXPECT_EQ(idle->idleTime(), std::nullopt);
    EXPECT_LT(waitsSoFar() - before, 50); // one for each would be a hundred
    EXPECT_TRUE(idle->isThere());

    compositor->signal(SIGCONT);
    EXPECT_TRUE(loop.runUntil([this] { return idle->idleTime() == 1s; }));
}

TEST_F(IdleWaylandTest, CompositorThatHangsFromTheStartIsThereWhenItGoesOn) {
    compositor->signal(SIGSTOP);
    connect();
    pass(WaylandIdle::retryInterval * 2);
    EXPECT_FALSE(idle->isThere());
    EXPECT_EQ(idle->idleTime(), std::nullopt);
    compositor->signal(SIGCONT);
    EXPECT_TRUE(isWatching());
}

TEST_F(IdleWaylandTest, CompositorThatTakesNoConnectionHoldsUpNobody) {
    const std::string full = (folder.path() / "full").string();
    sockaddr_un address{.sun_family = AF_UNIX};
    full.copy(address.sun_path, sizeof address.sun_path - 1);
    const auto* const name = reinterpret_cast<const sockaddr*>(&address);
    const int listening = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    ASSERT_EQ(bind(listening, name, sizeof address), 0);
    ASSERT_EQ(listen(listening, 0), 0);
    std::vector<int> waiting;
    do
        waiting.push_back(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    while (::connect(waiting.back(), name, sizeof address) == 0);

    environment.waylandDisplay = full;
    connect();
    EXPECT_FALSE(idle->isThere());
    for (const int descriptor : waiting)
        close(descriptor);
    close(listening);
}

TEST_F(IdleWaylandTest, CompositorThatVanishedIsLookedForEveryFiveSeconds) {
    compositor.reset();
    ASSERT_TRUE(loop.runUntil([this] { return !idle->isThere(); }));
    EXPECT_EQ(idle->idleTime(), std::nullopt);
    pass(5s); // in vain
    compositor.emplace(socket, std::vector{ext});
    pass(5s - 1ns);
    EXPECT_TRUE(compositor->requests().empty());
    EXPECT_FALSE(idle->isThere());
    pass(1ns);
    EXPECT_TRUE(isWatching());
}

TEST_F(IdleWaylandTest, CompositorThatVanishesWhileAskedAnswersNothing) {
    compositor.reset();
    EXPECT_EQ(idle->idleTime(), std::nullopt);
    EXPECT_FALSE(idle->isThere());
}

TEST_F(IdleWaylandTest, CompositorThatTalksNonsenseIsLeftAndTriedAgain) {
    compositor->talkNonsense();
    ASSERT_TRUE(loop.runUntil([this] { return !idle->isThere(); }));
    pass(5s);
    EXPECT_TRUE(isWatching());
}

TEST_F(IdleWaylandTest, WithoutAProtocolNotThereUntilOneIsOffered) {
    compositor.emplace(socket, std::vector<IdleCompositor::Protocol>{});
    connect();
    pass(5s);
    EXPECT_FALSE(idle->isThere());
    EXPECT_EQ(idle->idleTime(), std::nullopt);
    EXPECT_EQ(idle->name(), "Wayland");
    compositor->offer(kwin);
    EXPECT_TRUE(isWatching());
    EXPECT_EQ(idle->name(), "Wayland (org_kde_kwin_idle)");
}

TEST_F(IdleWaylandTest, OlderProtocolServesWhileTheNewerIsNotOffered) {
    compositor->offer(kwin);
    compositor->withdraw(ext);
    pass(0s);
    ASSERT_TRUE(isWatching());
    EXPECT_EQ(idle->name(), "Wayland (org_kde_kwin_idle)");
    compositor->sayIdle(0);
    compositor->sayIdle(1);
    EXPECT_EQ(answer(), 1s);
    compositor->sayActive(1);
    EXPECT_EQ(answer(), 0s);
    compositor->sayIdle(1);
    EXPECT_EQ(answer(), 1s);

    compositor->offer(ext); // which begins anew
    pass(0s);
    ASSERT_TRUE(isWatching());
    EXPECT_EQ(idle->name(), "Wayland (ext-idle-notify-v1)");
    const std::vector<std::string> both{"watch 0 1000", "watch 1 1000", "unwatch 0", "unwatch 1",
                                        "watch 0 1000", "watch 1 1000", "unwatch 0", "unwatch 1",
                                        "watch 0 1000", "watch 1 1000"};
    EXPECT_EQ(compositor->requests(), both);
}

TEST_F(IdleWaylandTest, FilmsThatPlayAreNoInputWhereTheProtocolCanTell) {
    for (const int version : {1, 2}) {
        compositor.emplace(socket, std::vector{ext}, version);
        connect();
        ASSERT_TRUE(isWatching());
        const std::string watch = version < 2 ? "watch" : "watch input";
        const std::vector<std::string> expected{watch + " 0 1000", watch + " 1 1000"};
        EXPECT_EQ(compositor->requests(), expected);
    }
}

} // namespace

// Timers and descriptors on a real event loop, in real time.

#include "app/qt/qt_descriptors.h"
#include "app/qt/qt_scheduler.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QEventLoop>

#include <array>
#include <string>

#include <unistd.h>

using namespace wegslot;
using namespace std::chrono_literals;

namespace {

struct QtLoopTest : testing::Test {
    int argc = 1;
    std::string name = "qt_loop_test";
    char* argv[2] = {name.data(), nullptr};
    QCoreApplication application{argc, static_cast<char**>(argv)};
    QtScheduler scheduler;
    QEventLoop loop;

    /// What was to be deleted by the loop would outlive it.
    void TearDown() override {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
};

} // namespace

TEST_F(QtLoopTest, CallsRunInTheirOrder) {
    std::string calls;
    const auto second = scheduler.after(20ms, [&] { calls += 'b'; });
    const auto first = scheduler.after(0ms, [&] { calls += 'a'; });
    const auto last = scheduler.after(40ms, [&] { loop.quit(); });
    EXPECT_EQ(calls, ""); // never from within the asking
    loop.exec();
    EXPECT_EQ(calls, "ab");
}

TEST_F(QtLoopTest, ARepeatingTimerMayEndItselfAndStillReadWhatItHolds) {
    const std::string text = "a text too long for a small buffer, so that its loss would show";
    std::string seen;
    int calls = 0;
    Timer timer;
    timer = scheduler.every(1ms, [&, text] {
        ++calls;
        timer.reset();
        seen = text;
    });
    const auto last = scheduler.after(50ms, [&] { loop.quit(); });
    loop.exec();
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(seen, text);
}

TEST_F(QtLoopTest, ATimerMayBeReplacedFromWithinItsOwnCall) {
    Timer timer;
    bool replacementRan = false;
    timer = scheduler.after(0ms, [&] {
        timer = scheduler.after(0ms, [&] {
            replacementRan = true;
            loop.quit();
        });
    });
    const auto patience = scheduler.after(5s, [&] { loop.quit(); });
    loop.exec();
    EXPECT_TRUE(replacementRan);
}

TEST_F(QtLoopTest, AnEndedTimerCallsNothing) {
    int calls = 0;
    auto timer = scheduler.after(0ms, [&] { ++calls; });
    timer.reset();
    const auto last = scheduler.after(20ms, [&] { loop.quit(); });
    loop.exec();
    EXPECT_EQ(calls, 0);
}

TEST_F(QtLoopTest, ATimerMayOutliveTheApplicationsLoop) {
    const auto timer = scheduler.every(1ms, [] {});
    EXPECT_TRUE(timer);
}

TEST_F(QtLoopTest, ADescriptorIsToldOfWhileItHasSomethingToRead) {
    std::array<int, 2> ends{};
    ASSERT_EQ(pipe(ends.data()), 0);
    QtDescriptors descriptors;
    std::string read;
    Subscription watching;
    watching = descriptors.onReadable(ends[0], [&] {
        char byte = 0;
        ASSERT_EQ(::read(ends[0], &byte, 1), 1);
        read += byte;
        if (byte == 'b') {
            watching.reset();
            loop.quit();
        }
    });
    ASSERT_EQ(write(ends[1], "abc", 3), 3);
    const auto patience = scheduler.after(5s, [&] { loop.quit(); });
    loop.exec();
    const auto last = scheduler.after(20ms, [&] { loop.quit(); });
    loop.exec();
    EXPECT_EQ(read, "ab");
    close(ends[0]);
    close(ends[1]);
}

#include "base/linux/line_threads.h"

#include <gtest/gtest.h>

#include <condition_variable>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

using namespace wegslot;

namespace {

/// A destination that hangs until it is opened, and keeps what it took.
struct Valve {
    std::mutex mutex;
    std::condition_variable changed;
    bool isOpen = false;
    bool isReached = false;
    std::vector<std::string> taken;

    void open() {
        const std::lock_guard lock(mutex);
        isOpen = true;
        changed.notify_all();
    }
    /// Waits until a line hangs here, so that the queue behind it is as long as it was put.
    void awaitLine() {
        std::unique_lock lock(mutex);
        changed.wait(lock, [this] { return isReached; });
    }
    std::optional<Failure> take(std::string_view line) {
        std::unique_lock lock(mutex);
        isReached = true;
        changed.notify_all();
        changed.wait(lock, [this] { return isOpen; });
        taken.emplace_back(line);
        return std::nullopt;
    }
};

struct LineThreadsTest : testing::Test {
    std::shared_ptr<Valve> valve = std::make_shared<Valve>();

    [[nodiscard]] LineThreads::Take taking() const {
        return [valve = valve](std::string_view line) { return valve->take(line); };
    }
};

} // namespace

TEST_F(LineThreadsTest, AllThatWasPutIsTakenInOrderBeforeTheEnd) {
    valve->open();
    {
        LineThreads threads;
        LineQueue queue = threads.start(taking(), 100);
        EXPECT_TRUE(queue.put("one"));
        EXPECT_TRUE(queue.put("two"));
    }
    EXPECT_EQ(valve->taken, (std::vector<std::string>{"one", "two"}));
}

TEST_F(LineThreadsTest, ADestinationThatHangsHoldsNobodyUpAndTheQueueIsBounded) {
    LineThreads threads;
    LineQueue queue = threads.start(taking(), 10);
    EXPECT_TRUE(queue.put("hangs"));
    valve->awaitLine();
    EXPECT_TRUE(queue.put("12345"));
    EXPECT_FALSE(queue.put("123456"));
    EXPECT_TRUE(queue.put("54321")); // the bound is inclusive
    EXPECT_FALSE(queue.put("1"));
    valve->open();
}

TEST_F(LineThreadsTest, AThreadThatHangsIsLeftBehindAtTheEnd) {
    {
        LineThreads threads;
        LineQueue queue = threads.start(taking(), 10);
        EXPECT_TRUE(queue.put("hangs"));
        valve->awaitLine();
    }
    EXPECT_TRUE(valve->taken.empty());
    valve->open(); // nothing of what has gone is touched by it
}

TEST_F(LineThreadsTest, AfterAFailureNothingIsTakenAndTheReasonIsKnown) {
    const auto counted = std::make_shared<int>(0);
    LineThreads threads;
    LineQueue queue = threads.start(
        [counted](std::string_view) -> std::optional<Failure> {
            ++*counted;
            return Failure{"vol"};
        },
        1000);
    // A line may also be refused because nobody takes them yet.
    while (!queue.failure()) {
        static_cast<void>(queue.put("line"));
        std::this_thread::yield();
    }
    EXPECT_FALSE(queue.put("line"));
    EXPECT_EQ(queue.failure(), Failure{"vol"});
    EXPECT_EQ(*counted, 1);
}

TEST_F(LineThreadsTest, AThreadEndsWithItsQueue) {
    LineThreads threads;
    {
        const LineQueue one = threads.start(taking(), 10);
        EXPECT_EQ(threads.count(), 1U);
    }
    while (threads.count() > 0)
        std::this_thread::yield();
}

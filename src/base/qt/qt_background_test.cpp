#include "base/qt/qt_background.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QEventLoop>
#include <QThread>

#include <atomic>
#include <optional>

using namespace wegslot;

namespace {

struct QtBackgroundTest : testing::Test {
    int argc = 1;
    std::string name = "qt_background_test";
    char* argv[2] = {name.data(), nullptr};
    QCoreApplication application{argc, static_cast<char**>(argv)};
    QEventLoop loop;
};

} // namespace

TEST_F(QtBackgroundTest, WorksElsewhereAndFollowsUpHere) {
    QtBackground background;
    QThread* worked = nullptr;
    QThread* followed = nullptr;
    const auto handle = background.run([&] { worked = QThread::currentThread(); },
                                       [&] {
                                           followed = QThread::currentThread();
                                           loop.quit();
                                       });
    loop.exec();
    EXPECT_NE(worked, nullptr);
    EXPECT_NE(worked, QThread::currentThread());
    EXPECT_EQ(followed, QThread::currentThread());
}

TEST_F(QtBackgroundTest, WorkThatNobodyWaitsForIsFinishedAndNotFollowed) {
    std::atomic<int> worked = 0;
    bool followed = false;
    {
        QtBackground background;
        auto dropped = background.run([&] { ++worked; }, [&] { followed = true; });
        dropped.reset();
        const auto last = background.run([&] { ++worked; }, [&] { loop.quit(); });
        loop.exec();
        static_cast<void>(background.run([&] { ++worked; }, [&] { followed = true; }));
    }
    QCoreApplication::processEvents();
    EXPECT_EQ(worked, 3);
    EXPECT_FALSE(followed);
}

TEST_F(QtBackgroundTest, TheNextWorkMayBeginInWhatFollows) {
    QtBackground background;
    int steps = 0;
    Handle handle;
    handle = background.run(
        [&] { ++steps; }, [&] { handle = background.run([&] { ++steps; }, [&] { loop.quit(); }); });
    loop.exec();
    EXPECT_EQ(steps, 2);
}

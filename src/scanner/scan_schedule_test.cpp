#include "scanner/scan_schedule.h"

#include "tests/support/world.h"

using namespace wegslot;
using namespace std::chrono_literals;

namespace {

struct ScanScheduleTest : testing::Test, ScanRadio {
    void startScan() override { orders.emplace_back("start"); }
    void restartScan() override { orders.emplace_back("restart"); }
    void stopScan() override { orders.emplace_back("stop"); }

    std::vector<std::string> takeOrders() { return std::exchange(orders, {}); }

    using Orders = std::vector<std::string>;
    Orders orders;
    VirtualTime time{World::start};
    ScanSchedule schedule{*this, time, time};
    const Uuid key = numbered(1);
};

} // namespace

TEST_F(ScanScheduleTest, NothingIsOrderedBeforeTheRadioIsThere) {
    schedule.want(true, {key});
    time.advance(10s);
    EXPECT_EQ(takeOrders(), Orders{});
    schedule.start();
    EXPECT_EQ(takeOrders(), Orders{"start"});
}

TEST_F(ScanScheduleTest, NothingIsOrderedWhileNothingIsWanted) {
    schedule.start();
    time.advance(10s);
    EXPECT_EQ(takeOrders(), Orders{});
    EXPECT_EQ(time.pending(), 0U);
}

TEST_F(ScanScheduleTest, BurstsFollowOneAnotherByThemselves) {
    schedule.start();
    schedule.want(false, {key});
    time.advance(ScanPolicy::longestBurst);
    EXPECT_EQ(takeOrders(), (Orders{"start", "stop"}));
    time.advance(ScanPolicy::shortestGap);
    EXPECT_EQ(takeOrders(), Orders{"start"});
    EXPECT_TRUE(schedule.isScanning());
}

TEST_F(ScanScheduleTest, AKeyHeardEndsTheBurst) {
    schedule.start();
    schedule.want(false, {key});
    time.advance(1500ms);
    schedule.heard(numbered(2));
    EXPECT_EQ(takeOrders(), Orders{"start"});
    schedule.heard(key);
    EXPECT_EQ(takeOrders(), Orders{"stop"});
}

TEST_F(ScanScheduleTest, AnOpenListRestartsTheScanUntilTheControllerNoLongerFilters) {
    schedule.start();
    schedule.want(true, {});
    time.advance(2 * ScanPolicy::longestBurst);
    EXPECT_EQ(takeOrders(), (Orders{"start", "restart", "restart"}));
    schedule.setUnfiltered(true);
    time.advance(10s);
    EXPECT_EQ(takeOrders(), Orders{});
    schedule.want(false, {});
    EXPECT_EQ(takeOrders(), Orders{"stop"});
}

TEST_F(ScanScheduleTest, ARadioThatWentIsGivenNoOrders) {
    schedule.start();
    schedule.want(false, {key});
    schedule.stop();
    static_cast<void>(takeOrders());
    time.advance(10s);
    EXPECT_EQ(takeOrders(), Orders{});
    EXPECT_FALSE(schedule.isScanning());
    schedule.start();
    EXPECT_EQ(takeOrders(), Orders{"start"});
}

TEST_F(ScanScheduleTest, AConnectionBeingMadeEndsTheScanAndItsEndBringsItBack) {
    schedule.start();
    schedule.want(true, {});
    schedule.makeWay();
    EXPECT_EQ(takeOrders(), (Orders{"start", "stop"}));
    schedule.resume();
    EXPECT_EQ(takeOrders(), Orders{"start"});
}

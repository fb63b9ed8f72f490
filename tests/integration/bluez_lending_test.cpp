// The radio given away for a while by BluezCentral, and taken back.

#include "scanner/scanner.h"
#include "tests/integration/bluez_world.h"

using namespace wegslot;
using namespace std::chrono_literals;

namespace {

struct BluezLendingTest : BluezWorld {
    Handle loan;

    /// A radio that listens for a key, and gives itself away.
    void lent() {
        start();
        loan = central->lend();
        loop.settle();
        ASSERT_EQ(central->state(), CentralState::resetting);
    }
};

} // namespace

TEST_F(BluezLendingTest, WhileItIsLentNothingIsListenedForAndTheStateSaysWhy) {
    bluez.addObject(LookAlikeBluez::adapterPath, "org.bluez.AdvertisementMonitorManager1", {});
    start();
    ASSERT_EQ(calls("RegisterMonitor"), 1);
    const auto starts = calls("StartDiscovery");
    ASSERT_EQ(calls("StopDiscovery"), starts - 1);
    loan = central->lend();
    loop.settle();
    EXPECT_EQ(calls("StopDiscovery"), starts);
    EXPECT_EQ(calls("UnregisterMonitor"), 1);
    EXPECT_EQ(central->state(), CentralState::resetting);
    EXPECT_EQ(central->stateWords(), "Bluetooth koppelt een toestel");
    live(60s);
    EXPECT_EQ(calls("StartDiscovery"), starts);
}

TEST_F(BluezLendingTest, GivenBackItListensAgainByItself) {
    lent();
    const auto starts = calls("StartDiscovery");
    loan.reset();
    EXPECT_TRUE(isCalled("StartDiscovery", starts + 1));
    EXPECT_EQ(central->state(), CentralState::poweredOn);
    EXPECT_EQ(central->stateWords(), std::nullopt);
}

TEST_F(BluezLendingTest, TheScannerLogsWhyItHearsNothing) {
    delegate.reset();
    Scanner scanner(*central, loop.time, loop.time);
    ASSERT_TRUE(loop.runUntil([&] { return scanner.isPoweredOn(); }));
    loan = central->lend();
    loop.settle();
    ASSERT_FALSE(log.messages.empty());
    EXPECT_EQ(log.messages.back(), "Bluetooth-status: Bluetooth koppelt een toestel (1)");
    EXPECT_EQ(scanner.stateDescription(), "Bluetooth koppelt een toestel");
    loan.reset();
    loop.settle();
    EXPECT_EQ(log.messages.back(), "Bluetooth-status: Bluetooth staat aan (5)");
}

TEST_F(BluezLendingTest, GivenBackBeforeAnybodyWasToldItListensAgain) {
    start();
    const auto starts = calls("StartDiscovery");
    loan = central->lend();
    loan.reset();
    EXPECT_TRUE(isCalled("StartDiscovery", starts + 1));
    EXPECT_EQ(central->state(), CentralState::poweredOn);
}

TEST_F(BluezLendingTest, AfterSixMinutesItIsTakenBackWhoeverHasIt) {
    lent();
    loop.pass(6min - 1ns);
    EXPECT_EQ(central->state(), CentralState::resetting);
    loop.pass(1ns);
    EXPECT_EQ(central->state(), CentralState::poweredOn);
    loan.reset();
    loop.settle();
    EXPECT_EQ(central->state(), CentralState::poweredOn);
}

TEST_F(BluezLendingTest, TheEndOfAnEarlierLoanDoesNotEndTheLater) {
    lent();
    Handle later = central->lend();
    loan.reset();
    loop.settle();
    EXPECT_EQ(central->state(), CentralState::resetting);
    loop.pass(6min - 1ns);
    EXPECT_EQ(central->state(), CentralState::resetting);
    later.reset();
    loop.settle();
    EXPECT_EQ(central->state(), CentralState::poweredOn);
}

TEST_F(BluezLendingTest, ALinkOfAKeyStandsOverTheLoanAndIsFoundAgain) {
    start();
    connected();
    loan = central->lend();
    loop.settle();
    EXPECT_EQ(take(), Events{"lost"}); // to the core: nobody reads its strength meanwhile
    central->connect(id);              // as the core asks for it anew
    live(30s);
    loan.reset();
    loop.settle();
    loop.settle();
    EXPECT_EQ(take(), Events{"connected"});
    EXPECT_EQ(calls("Disconnect"), 0);
    EXPECT_EQ(calls("Connect"), 1);
    central->cancelConnection(id); // and it is still ours to end
    loop.settle();
    EXPECT_EQ(calls("Disconnect"), 1);
}

TEST_F(BluezLendingTest, ALinkThatEndedMeanwhileAndIsOpenedByAnotherIsNotOurs) {
    start();
    connected();
    loan = central->lend();
    loop.settle();
    linkGoes();
    loan.reset();
    loop.settle();
    linkComes();
    central->connect(id);
    loop.settle();
    central->cancelConnection(id);
    loop.settle();
    EXPECT_EQ(calls("Disconnect"), 0);
}

TEST_F(BluezLendingTest, AnAttemptUnderWayIsGivenUp) {
    start();
    central->connect(id);
    hear();
    ASSERT_TRUE(isCalled("Connect", 1));
    loan = central->lend();
    loop.settle();
    EXPECT_EQ(calls("Disconnect"), 1);
    hear();
    live(10s);
    EXPECT_EQ(calls("Connect"), 1);
}

TEST_F(BluezLendingTest, ADaemonThatIsStartedAnewMeanwhileIsNotListenedWith) {
    lent();
    const auto starts = calls("StartDiscovery");
    bluez.vanish();
    bluez.appear();
    bluez.addAdapter();
    loop.settle();
    loop.settle();
    live(10s);
    EXPECT_EQ(calls("StartDiscovery"), starts);
    EXPECT_EQ(central->state(), CentralState::resetting);
    loan.reset();
    EXPECT_TRUE(isCalled("StartDiscovery", starts + 1));
}

TEST_F(BluezLendingTest, ARadioThatIsSwitchedOffMeanwhileIsOff) {
    lent();
    bluez.setPowered(false);
    loop.settle();
    EXPECT_EQ(central->state(), CentralState::poweredOff);
    EXPECT_EQ(central->stateWords(), std::nullopt);
}

// Devices whose identity the user pasted, on a bluetoothd that a test plays: it knows nothing of
// them but addresses that come and go.

#include "identity/identities.h"
#include "scanner/scanner.h"
#include "tests/integration/bluez_world.h"
#include "tests/support/known_identities.h"

using namespace wegslot;
using namespace std::chrono_literals;

namespace {

/// Addresses that the phone's key explains: the first is the standard's, the others were computed
/// apart.
const std::array<std::string, 3> itsAddresses{"70:81:94:0D:FB:AA", "4A:00:00:1B:3B:ED",
                                              "4A:00:01:B0:BC:9A"};
const std::string fixedAddress = "00:00:5E:00:53:20";

struct BluezIdentityTest : testing::Test {
    CapturedLog log;
    BusLoop loop;
    LookAlikeBluez bluez{loop};
    dbus::Connection systemBus{loop.opener(), loop.attacher(), loop.time};
    LookAlikeLinks links{loop.time};
    Identities identities{ordinaryMemory()};
    BluezCentral central{systemBus, loop.time, loop.time, links, identities};
    Scanner scanner{central, loop.time, loop.time};
    const Uuid id = phonesIdentity().id();

    void SetUp() override {
        scanner.setDiscoveryActive(true);
        scanner.setIncludeOtherDevices(true);
        bluez.addAdapter();
        ASSERT_TRUE(loop.runUntil([&] { return bluez.isDiscovering(); }));
    }
    void hear(const std::string& address, std::int16_t rssi) {
        bluez.addDevice(address, rssi,
                        {{"AddressType", std::string("random")}, {"Name", std::string("Zij")}});
        loop.settle();
    }
    void listenTo(const Uuid& key) {
        scanner.setPassiveIDs({key});
        scanner.setWatchedIDs({key});
    }
};

} // namespace

TEST_F(BluezIdentityTest, EveryAddressThatAnIdentityExplainsFeedsItsOneKey) {
    identities.put(phonesIdentity());
    listenTo(id);
    std::int16_t rssi = -50;
    for (const std::string& address : itsAddresses) {
        hear(address, rssi--);
        EXPECT_EQ(scanner.lastSeen(id), loop.time.now()) << address;
        loop.pass(10ms);
    }
    EXPECT_EQ(scanner.smoothedRSSI(id), Dbm{-51});
    // All three at once, the older ones too.
    bluez.report(itsAddresses[0], -49);
    loop.settle();
    EXPECT_EQ(scanner.lastSeen(id), loop.time.now());
    scanner.refreshSnapshot();
    EXPECT_EQ(scanner.snapshot().get().size(), 1U);
    EXPECT_FALSE(scanner.changesAddress(id));
}

TEST_F(BluezIdentityTest, IsNeverConnectedNotEvenAsAKeyThatMayBe) {
    identities.put(phonesIdentity());
    scanner.setWatchedIDs({id});
    hear(itsAddresses[0], -50);
    loop.pass(60s);
    loop.settle();
    EXPECT_EQ(bluez.service.calls("Connect"), 0);
}

TEST_F(BluezIdentityTest, WhoWasHeardBeforeTheIdentityWasPastedIsKnownAtOnce) {
    hear(itsAddresses[0], -50);
    scanner.refreshSnapshot();
    EXPECT_TRUE(scanner.changesAddress(deviceId(itsAddresses[0], "random")));
    EXPECT_FALSE(scanner.lastSeen(id));
    identities.put(phonesIdentity());
    EXPECT_TRUE(scanner.lastSeen(id));
    EXPECT_FALSE(scanner.lastSeen(deviceId(itsAddresses[0], "random")));
}

TEST_F(BluezIdentityTest, ForgottenItIsAStrangerAgain) {
    identities.put(phonesIdentity());
    listenTo(id);
    hear(itsAddresses[0], -50);
    identities.remove(id);
    loop.pass(1s);
    bluez.report(itsAddresses[0], -50);
    loop.settle();
    EXPECT_LT(scanner.lastSeen(id), loop.time.now());
    EXPECT_EQ(scanner.lastSeen(deviceId(itsAddresses[0], "random")), loop.time.now());
    EXPECT_TRUE(scanner.changesAddress(deviceId(itsAddresses[0], "random")));
}

TEST_F(BluezIdentityTest, BondedWithItIsOneDeviceUnderItsFixedAddress) {
    identities.put(phonesIdentity());
    std::optional<Identities::Learned> learned;
    const auto telling =
        identities.lastLearned().onChange([&](const auto& told) { learned = told; });
    hear(itsAddresses[0], -50);
    bluez.changeDevice(itsAddresses[0],
                       {{"Address", fixedAddress}, {"AddressType", std::string("public")}});
    loop.settle();
    const Uuid fixed = deviceId(fixedAddress, "public");
    ASSERT_TRUE(learned);
    EXPECT_EQ(learned->from, id);
    EXPECT_EQ(learned->to, fixed);
    EXPECT_TRUE(scanner.lastSeen(fixed));
    EXPECT_FALSE(scanner.lastSeen(id));
    // What still comes from a private address is the same device.
    loop.pass(1s);
    hear(itsAddresses[1], -60);
    EXPECT_EQ(scanner.lastSeen(fixed), loop.time.now());
}

TEST_F(BluezIdentityTest, WithItsFixedAddressKnownTheBondIsTheSameKeyFromTheStart) {
    KnownIdentity both = phonesIdentity();
    both.fixedId = deviceId(fixedAddress, "public");
    identities.put(both);
    listenTo(both.id());
    hear(itsAddresses[0], -50);
    EXPECT_TRUE(scanner.lastSeen(both.id()));
    loop.pass(1s);
    bluez.addDevice(fixedAddress, std::int16_t{-55});
    loop.settle();
    EXPECT_EQ(scanner.lastSeen(both.id()), loop.time.now());
}

#include "ui/nearby_group.h"

#include "tests/support/world.h"

using namespace wegslot;
using namespace wegslot::panel;
using namespace std::chrono_literals;

namespace {

using Texts = std::vector<std::string>;

struct NearbyGroupTest : testing::Test {
    static constexpr TimePoint now = World::start;

    std::vector<SeenDevice> devices;
    std::set<Uuid> changing;
    NearbyFacts facts{.devices = {},
                      .keys = {},
                      .now = now,
                      .changesAddress = [this](const Uuid& id) { return changing.contains(id); },
                      .isOpen = true,
                      .isNamelessOpen = true};

    SeenDevice& add(unsigned number, std::optional<std::string> name = {}) {
        devices.push_back({.id = numbered(number),
                           .lastSeen = now,
                           .continuityType = std::uint8_t{0x10},
                           .rssi = Dbm{-60},
                           .name = std::move(name),
                           .model = {}});
        return devices.back();
    }

    SeenDevice& addOther(unsigned number, std::string name) {
        SeenDevice& device = add(number, std::move(name));
        device.continuityType.reset();
        return device;
    }

    [[nodiscard]] NearbyGroup group() {
        facts.devices = devices;
        return nearbyGroup(facts);
    }

    /// The group as it is drawn under a pointer: as it was drawn before, brought up to date.
    NearbyGroup hold() {
        NearbyGroup group = this->group();
        facts.held = placesOf(group);
        return group;
    }

    [[nodiscard]] NearbyRow firstNamed() { return *group().named.places.at(0).row; }

    /// The names of the rows, "-" for an empty place.
    static Texts names(const NearbyList& list) {
        Texts names;
        for (const NearbyPlace& place : list.places)
            names.push_back(place.row ? place.row->name : "-");
        return names;
    }

    /// The last byte of each id, in order.
    static std::vector<int> numbers(const NearbyList& list) {
        std::vector<int> numbers;
        for (const NearbyPlace& place : list.places)
            numbers.push_back(place.id.bytes[15]);
        return numbers;
    }
};

} // namespace

TEST_F(NearbyGroupTest, HasItsTexts) {
    facts.showOthers = true;
    add(1);
    const NearbyGroup group = this->group();
    EXPECT_EQ(group.title, "Apparaten in de buurt");
    EXPECT_EQ(group.explanation, "Je eigen apparaten staan hier met naam. Staat je iPhone er niet "
                                 "tussen? Ontgrendel hem even.");
    EXPECT_EQ(group.named, (NearbyList{{}, "Zoeken…"}));
    EXPECT_EQ(group.nameless->label, "1 andere apparaten zonder naam");
    EXPECT_EQ(group.showOthers,
              (Toggle{Choice::showOtherDevices, "Toon ook andere Bluetooth-apparaten", "", true}));
    EXPECT_EQ(group.others->explanation,
              "Bijvoorbeeld een bandje, beacon of headset. Werkt alleen als het apparaat blijft "
              "uitzenden met een vast adres. Wegslot luistert alleen en maakt geen verbinding. "
              "Test het even door weg te lopen.");
    EXPECT_EQ(group.others->list, (NearbyList{{}, "Zoeken…"}));
}

TEST_F(NearbyGroupTest, ARowShowsTheDevice) {
    add(1, "Mijn iPhone").model = "iPhone15,2";
    EXPECT_EQ(firstNamed(), (NearbyRow{.symbol = "iphone",
                                       .symbolColor = brand::lila,
                                       .name = "Mijn iPhone",
                                       .detail = "iPhone15,2",
                                       .signal = "-60 dBm",
                                       .choose = {"", "Kies"}}));
}

TEST_F(NearbyGroupTest, WithoutAModelTheMakerIsSaid) {
    facts.showOthers = true;
    add(1, "Polsband");
    addOther(2, "Tag");
    EXPECT_EQ(firstNamed().detail, "Model onbekend");
    EXPECT_EQ(firstNamed().symbol, "dot.radiowaves.left.and.right");
    EXPECT_EQ(group().others->list.places.at(0).row->detail, "Ander merk");
}

TEST_F(NearbyGroupTest, ASignalIsCutOffTowardsZeroAndMayBeMissing) {
    add(1, "A").rssi = Dbm{-60.9};
    EXPECT_EQ(firstNamed().signal, "-60 dBm");
    devices[0].rssi.reset();
    EXPECT_EQ(firstNamed().signal, "");
}

TEST_F(NearbyGroupTest, ANameCannotTakeASecondLine) {
    add(1, "Tag\nKies").model = "A\u2028B";
    EXPECT_EQ(firstNamed().name, "Tag\uFFFDKies");
    EXPECT_EQ(firstNamed().detail, "A\uFFFDB");
}

TEST_F(NearbyGroupTest, AnAddressThatChangesIsNoKey) {
    add(1, "A");
    add(2, "B");
    changing = {numbered(2)};
    EXPECT_EQ(firstNamed().choose, (Button{"", "Kies", "", true}));
    EXPECT_EQ(firstNamed().obstacle, "");
    const auto second = [this] { return *group().named.places.at(1).row; };
    EXPECT_EQ(
        second().choose,
        (Button{"", "Koppel…", "Koppel het apparaat met deze computer, stap voor stap", true}));
    EXPECT_EQ(second().obstacle,
              "Dit apparaat wisselt van adres. Koppel het eerst met deze computer.");
    changing.clear();
    EXPECT_EQ(second().choose, (Button{"", "Kies", "", true}));
}

TEST_F(NearbyGroupTest, ADeviceSilentFor30SecondsIsNotListed) {
    add(1, "29").lastSeen = now - 30s + 1ns;
    add(2, "30").lastSeen = now - 30s;
    add(3, "31").lastSeen = now - 30s - 1ns;
    EXPECT_EQ(names(group().named), (Texts{"29"}));
}

TEST_F(NearbyGroupTest, AKeyIsNeverListed) {
    facts.showOthers = true;
    facts.keys = {numbered(1), numbered(2), numbered(3)};
    add(1, "Mijn iPhone");
    add(2);
    addOther(3, "Tag");
    const NearbyGroup group = this->group();
    EXPECT_EQ(names(group.named), Texts{});
    EXPECT_FALSE(group.nameless);
    EXPECT_EQ(names(group.others->list), Texts{});
}

TEST_F(NearbyGroupTest, AGenericNameIsNone) {
    unsigned number = 0;
    for (const char* const name : {"iPhone", "Apple Watch", "iPad", "Mac", "MacBook", "MacBook Pro",
                                   "MacBook Air", "iMac", "HomePod", "Apple TV"})
        add(++number, name);
    for (const char* const name : {"Mijn iPhone", "iphone", "iPhone ", "iPod"})
        add(++number, name);
    const NearbyGroup group = this->group();
    EXPECT_EQ(group.nameless->label, "10 andere apparaten zonder naam");
    EXPECT_EQ(names(group.nameless->list),
              (Texts{"Apple TV", "Apple Watch", "HomePod", "Mac", "MacBook", "MacBook Air",
                     "MacBook Pro", "iMac", "iPad", "iPhone"}));
    EXPECT_EQ(names(group.named), (Texts{"Mijn iPhone", "iPhone ", "iPod", "iphone"}));
}

TEST_F(NearbyGroupTest, AModelIsNoName) {
    add(1).model = "Watch6,1";
    EXPECT_EQ(names(group().nameless->list), (Texts{"Apple Watch"}));
}

TEST_F(NearbyGroupTest, TheNamelessAreOnlyThereWhenThereAreAnyAndMayBeFolded) {
    add(1, "Mijn iPhone");
    EXPECT_FALSE(group().nameless);
    add(2);
    add(3);
    facts.isNamelessOpen = false;
    EXPECT_EQ(group().nameless,
              (NearbyGroup::Nameless{"2 andere apparaten zonder naam", false, {}}));
    facts.isNamelessOpen = true;
    EXPECT_EQ(names(group().nameless->list), (Texts{"Apple-apparaat", "Apple-apparaat"}));
}

TEST_F(NearbyGroupTest, IsSortedByNameThenModelThenId) {
    add(0xB2, "B").model = "1";
    add(0xB1, "B").model = "2";
    add(0x0A, "B");
    add(0xA0, "B");
    add(0x9F, "B");
    add(0xFF, "A").model = "9";
    add(0x01, "é");
    add(0x02, "a");
    EXPECT_EQ(numbers(group().named),
              (std::vector<int>{0xFF, 0x0A, 0x9F, 0xA0, 0xB2, 0xB1, 0x02, 0x01}));
}

TEST_F(NearbyGroupTest, TheOrderDoesNotFollowTheSignal) {
    add(1, "A").rssi = Dbm{-90};
    add(2, "B").rssi = Dbm{-40};
    EXPECT_EQ(names(group().named), (Texts{"A", "B"}));
}

TEST_F(NearbyGroupTest, OtherMakersAreShownWhenWanted) {
    addOther(1, "Tag");
    EXPECT_FALSE(group().others);
    facts.showOthers = true;
    EXPECT_EQ(names(group().others->list), (Texts{"Tag"}));
    EXPECT_EQ(group().others->list.placeholder, "");
    EXPECT_EQ(names(group().named), Texts{});
}

TEST_F(NearbyGroupTest, OfOtherMakersTheFirst25AreShown) {
    facts.showOthers = true;
    for (unsigned number = 30; number > 6; --number)
        addOther(number, "Tag");
    EXPECT_EQ(group().others->list.places.size(), 24U);
    addOther(6, "Tag");
    EXPECT_EQ(group().others->list.places.size(), 25U);
    for (unsigned number = 5; number > 0; --number)
        addOther(number, "Tag");
    ASSERT_EQ(group().others->list.places.size(), 25U);
    EXPECT_EQ(numbers(group().others->list).front(), 1);
    EXPECT_EQ(numbers(group().others->list).back(), 25);
}

TEST_F(NearbyGroupTest, IsEmptyWhileItIsFolded) {
    facts.isOpen = false;
    facts.showOthers = true;
    add(1, "Mijn iPhone");
    add(2);
    addOther(3, "Tag");
    const NearbyGroup group = this->group();
    EXPECT_EQ(group.title, "Apparaten in de buurt");
    EXPECT_FALSE(group.isOpen);
    EXPECT_EQ(group.named, NearbyList{});
    EXPECT_FALSE(group.nameless);
    EXPECT_FALSE(group.others);
}

TEST_F(NearbyGroupTest, UnderAPointerRowsKeepTheirPlaces) {
    add(1, "C");
    add(2, "E");
    EXPECT_EQ(names(hold().named), (Texts{"C", "E"}));
    devices[1].name = "A";
    add(3, "B");
    EXPECT_EQ(names(hold().named), (Texts{"C", "A", "B"}));
    add(4, "0");
    EXPECT_EQ(names(hold().named), (Texts{"C", "A", "B", "0"}));
    facts.held.reset();
    EXPECT_EQ(names(group().named), (Texts{"0", "A", "B", "C"}));
}

TEST_F(NearbyGroupTest, UnderAPointerWhoGoesLeavesAPlaceAndMayComeBackToIt) {
    add(1, "A").lastSeen = now - 30s + 1ns;
    add(2, "B");
    hold();
    facts.now = now + 1ns;
    EXPECT_EQ(names(hold().named), (Texts{"-", "B"}));
    devices[0].lastSeen = now;
    EXPECT_EQ(names(hold().named), (Texts{"A", "B"}));
    facts.keys = {numbered(1)};
    EXPECT_EQ(names(hold().named), (Texts{"-", "B"}));
    facts.held.reset();
    EXPECT_EQ(names(group().named), (Texts{"B"}));
}

TEST_F(NearbyGroupTest, UnderAPointerWhoGetsANameMovesBehindTheNamed) {
    add(1, "A");
    add(2);
    add(3);
    hold();
    devices[1].name = "0";
    const NearbyGroup held = hold();
    EXPECT_EQ(names(held.named), (Texts{"A", "0"}));
    EXPECT_EQ(names(held.nameless->list), (Texts{"-", "Apple-apparaat"}));
}

TEST_F(NearbyGroupTest, UnderAPointerOthersThatComeDoNotPushOutTheShown) {
    facts.showOthers = true;
    for (unsigned number = 1; number <= 25; ++number)
        addOther(number, "M");
    hold();
    addOther(26, "A");
    const NearbyGroup full = hold();
    EXPECT_EQ(full.others->list.places.size(), 25U);
    EXPECT_EQ(numbers(full.others->list).back(), 25);
    facts.keys = {numbered(7)};
    const NearbyGroup held = hold();
    EXPECT_EQ(held.others->list.places.size(), 26U);
    EXPECT_FALSE(held.others->list.places.at(6).row);
    EXPECT_EQ(names(held.others->list).back(), "A");
}

TEST_F(NearbyGroupTest, UnderAPointerAListThatRunsEmptySaysSo) {
    add(1, "A");
    hold();
    facts.keys = {numbered(1)};
    EXPECT_EQ(hold().named, (NearbyList{{}, "Zoeken…"}));
}

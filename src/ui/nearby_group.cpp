#include "ui/nearby_group.h"

#include "base/text.h"
#include "base/translation.h"
#include "scanner/device_names.h"
#include "ui/held_order.h"
#include "ui/whole_number.h"

#include <algorithm>
#include <array>
#include <limits>
#include <string_view>
#include <tuple>
#include <unordered_map>
#include <utility>

namespace wegslot::panel {
namespace {

using Devices = std::vector<const SeenDevice*>;

constexpr std::size_t unlimited = std::numeric_limits<std::size_t>::max();

// What a device is called before it has been given a name: many in a room are.
bool isGeneric(std::string_view name) {
    constexpr std::array<std::string_view, 10> names{
        "iPhone",      "Apple Watch", "iPad", "Mac",     "MacBook",
        "MacBook Pro", "MacBook Air", "iMac", "HomePod", "Apple TV"};
    return std::ranges::find(names, name) != names.end();
}

struct Candidates {
    Devices named;
    Devices nameless;
    Devices others;
};

Candidates candidatesOf(const NearbyFacts& facts) {
    using Place = std::tuple<std::string, std::string, Uuid>;
    using Entry = std::pair<Place, const SeenDevice*>;
    std::vector<Entry> sorted;
    for (const SeenDevice& device : facts.devices)
        if (!facts.keys.contains(device.id) && facts.now - device.lastSeen < nearbyAge)
            sorted.push_back(
                {{device.displayName().translated(), device.model.value_or(""), device.id},
                 &device});
    std::ranges::stable_sort(sorted, {}, &Entry::first); // an id sorts as its text does

    Candidates candidates;
    for (const auto& [place, device] : sorted) {
        if (!device->isApple())
            candidates.others.push_back(device);
        else if (device->name && !isGeneric(*device->name))
            candidates.named.push_back(device);
        else
            candidates.nameless.push_back(device);
    }
    return candidates;
}

std::string detailOf(const SeenDevice& device) {
    if (device.model) return printable(*device.model);
    return device.isApple() ? translated("Model onbekend") : translated("Ander merk");
}

std::string obstacleOf(const SeenDevice& device, const NearbyFacts& facts) {
    if (!facts.changesAddress(device.id)) return {};
    return translated("Dit apparaat wisselt van adres. Koppel het eerst met deze computer.");
}

Button chooseButton(bool hasObstacle) {
    if (!hasObstacle) return {.symbol = {}, .text = translated("Kies")};
    return {.symbol = {},
            .text = translated("Koppel…"),
            .tooltip = translated("Koppel het apparaat met deze computer, stap voor stap")};
}

NearbyRow rowOf(const SeenDevice& device, const NearbyFacts& facts) {
    const std::string obstacle = obstacleOf(device, facts);
    return {.symbol = DeviceNames::symbol(device.name, device.model),
            .name = printable(device.displayName().translated()),
            .detail = detailOf(device),
            .signal = device.rssi ? wholeNumber(device.rssi->value) + " dBm" : "",
            .obstacle = obstacle,
            .choose = chooseButton(!obstacle.empty())};
}

NearbyList listOf(const Devices& devices, const NearbyFacts& facts,
                  std::vector<Uuid> NearbyPlaces::*held, std::size_t limit = unlimited) {
    if (devices.empty()) return {.places = {}, .placeholder = translated("Zoeken…")};

    std::unordered_map<Uuid, const SeenDevice*> byId;
    std::vector<Uuid> order;
    for (const SeenDevice* device : devices) {
        byId.emplace(device->id, device);
        order.push_back(device->id);
    }
    if (facts.held) order = heldOrder(*facts.held.*held, order);

    NearbyList list;
    std::size_t rows = 0;
    for (const Uuid& id : order) {
        const auto found = byId.find(id);
        if (found == byId.end()) {
            list.places.push_back({.id = id, .row = std::nullopt});
            continue;
        }
        if (++rows > limit) break;
        list.places.push_back({.id = id, .row = rowOf(*found->second, facts)});
    }
    return list;
}

std::vector<Uuid> idsOf(const NearbyList& list) {
    std::vector<Uuid> ids;
    for (const NearbyPlace& place : list.places)
        ids.push_back(place.id);
    return ids;
}

} // namespace

NearbyGroup nearbyGroup(const NearbyFacts& facts) {
    NearbyGroup group{.title = translated("Apparaten in de buurt"),
                      .isOpen = facts.isOpen,
                      .explanation =
                          translated("Je eigen apparaten staan hier met naam. Staat je iPhone er "
                                     "niet tussen? Ontgrendel hem even."),
                      .showOthers = {.choice = Choice::showOtherDevices,
                                     .text = translated("Toon ook andere Bluetooth-apparaten"),
                                     .tooltip = {},
                                     .isOn = facts.showOthers}};
    if (!facts.isOpen) return group;

    const Candidates candidates = candidatesOf(facts);
    group.named = listOf(candidates.named, facts, &NearbyPlaces::named);
    if (!candidates.nameless.empty()) {
        group.nameless = {.label =
                              counted("%1 andere apparaten zonder naam",
                                      "%1 andere apparaten zonder naam", candidates.nameless.size(),
                                      {std::to_string(candidates.nameless.size())})
                                  .translated(),
                          .isOpen = facts.isNamelessOpen};
        if (facts.isNamelessOpen)
            group.nameless->list = listOf(candidates.nameless, facts, &NearbyPlaces::nameless);
    }
    if (facts.showOthers)
        group.others = {
            .explanation = translated("Bijvoorbeeld een bandje, beacon of headset. Werkt alleen "
                                      "als het apparaat blijft uitzenden met een vast adres. "
                                      "Wegslot luistert alleen en maakt geen verbinding. Test het "
                                      "even door weg te lopen."),
            .list = listOf(candidates.others, facts, &NearbyPlaces::others, mostOthers)};
    return group;
}

NearbyPlaces placesOf(const NearbyGroup& group) {
    return {.named = idsOf(group.named),
            .nameless = group.nameless ? idsOf(group.nameless->list) : std::vector<Uuid>{},
            .others = group.others ? idsOf(group.others->list) : std::vector<Uuid>{}};
}

} // namespace wegslot::panel

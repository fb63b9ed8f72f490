// What the radio reports in a life: answers to what the core asked, late, wrong or never, and
// reports that nobody asked for.
#include "tests/properties/life.h"

#include "scanner/model_identifier.h"
#include "tests/support/world.h"

#include <array>
#include <string_view>

namespace wegslot {
namespace {

using namespace std::chrono_literals;

constexpr GattUuid batteryService{0x180F};
constexpr GattUuid nameCharacteristic{0x2A00};

// After so long a lost key is connected again.
constexpr Nanoseconds renewal = 2s;

} // namespace

void Life::expectAnswer(std::string_view operation, const Uuid& id) {
    if (ended_) return;
    const Nanoseconds now = stage_.elapsed();
    if (operation == "connect") {
        // Sometimes never: a connection is waited for without end.
        if (dice_.chance(80))
            agenda_.emplace(now + dice_.between(20, dice_.chance(10) ? 9000 : 1500) * 1ms,
                            Answer{"connect", id});
        return;
    }
    if (operation == "cancel" || operation == "scan") return;
    const int chance = operation == "readRSSI" ? 70 : 90;
    if (!dice_.chance(chance)) return;
    std::string_view lasting; // the listener's text lives for the call only
    for (const std::string_view known :
         {"readRSSI", "discoverServices", "discoverCharacteristics", "readValue"})
        if (known == operation) lasting = known;
    agenda_.emplace(now + dice_.between(10, 900) * 1ms, Answer{lasting, id});
}

void Life::answer(const Answer& answer) {
    tell("due: " + std::string(answer.operation) + " " + std::to_string(answer.id.bytes[15]));
    if (answer.operation == "radioOn")
        return setRadio(CentralState::poweredOn, CentralAuthorization::allowedAlways);
    if (answer.operation == "screenLocks") return screenLocks();
    if (answer.operation == "screenUnlocks") return screenUnlocks();
    if (answer.operation == "enabled" && !choices_.enabled) return enabledAssigned();
    if (answer.operation == "connect") return answerConnect(answer.id);
    if (answer.operation == "discoverServices") return answerServices(answer.id);
    if (answer.operation == "discoverCharacteristics") return answerCharacteristics(answer.id);
    if (answer.operation == "readValue") return answerValue(answer.id);
    if (answer.operation == "renewed") return expectRenewed(answer.id);
    if (answer.operation == "disconnect")
        return reportLoss(answer.id, [&] { stage_.central.disconnected(answer.id, "weg"); });
    if (answer.operation != "readRSSI") return;
    const Device& device = deviceOf(answer.id);
    std::optional<int> rssi = strengthOf(device);
    if (dice_.chance(10)) rssi = dice_.pick<std::optional<int>>({std::nullopt, 127, 0, -127});
    radio_.signalRead(answer.id, rssi, stage_.time.now());
    undisturbed([&] { stage_.central.rssiRead(answer.id, rssi); });
}

void Life::answerConnect(const Uuid& id) {
    const bool awaited = stage_.central.peripheralState(id) == PeripheralState::connecting;
    if (!awaited && !dice_.chance(20)) return;
    if (dice_.chance(25)) return reportLoss(id, [&] { stage_.central.connectFailed(id); });
    undisturbed([&] { stage_.central.connected(id); });
    if (dice_.chance(20))
        agenda_.emplace(stage_.elapsed() + dice_.between(100, 15000) * 1ms,
                        Answer{"disconnect", id});
}

void Life::answerServices(const Uuid& id) {
    const bool found = dice_.chance(80);
    if (!found) invariants_.identificationEnds(id, false);
    const std::array services{batteryService,
                              found ? ModelIdentifier::deviceInfoService : batteryService};
    undisturbed([&] { stage_.central.services(id, services); });
}

void Life::answerCharacteristics(const Uuid& id) {
    const bool found = dice_.chance(80);
    if (!found) invariants_.identificationEnds(id, false);
    const std::array characteristics{
        nameCharacteristic, found ? ModelIdentifier::modelCharacteristic : nameCharacteristic};
    undisturbed([&] {
        stage_.central.characteristics(id, ModelIdentifier::deviceInfoService, characteristics);
    });
}

void Life::answerValue(const Uuid& id) {
    struct Reply {
        std::optional<std::string_view> value;
        bool isModel;
    };

    using namespace std::string_view_literals;
    const auto reply = dice_.pick<Reply>({{"iPhone14,2"sv, true},
                                          {"Watch6,1\n\0"sv, true},
                                          {" iPad7,1 "sv, true},
                                          {" \n\0"sv, false},
                                          {"\xFF\xFE"sv, false},
                                          {std::nullopt, false}});
    const bool asModel = dice_.chance(90);
    invariants_.identificationEnds(id, reply.isModel && asModel);
    std::optional<std::string> name;
    if (dice_.chance(20)) name = dice_.pick({"Telefoon", ""});
    if (name) radio_.renamed(id, *name);
    undisturbed([&] {
        stage_.central.value(id,
                             asModel ? ModelIdentifier::modelCharacteristic : nameCharacteristic,
                             reply.value, name);
    });
}

void Life::reportLoss(const Uuid& id, const std::function<void()>& report) {
    invariants_.identificationEnds(id, false);
    undisturbed(report);
    if (!isForsaken(id)) return;
    lostAt_[id] = stage_.elapsed();
    agenda_.emplace(stage_.elapsed() + renewal, Answer{"renewed", id});
}

// A key that is to be connected, that the radio knows and that nobody connects.
bool Life::isForsaken(const Uuid& id) {
    for (const KeyDevice& key : choices_.keys)
        if (key.id == id)
            return key.isApple != false && !stage_.central.retrieve({id}).empty() &&
                   stage_.central.peripheralState(id) == PeripheralState::disconnected;
    return false;
}

void Life::expectKeysConnected() {
    if (radioState_ != CentralState::poweredOn) return;
    for (const KeyDevice& key : choices_.keys)
        if (isForsaken(key.id)) fault("nobody connects key " + std::to_string(key.id.bytes[15]));
}

void Life::expectRenewed(const Uuid& id) {
    const bool lostAgain = lostAt_[id] + renewal != stage_.elapsed();
    if (lostAgain || radioState_ != CentralState::poweredOn || !isForsaken(id)) return;
    fault("nobody connects the lost key " + std::to_string(id.bytes[15]));
}

void Life::unaskedReport() {
    const Uuid id = someDevice().id;
    switch (dice_.between(1, 6)) {
    case 1:
        return undisturbed([&] { stage_.central.connected(id); });
    case 2:
        return reportLoss(id, [&] { stage_.central.connectFailed(id); });
    case 3:
        return reportLoss(id, [&] { stage_.central.disconnected(id); });
    case 4:
        return answerServices(id);
    case 5:
        return answerCharacteristics(id);
    default:
        return answerValue(id);
    }
}

void Life::identityLearned() {
    const Uuid from = someDevice().id;
    const Uuid to = someDevice().id;
    if (from == to || radio_.watched.contains(from)) return;
    tell("  device " + std::to_string(from.bytes[15]) + " is " + std::to_string(to.bytes[15]));
    invariants_.identityMoves(from, to);
    radio_.identified(from, to);
    undisturbed([&] { stage_.central.identify(from, to); });
}

Life::Device& Life::someDevice() { return devices_[dice_.below(devices_.size())]; }

Life::Device& Life::deviceOf(const Uuid& id) {
    for (Device& device : devices_)
        if (device.id == id) return device;
    return devices_.front();
}

} // namespace wegslot

#include "coupling/bluez/stay.h"

#include "base/system_error.h"
#include "coupling/bluez/answers.h"
#include "coupling/bluez/obstacle.h"
#include "dbus/caller.h"
#include "log/log.h"

#include <utility>

namespace wegslot::coupling {
namespace {

constexpr auto agents = "org.bluez.AgentManager1";
constexpr auto applications = "org.bluez.GattManager1";
constexpr auto advertisements = "org.bluez.LEAdvertisingManager1";

} // namespace

Stay::Stay(const StayWorld& world, std::string name, Confirmation confirmation,
           std::function<void()> over)
    : world_(world),
      name_(std::move(name)),
      confirmation_(confirmation),
      over_(std::move(over)),
      connection_(world.open, world.attach, world.scheduler, dbus::Connection::Complaints::none) {
    limit_ = world_.scheduler.after(patience, [this] { fail({Obstacle::noRadio}); });
    connected_ = connection_.bus().onChange([this](dbus::Bus* bus) { busChanged(bus); });
}

Stay::~Stay() {
    // Cut short: all but this goes with our connection. The note stays, for nobody waits for the
    // answer.
    if (bus_ != nullptr && wasPairable_ == false) bus_->send(pairableCall(adapter_, false));
}

void Stay::busChanged(dbus::Bus* bus) {
    bus_ = bus;
    if (bus != nullptr) {
        ownership_ = bus->followOwner(
            "org.bluez", [this](const std::optional<std::string>& owner) { owner_ = owner; });
        bluez::WatchListener& listener = *this;
        watch_ = std::make_unique<bluez::ObjectWatch>(*bus, world_.scheduler, listener, nobody_);
        visits_ = std::make_unique<Visits>(watch_->objects(), world_.links, world_.tell);
        return;
    }
    // What stands on this bus ends before it does.
    for (Subscription* const kept : {&step_, &bond_, &ownership_})
        kept->reset();
    farewells_.clear();
    removals_.clear();
    agent_.reset();
    service_.reset();
    advertisement_.reset();
    visits_.reset();
    watch_.reset();
    stage_ == Stage::leaving ? finish() : fail({Obstacle::noRadio});
}

// --- Before it appears --------------------------------------------------------------------------

void Stay::surroundingsChanged() {
    switch (stage_) {
    case Stage::looking:
        turn_ = world_.scheduler.after(Nanoseconds{0}, [this] { look(); });
        return;
    case Stage::preparing:
    case Stage::appearing:
        if (const auto obstacle = obstacleNow()) fail({*obstacle});
        return;
    case Stage::leaving:
        // Of a daemon that went nothing is left to be put back, and nobody answers.
        if (watch_->daemon() != bluez::Daemon::ready) finish();
        return;
    }
}

void Stay::look() {
    const bluez::Daemon daemon = watch_->daemon();
    if (daemon == bluez::Daemon::unknown || daemon == bluez::Daemon::loading) return;
    bluez::Surroundings surroundings{.daemon = daemon, .adapter = std::nullopt};
    adapter_ = chosenAdapter(watch_->objects()).value_or("");
    if (const bluez::Adapter* const found = adapter()) surroundings.adapter = *found;
    if (const auto found = obstacle(surroundings)) return fail({*found});
    if (!surroundings.adapter->discovering || isScanOthers_) return prepare();
    if (silence_) return;
    silence_ = world_.scheduler.after(scanPatience, [this] {
        isScanOthers_ = true;
        look();
    });
}

const bluez::Adapter* Stay::adapter() const {
    const auto& adapters = watch_->objects().adapters();
    const auto found = adapters.find(adapter_);
    return found == adapters.end() ? nullptr : &found->second;
}

std::optional<Obstacle> Stay::obstacleNow() const {
    bluez::Surroundings surroundings{.daemon = watch_->daemon(), .adapter = std::nullopt};
    if (const bluez::Adapter* const found = adapter()) {
        surroundings.adapter = *found;
        // What may be taken is taken by us, and who has come pairs with the half that it found.
        if (found->advertisingRoom) surroundings.adapter->advertisingRoom = 1;
        if (visits_->visitor() != nullptr) surroundings.adapter->discoverable = false;
    }
    return obstacle(surroundings);
}

dbus::Call Stay::callOf(const std::string& path, const std::string& interface,
                        const std::string& member, std::vector<dbus::Argument> arguments) const {
    return {.destination = "org.bluez",
            .path = path,
            .interface = interface,
            .member = member,
            .arguments = std::move(arguments)};
}

void Stay::prepare() {
    stage_ = Stage::preparing;
    limit_.reset();
    silence_.reset();
    address_ = adapter()->address;
    // An agent alone makes BlueZ let others bond, so this is what it was before.
    wasPairable_ = adapter()->pairable && !world_.note.adapters().contains(address_);
    if (const int error = *wasPairable_ ? 0 : world_.note.add(address_); error != 0) {
        wasPairable_.reset();
        return fail({Obstacle::failed, systemError(error).builtIn()});
    }
    const IsDaemon asked = [this](const dbus::Message& call) { return isDaemon(call); };
    AgentListener& listener = *this;
    agent_ = std::make_unique<PairingAgent>(*bus_, asked, confirmation_, listener);
    service_ = std::make_unique<HeartRateService>(*bus_, asked);
    advertisement_ =
        std::make_unique<PeripheralAdvertisement>(*bus_, asked, name_, [this] { released(); });
    const dbus::ObjectPath agent{PairingAgent::path};
    const dbus::ObjectPath service{HeartRateService::path};
    const dbus::ObjectPath advertisement{PeripheralAdvertisement::path};
    const std::string manager = "/org/bluez";
    steps_ = {
        {callOf(adapter_, advertisements, "RegisterAdvertisement",
                {advertisement, dbus::Dictionary{}}),
         [this] { visits_->prepare(adapter_); }},
        {callOf(adapter_, applications, "RegisterApplication", {service, dbus::Dictionary{}})},
        {pairableCall(adapter_, true)},
        {callOf(manager, agents, "RequestDefaultAgent", {agent})},
        {callOf(manager, agents, "RegisterAgent", {agent, agent_->capability()})},
    };
    next();
}

void Stay::next() {
    if (steps_.empty()) return appear();
    const Step step = std::move(steps_.back());
    steps_.pop_back();
    if (step.before) step.before();
    step_ = bus_->call(step.call, [this](const dbus::Message& answer) {
        answer.error() ? fail(troubleOf(answer)) : next();
    });
}

void Stay::appear() {
    stage_ = Stage::appearing;
    world_.tell(&CouplingListener::appears);
    if (stage_ == Stage::appearing) visits_->open();
}

void Stay::fail(const Trouble& trouble) {
    if (stage_ == Stage::leaving) return;
    if (visits_) visits_->close();
    world_.tell(&CouplingListener::cannotAppear, trouble);
    leave();
}

// --- While it appears ---------------------------------------------------------------------------

void Stay::deviceReported(std::string_view path, const bluez::DeviceNews&) {
    visits_->changed(path);
    for (const auto& removal : removals_)
        removal->changed();
    if (isReleased_) released();
}

void Stay::deviceRemoved(std::string_view path, const Uuid&) {
    visits_->removed(path);
    for (const auto& removal : removals_)
        removal->changed();
    if (isReleased_) released();
}

void Stay::released() {
    // Who has come does not need the advertisement any more.
    isReleased_ = true;
    if (stage_ == Stage::appearing && visits_->visitor() == nullptr)
        fail({Obstacle::failed, "Release"});
}

void Stay::codeAsked(std::uint32_t code) { world_.tell(&CouplingListener::codeCame, code); }

void Stay::codeDropped() {
    if (stage_ == Stage::appearing) world_.tell(&CouplingListener::codeWithdrawn);
}

void Stay::turnedDown(const std::string& path) {
    if (!std::exchange(toldTurnedDown_, true))
        Log::write("Koppelen: een ander toestel wilde koppelen en is geweigerd: " + path);
}

bool Stay::isDaemon(const dbus::Message& call) {
    if (owner_ && call.sender() == *owner_) return true;
    if (!std::exchange(toldStranger_, true))
        Log::write("Koppelen: alleen bluetoothd mag hier iets vragen, geweigerd: " +
                   dbus::callerOf(*bus_, call));
    return false;
}

void Stay::askForBond() {
    const std::string* const visitor = visits_ ? visits_->visitor() : nullptr;
    if (stage_ != Stage::appearing || visitor == nullptr || visits_->isBonded()) return;
    dbus::Call pair = callOf(*visitor, "org.bluez.Device1", "Pair", {});
    pair.timeout = bonding;
    bond_ = bus_->call(pair, [this, path = *visitor](const dbus::Message& answer) {
        // BlueZ goes on although nobody waits any more.
        const auto refusal = refusalOf(answer.error());
        if (refusal == Refusal::noAnswer)
            bus_->send(callOf(path, "org.bluez.Device1", "CancelPairing", {}));
        if (stage_ != Stage::appearing || !refusal || visits_->isBonded()) return;
        world_.tell(&CouplingListener::refused, *refusal, answer.error().value_or(""));
    });
}

void Stay::answer(bool same) {
    if (agent_) agent_->answer(same);
}

void Stay::forget() {
    bond_.reset();
    answer(false);
    const auto path = visits_ ? visits_->forget() : std::nullopt;
    if (!path) return;
    ++awaited_;
    removals_.push_back(std::make_unique<Removal>(*bus_, world_.scheduler, watch_->objects(),
                                                  adapter_, *path, [this] { arrived(); }));
}

std::optional<dbus::Call> Stay::removalOfVisitor() const {
    if (!visits_ || !visits_->isBonded() || visits_->visitor() == nullptr) return std::nullopt;
    return callOf(adapter_, "org.bluez.Adapter1", "RemoveDevice",
                  {dbus::ObjectPath{*visits_->visitor()}});
}

// --- The end of it ------------------------------------------------------------------------------

void Stay::leave() {
    if (stage_ == Stage::leaving) return;
    stage_ = Stage::leaving;
    for (Handle* const kept : {&limit_, &silence_, &turn_, &step_})
        kept->reset();
    steps_.clear();
    if (visits_) visits_->close();
    answer(false);
    const bool isServed = watch_ && watch_->daemon() == bluez::Daemon::ready;
    if (!isServed || !wasPairable_) return finish();
    const std::string* const visitor = visits_->visitor();
    if (bond_ && visitor != nullptr && !visits_->isBonded())
        putBack(callOf(*visitor, "org.bluez.Device1", "CancelPairing", {}));
    bond_.reset();
    putBack(
        callOf("/org/bluez", agents, "UnregisterAgent", {dbus::ObjectPath{PairingAgent::path}}));
    putBack(callOf(adapter_, advertisements, "UnregisterAdvertisement",
                   {dbus::ObjectPath{PeripheralAdvertisement::path}}));
    putBack(callOf(adapter_, applications, "UnregisterApplication",
                   {dbus::ObjectPath{HeartRateService::path}}));
    const bluez::Device* const device =
        visitor == nullptr ? nullptr : watch_->objects().device(*visitor);
    constexpr bluez::StandingLinks oursAlone{.lowEnergy = true, .calledUs = true};
    if (device != nullptr && device->connected &&
        world_.links.standing(adapter_, device->address) == oursAlone)
        putBack(callOf(*visitor, "org.bluez.Device1", "Disconnect", {}));
}

void Stay::putBack(dbus::Call call) {
    call.timeout = farewell;
    ++awaited_;
    // Refused, there was nothing to put back.
    farewells_.push_back(bus_->call(call, [this](const dbus::Message&) { arrived(); }));
}

void Stay::arrived() {
    if (--awaited_ == 0 && stage_ == Stage::leaving) putPairableBack();
}

void Stay::putPairableBack() {
    // Last, because the agent's going changes it too.
    dbus::Call call = pairableCall(adapter_, *wasPairable_);
    call.timeout = farewell;
    step_ = bus_->call(call, [this](const dbus::Message& answer) {
        if (!answer.error() && !*wasPairable_) world_.note.remove(address_);
        finish();
    });
}

void Stay::finish() {
    wasPairable_.reset(); // nothing more is to be put back from here
    turn_ = world_.scheduler.after(Nanoseconds{0}, [this] { over_(); });
}

} // namespace wegslot::coupling

#include "tests/support/visited_bluez.h"

#include <systemd/sd-bus.h>

#include <algorithm>
#include <utility>

namespace wegslot {
namespace {

constexpr auto advertising = "org.bluez.LEAdvertisingManager1";
constexpr int mostAdvertisements = 5;

std::string senderOf(sd_bus_message* call) { return sd_bus_message_get_sender(call); }

std::string words(dbus::Reader& value) {
    if (const auto text = value.text()) return std::string(*text);
    if (const auto flag = value.boolean()) return *flag ? "true" : "false";
    if (const auto number = value.integer()) return std::to_string(*number);
    std::string list;
    for (const std::string& text : value.texts())
        list += (list.empty() ? "" : ",") + text;
    return list;
}

VisitedBluez::Texts texts(dbus::Reader& properties) {
    VisitedBluez::Texts all;
    properties.properties([&all](std::string_view name, dbus::Reader& value) {
        all[std::string(name)] = words(value);
    });
    return all;
}

std::string addressAt(const std::string& path) {
    std::string address = path.substr(path.rfind("dev_") + 4);
    std::ranges::replace(address, '_', ':');
    return address;
}

std::shared_ptr<sd_bus_message> held(sd_bus_message* call) {
    return {sd_bus_message_ref(call), sd_bus_message_unref};
}

} // namespace

VisitedBluez::VisitedBluez(BusLoop& loop) : bluez(loop) {
    on("AgentManager1.RegisterAgent", [this](auto* call) { registerAgent(call); });
    on("AgentManager1.RequestDefaultAgent", [this](auto* call) { defaultAgent(call); });
    on("AgentManager1.UnregisterAgent", [this](auto* call) { unregisterAgent(call); });
    on("GattManager1.RegisterApplication", [this](auto* call) { registerApplication(call); });
    on("GattManager1.UnregisterApplication", [this](auto* call) {
        applications.erase(senderOf(call)) > 0
            ? bluez.service.reply(call)
            : bluez.service.fail(call, "org.bluez.Error.DoesNotExist");
    });
    on("LEAdvertisingManager1.RegisterAdvertisement",
       [this](auto* call) { registerAdvertisement(call); });
    on("LEAdvertisingManager1.UnregisterAdvertisement", [this](auto* call) {
        const bool known = advertised.erase(senderOf(call)) > 0;
        roomChanged();
        known ? bluez.service.reply(call)
              : bluez.service.fail(call, "org.bluez.Error.DoesNotExist");
    });
    on("Adapter1.RemoveDevice", [this](auto* call) { removeDevice(call); });
    on("Device1.Pair", [this](auto* call) { pairs_.push_back(held(call)); });
    on("Device1.CancelPairing", [this](auto* call) { bluez.service.reply(call); });
    on("Device1.Disconnect", [this](auto* call) {
        bluez.service.reply(call);
        goes(addressAt(sd_bus_message_get_path(call)));
    });
    bluez.service.on("org.freedesktop.DBus.Properties.Set",
                     [this](LookAlike&, sd_bus_message* call) { setProperty(call); });
    watchOwners();
}

VisitedBluez::~VisitedBluez() = default;

void VisitedBluez::on(const std::string& method, std::function<void(sd_bus_message*)> answer) {
    const std::string member = method.substr(method.find('.') + 1);
    bluez.service.on("org.bluez." + method, [this, member, answer = std::move(answer)](
                                                LookAlike& service, sd_bus_message* call) {
        const auto error = errors.find(member);
        error == errors.end() ? answer(call) : service.fail(call, error->second);
    });
}

void VisitedBluez::watchOwners() {
    owners_ = bluez.service.bus().onSignal(
        "org.freedesktop.DBus", {.interface = "org.freedesktop.DBus", .member = "NameOwnerChanged"},
        [this](const dbus::Message& signal) {
            dbus::Reader reader = signal.read();
            const std::string name(reader.text().value_or(""));
            static_cast<void>(reader.text());
            if (reader.text() == "") left(name);
        });
}

void VisitedBluez::left(const std::string& owner) {
    if (std::erase_if(agents, [&](const Agent& agent) { return agent.owner == owner; }) > 0)
        agentsChanged();
    applications.erase(owner);
    if (advertised.erase(owner) > 0) roomChanged();
}

void VisitedBluez::addAdapter(bool pairable) {
    bluez.addAdapter(LookAlikeBluez::adapterPath, true,
                     {{"Pairable", pairable}, {"Discoverable", false}});
    bluez.addObject(LookAlikeBluez::adapterPath, advertising,
                    {{"SupportedInstances", std::int16_t{mostAdvertisements}}});
}

void VisitedBluez::comes(const std::string& address, Properties further) {
    further.emplace("AddressType", std::string("random"));
    further.emplace("Connected", true);
    further.emplace("Paired", false);
    bluez.addDevice(address, {}, std::move(further));
}

void VisitedBluez::goes(const std::string& address) {
    bluez.changeDevice(address, {{"ServicesResolved", false}, {"Connected", false}});
}

std::shared_ptr<std::string> VisitedBluez::ask(const std::string& member,
                                               std::vector<dbus::Argument> what) {
    auto answer = std::make_shared<std::string>();
    if (agents.empty()) return answer;
    calls_.push_back(bluez.service.bus().call(
        {.destination = agents.back().owner,
         .path = agents.back().path,
         .interface = "org.bluez.Agent1",
         .member = member,
         .arguments = std::move(what)},
        [answer](const dbus::Message& message) { *answer = message.error().value_or("ok"); }));
    return answer;
}

std::shared_ptr<std::string> VisitedBluez::call(const std::string& path,
                                                const std::string& interface,
                                                const std::string& member,
                                                std::vector<dbus::Argument> what) {
    auto answer = std::make_shared<std::string>();
    if (advertised.empty()) return answer;
    calls_.push_back(bluez.service.bus().call(
        {.destination = advertised.begin()->first,
         .path = path,
         .interface = interface,
         .member = member,
         .arguments = std::move(what)},
        [answer](const dbus::Message& message) { *answer = message.error().value_or("ok"); }));
    return answer;
}

void VisitedBluez::vanish() {
    calls_.clear();
    owners_.reset();
    pairs_.clear();
    agents.clear();
    advertised.clear();
    applications.clear();
    bluez.vanish();
}

void VisitedBluez::appear() {
    bluez.appear();
    watchOwners();
}

void VisitedBluez::answerPair(const std::string& error) {
    if (pairs_.empty()) return;
    const Held call = pairs_.front();
    pairs_.erase(pairs_.begin());
    error.empty() ? bluez.service.reply(call.get()) : bluez.service.fail(call.get(), error);
}

// --- Agents -------------------------------------------------------------------------------------

void VisitedBluez::registerAgent(sd_bus_message* call) {
    dbus::Reader reader(call);
    const std::string path(reader.text().value_or(""));
    const std::string capability(reader.text().value_or(""));
    const bool isKnown = std::ranges::find(agents, senderOf(call), &Agent::owner) != agents.end();
    if (isKnown) return bluez.service.fail(call, "org.bluez.Error.AlreadyExists");
    agents.insert(agents.begin(), {senderOf(call), path, capability});
    agentsChanged();
    bluez.changeAdapter({{"Pairable", true}}); // any agent's coming has this
    bluez.service.reply(call);
}

void VisitedBluez::defaultAgent(sd_bus_message* call) {
    const auto found = std::ranges::find(agents, senderOf(call), &Agent::owner);
    if (found == agents.end()) return bluez.service.fail(call, "org.bluez.Error.DoesNotExist");
    std::rotate(found, found + 1, agents.end());
    bluez.service.reply(call);
}

void VisitedBluez::unregisterAgent(sd_bus_message* call) {
    const std::string owner = senderOf(call);
    const bool known =
        std::erase_if(agents, [&](const Agent& agent) { return agent.owner == owner; }) > 0;
    agentsChanged();
    known ? bluez.service.reply(call) : bluez.service.fail(call, "org.bluez.Error.DoesNotExist");
}

void VisitedBluez::agentsChanged() {
    if (agents.empty()) bluez.changeAdapter({{"Pairable", false}});
}

// --- What is shown ------------------------------------------------------------------------------

void VisitedBluez::registerApplication(sd_bus_message* call) {
    const std::string owner = senderOf(call);
    calls_.push_back(bluez.service.bus().call(
        {.destination = owner,
         .path = std::string(dbus::Reader(call).text().value_or("")),
         .interface = "org.freedesktop.DBus.ObjectManager",
         .member = "GetManagedObjects"},
        [this, owner, kept = held(call)](const dbus::Message& answer) {
            auto& application = applications[owner];
            answer.read().objects([&](std::string_view path, dbus::Reader& interfaces) {
                interfaces.interfaces([&](std::string_view name, dbus::Reader& properties) {
                    if (!name.starts_with("org.bluez.")) return;
                    const Texts all = texts(properties);
                    std::string what = std::string(name) + " " + std::string(path);
                    for (const auto& [key, value] : all)
                        what.append(" ").append(key).append("=").append(value);
                    application.insert(what);
                });
            });
            bluez.service.reply(kept.get());
        }));
}

void VisitedBluez::registerAdvertisement(sd_bus_message* call) {
    if (advertised.size() >= mostAdvertisements)
        return bluez.service.fail(call, "org.bluez.Error.NotPermitted");
    const std::string owner = senderOf(call);
    calls_.push_back(
        bluez.service.bus().call({.destination = owner,
                                  .path = std::string(dbus::Reader(call).text().value_or("")),
                                  .interface = "org.freedesktop.DBus.Properties",
                                  .member = "GetAll",
                                  .arguments = {std::string("org.bluez.LEAdvertisement1")}},
                                 [this, owner, kept = held(call)](const dbus::Message& answer) {
                                     dbus::Reader reader = answer.read();
                                     advertised[owner] = texts(reader);
                                     roomChanged();
                                     bluez.service.reply(kept.get());
                                 }));
}

void VisitedBluez::roomChanged() {
    bluez.changeObject(
        LookAlikeBluez::adapterPath, advertising,
        {{"SupportedInstances",
          static_cast<std::int16_t>(mostAdvertisements - static_cast<int>(advertised.size()))}});
}

// --- Adapters and devices -----------------------------------------------------------------------

void VisitedBluez::setProperty(sd_bus_message* call) {
    dbus::Reader reader(call);
    const std::string interface(reader.text().value_or(""));
    const std::string name(reader.text().value_or(""));
    std::optional<bool> value;
    reader.variant([&value](dbus::Reader& content) { value = content.boolean(); });
    const auto error = errors.find("Set");
    if (error != errors.end()) return bluez.service.fail(call, error->second);
    if (interface != "org.bluez.Adapter1" || name != "Pairable" || !value)
        return bluez.service.fail(call, "org.bluez.Error.InvalidArguments");
    bluez.changeAdapter({{"Pairable", *value}}, sd_bus_message_get_path(call));
    bluez.service.reply(call);
}

void VisitedBluez::removeDevice(sd_bus_message* call) {
    removed.emplace_back(dbus::Reader(call).text().value_or(""));
    bluez.removeDevice(addressAt(removed.back()));
    bluez.service.reply(call);
}

} // namespace wegslot

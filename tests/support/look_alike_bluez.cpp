#include "tests/support/look_alike_bluez.h"

#include <systemd/sd-bus.h>

#include <algorithm>
#include <utility>

namespace wegslot {
namespace {

constexpr auto adapterInterface = "org.bluez.Adapter1";
constexpr auto deviceInterface = "org.bluez.Device1";
constexpr auto managerInterface = "org.freedesktop.DBus.ObjectManager";

struct AppendVariant {
    sd_bus_message* message;

    void operator()(bool value) const { sd_bus_message_append(message, "v", "b", value ? 1 : 0); }
    void operator()(std::int16_t value) const { sd_bus_message_append(message, "v", "n", value); }
    void operator()(double value) const { sd_bus_message_append(message, "v", "d", value); }
    void operator()(const std::string& value) const {
        sd_bus_message_append(message, "v", "s", value.c_str());
    }
    void operator()(const std::vector<std::string>& list) const {
        sd_bus_message_open_container(message, 'v', "as");
        sd_bus_message_open_container(message, 'a', "s");
        for (const auto& entry : list)
            sd_bus_message_append(message, "s", entry.c_str());
        sd_bus_message_close_container(message);
        sd_bus_message_close_container(message);
    }
    void operator()(const LookAlikeBluez::ManufacturerData& data) const {
        sd_bus_message_open_container(message, 'v', "a{qv}");
        sd_bus_message_open_container(message, 'a', "{qv}");
        for (const auto& [company, bytes] : data) {
            sd_bus_message_open_container(message, 'e', "qv");
            sd_bus_message_append(message, "q", company);
            sd_bus_message_open_container(message, 'v', "ay");
            sd_bus_message_append_array(message, 'y', bytes.data(), bytes.size());
            sd_bus_message_close_container(message);
            sd_bus_message_close_container(message);
        }
        sd_bus_message_close_container(message);
        sd_bus_message_close_container(message);
    }
};

void appendProperties(sd_bus_message* message, const LookAlikeBluez::Properties& properties) {
    sd_bus_message_open_container(message, 'a', "{sv}");
    for (const auto& [name, value] : properties) {
        sd_bus_message_open_container(message, 'e', "sv");
        sd_bus_message_append(message, "s", name.c_str());
        std::visit(AppendVariant{message}, value);
        sd_bus_message_close_container(message);
    }
    sd_bus_message_close_container(message);
}

void appendInterfaces(sd_bus_message* message, const char* interface,
                      const LookAlikeBluez::Properties& properties) {
    sd_bus_message_open_container(message, 'a', "{sa{sv}}");
    sd_bus_message_open_container(message, 'e', "sa{sv}");
    sd_bus_message_append(message, "s", interface);
    appendProperties(message, properties);
    sd_bus_message_close_container(message);
    sd_bus_message_close_container(message);
}

void appendObjects(sd_bus_message* message, const char* interface,
                   const std::map<std::string, LookAlikeBluez::Properties>& objects) {
    for (const auto& [path, properties] : objects) {
        sd_bus_message_open_container(message, 'e', "oa{sa{sv}}");
        sd_bus_message_append(message, "o", path.c_str());
        appendInterfaces(message, interface, properties);
        sd_bus_message_close_container(message);
    }
}

LookAlike::Append added(const std::string& path, const char* interface,
                        const LookAlikeBluez::Properties& properties) {
    return [=](sd_bus_message* message) {
        sd_bus_message_append(message, "o", path.c_str());
        appendInterfaces(message, interface, properties);
    };
}

LookAlike::Append removed(const std::string& path, const char* interface) {
    return [=](sd_bus_message* message) {
        sd_bus_message_append(message, "oas", path.c_str(), 1, interface);
    };
}

} // namespace

LookAlikeBluez::LookAlikeBluez(BusLoop& loop) : service(loop, "org.bluez") {
    const auto answerWith = [](const std::string& error) {
        return [&error](LookAlike& bluez, sd_bus_message* call) {
            error.empty() ? bluez.reply(call) : bluez.fail(call, error);
        };
    };
    const std::string adapter = adapterInterface;
    service.on(std::string(managerInterface) + ".GetManagedObjects",
               [this](LookAlike&, sd_bus_message* call) { answerObjects(call); });
    service.on(adapter + ".GetDiscoveryFilters", [this](LookAlike& bluez, sd_bus_message* call) {
        bluez.reply(call, [this](sd_bus_message* message) {
            sd_bus_message_open_container(message, 'a', "s");
            for (const auto& name : understood)
                sd_bus_message_append(message, "s", name.c_str());
            sd_bus_message_close_container(message);
        });
    });
    service.on(adapter + ".SetDiscoveryFilter",
               [this, answerWith](LookAlike& bluez, sd_bus_message* call) {
                   rememberFilter(call);
                   answerWith(filterError)(bluez, call);
               });
    service.on(adapter + ".StartDiscovery",
               [this, answerWith](LookAlike& bluez, sd_bus_message* call) {
                   answerWith(discoveryError)(bluez, call);
                   if (discoveryError.empty()) setDiscovering(true);
               });
    service.on(adapter + ".StopDiscovery", [this](LookAlike& bluez, sd_bus_message* call) {
        discovering_ ? bluez.reply(call) : bluez.fail(call, "org.bluez.Error.Failed");
        setDiscovering(false);
    });
}

void LookAlikeBluez::addAdapter(const std::string& path, bool powered, const Properties& further) {
    adapters_[path] = further;
    adapters_[path].merge(Properties{{"Address", std::string("00:11:22:33:44:55")},
                                     {"Powered", powered},
                                     {"Roles", std::vector<std::string>{"central", "peripheral"}}});
    service.signal("/", managerInterface, "InterfacesAdded",
                   added(path, adapterInterface, adapters_[path]));
}

void LookAlikeBluez::removeAdapter(const std::string& path) {
    adapters_.erase(path);
    service.signal("/", managerInterface, "InterfacesRemoved", removed(path, adapterInterface));
}

void LookAlikeBluez::setPowered(bool powered, const std::string& path) {
    if (!powered) setDiscovering(false);
    changeAdapter({{"Powered", powered}}, path);
}

void LookAlikeBluez::changeAdapter(const Properties& properties, const std::string& path) {
    for (const auto& [name, value] : properties)
        adapters_[path][name] = value;
    changed(path, adapterInterface, properties);
}

void LookAlikeBluez::addDevice(const std::string& address, std::optional<std::int16_t> rssi,
                               Properties further, const std::string& adapter) {
    Properties& device = devices_[pathOf(address, adapter)];
    device = std::move(further);
    device.emplace("Address", address);
    device.emplace("AddressType", std::string("public"));
    if (rssi) device["RSSI"] = *rssi;
    service.signal("/", managerInterface, "InterfacesAdded",
                   added(pathOf(address, adapter), deviceInterface, device));
}

void LookAlikeBluez::removeDevice(const std::string& address, const std::string& adapter) {
    devices_.erase(pathOf(address, adapter));
    service.signal("/", managerInterface, "InterfacesRemoved",
                   removed(pathOf(address, adapter), deviceInterface));
}

void LookAlikeBluez::addObject(const std::string& path, const std::string& interface,
                               const Properties& properties) {
    objects_[interface][path] = properties;
    service.signal("/", managerInterface, "InterfacesAdded",
                   added(path, interface.c_str(), properties));
}

void LookAlikeBluez::changeObject(const std::string& path, const std::string& interface,
                                  const Properties& properties) {
    for (const auto& [name, value] : properties)
        objects_[interface][path][name] = value;
    changed(path, interface.c_str(), properties);
}

void LookAlikeBluez::removeObject(const std::string& path, const std::string& interface) {
    objects_[interface].erase(path);
    service.signal("/", managerInterface, "InterfacesRemoved", removed(path, interface.c_str()));
}

void LookAlikeBluez::report(const std::string& address, std::int16_t rssi, Properties further,
                            const std::string& adapter) {
    further["RSSI"] = rssi;
    changeDevice(address, further, adapter);
}

void LookAlikeBluez::changeDevice(const std::string& address, const Properties& properties,
                                  const std::string& adapter) {
    const auto device = devices_.find(pathOf(address, adapter));
    if (device != devices_.end())
        for (const auto& [name, value] : properties)
            device->second[name] = value;
    changed(pathOf(address, adapter), deviceInterface, properties);
}

void LookAlikeBluez::invalidateStrength(const std::string& address, const std::string& adapter) {
    devices_[pathOf(address, adapter)].erase("RSSI");
    changed(pathOf(address, adapter), deviceInterface, {}, "RSSI");
}

std::string LookAlikeBluez::pathOf(const std::string& address, const std::string& adapter) {
    std::string path = adapter + "/dev_" + address;
    std::ranges::replace(path, ':', '_');
    return path;
}

void LookAlikeBluez::vanish() {
    adapters_.clear();
    devices_.clear();
    objects_.clear();
    filter_.clear();
    discovering_ = false;
    service.vanish();
}

void LookAlikeBluez::answerObjects(sd_bus_message* call) {
    if (!objectsError.empty()) return service.fail(call, objectsError);
    service.reply(call, [this](sd_bus_message* message) {
        sd_bus_message_open_container(message, 'a', "{oa{sa{sv}}}");
        appendObjects(message, adapterInterface, adapters_);
        appendObjects(message, deviceInterface, devices_);
        for (const auto& [interface, objects] : objects_)
            appendObjects(message, interface.c_str(), objects);
        sd_bus_message_close_container(message);
    });
}

void LookAlikeBluez::rememberFilter(sd_bus_message* call) {
    Properties before = std::exchange(filter_, Properties{});
    dbus::Reader(call).properties([this](std::string_view name, dbus::Reader& value) {
        Value& remembered = filter_[std::string(name)];
        if (const auto flag = value.boolean()) remembered = *flag;
        if (const auto number = value.integer()) remembered = static_cast<std::int16_t>(*number);
        if (const auto text = value.text()) remembered = std::string(*text);
    });
    if (discovering_ && filter_ != before && onScan) onScan();
}

void LookAlikeBluez::setDiscovering(bool discovering) {
    const bool before = std::exchange(discovering_, discovering);
    if (before != discovering && adapters_.contains(adapterPath))
        changeAdapter({{"Discovering", discovering}});
    if (discovering && onScan) onScan();
    if (before && !discovering && onScanEnd) onScanEnd();
}

void LookAlikeBluez::changed(const std::string& path, const char* interface,
                             const Properties& properties, const char* invalidated) {
    service.signal(path, "org.freedesktop.DBus.Properties", "PropertiesChanged",
                   [&](sd_bus_message* message) {
                       sd_bus_message_append(message, "s", interface);
                       appendProperties(message, properties);
                       if (invalidated == nullptr)
                           sd_bus_message_append(message, "as", 0);
                       else
                           sd_bus_message_append(message, "as", 1, invalidated);
                   });
}

} // namespace wegslot

#include "tests/support/living_bluez.h"

#include <systemd/sd-bus.h>

#include <array>
#include <cstdio>

namespace wegslot {
namespace {

constexpr auto serviceInterface = "org.bluez.GattService1";
constexpr auto characteristicInterface = "org.bluez.GattCharacteristic1";
constexpr auto aborted = "org.bluez.Error.Failed";
constexpr std::uint8_t endedByThisHost = 0x16;

std::string fullUuid(const char* number) {
    return std::string("0000") + number + "-0000-1000-8000-00805f9b34fb";
}

std::string numberedAddress(const char* beginning, unsigned number) {
    std::array<char, 18> text{};
    std::snprintf(text.data(), text.size(), "%s:BB:CC:DD:EE:%02X", beginning, number & 0xFFU);
    return text.data();
}

// The two highest bits of an address that changes and can be resolved are 01.
const char* beginningOf(DeviceSpec::Identity identity) {
    return identity == DeviceSpec::Identity::changing ? "4A" : "A0";
}

const char* reasonOf(std::uint8_t code) {
    if (code == endedByThisHost) return "org.bluez.Reason.Local";
    return code == 0x08 ? "org.bluez.Reason.Timeout" : "org.bluez.Reason.Remote";
}

} // namespace

LivingBluez::LivingBluez(BusLoop& loop, LookAlikeLinks& links)
    : bluez(loop),
      loop_(loop),
      links_(links) {
    bluez.addAdapter(LookAlikeBluez::adapterPath, false);
    bluez.onScan = [this] {
        listeningFrom_ = loop_.time.now() + startUp;
        for (auto& [number, device] : devices_)
            device.reported = false;
    };
    bluez.onScanEnd = [this] {
        listeningFrom_.reset();
        for (auto& [number, device] : devices_)
            if (device.announced) bluez.invalidateStrength(device.pathAddress);
    };
    answerCalls();
}

LivingBluez::~LivingBluez() {
    for (auto& [number, device] : devices_)
        sd_bus_message_unref(device.connecting);
}

void LivingBluez::answerCalls() {
    const auto ofDevice = [this](const char* method, auto operation) {
        bluez.service.on(std::string("org.bluez.Device1.") + method,
                         [this, operation](LookAlike& service, sd_bus_message* call) {
                             Device* const device = at(call, "");
                             if (device == nullptr)
                                 return service.fail(call,
                                                     "org.freedesktop.DBus.Error.UnknownObject");
                             (this->*operation)(*device, call);
                         });
    };
    ofDevice("Connect", &LivingBluez::connect);
    ofDevice("Disconnect", &LivingBluez::disconnect);
    bluez.service.on("org.freedesktop.DBus.Properties.Get",
                     [this](LookAlike& service, sd_bus_message* call) {
                         const Device* const device = at(call, "");
                         const bool connected = device != nullptr && device->connected;
                         service.reply(call, [connected](sd_bus_message* message) {
                             sd_bus_message_append(message, "v", "b", connected ? 1 : 0);
                         });
                     });
    bluez.service.on("org.bluez.GattCharacteristic1.ReadValue",
                     [this](LookAlike& service, sd_bus_message* call) {
                         const Device* const device = at(call, "/service0001/char0001");
                         if (device == nullptr || !device->connected)
                             return service.fail(call, aborted);
                         service.reply(call, [device](sd_bus_message* message) {
                             sd_bus_message_append_array(message, 'y', device->spec.model.data(),
                                                         device->spec.model.size());
                         });
                     });
}

LivingBluez::Device* LivingBluez::at(sd_bus_message* call, const std::string& below) {
    const std::string path = sd_bus_message_get_path(call);
    for (auto& [number, device] : devices_)
        if (device.announced && device.path + below == path) return &device;
    return nullptr;
}

const std::string& LivingBluez::address(Number number) const { return devices_.at(number).address; }

const char* LivingBluez::addressType(Number number) const {
    const bool changing = devices_.at(number).spec.identity == DeviceSpec::Identity::changing;
    return changing ? "random" : "public";
}

void LivingBluez::setPowered(bool powered) {
    powered_ = powered;
    if (!powered) {
        for (auto& [number, device] : devices_) {
            device.linking.reset();
            if (device.connecting != nullptr) answerConnect(device, aborted);
            if (device.connected) linkGoes(device, endedByThisHost);
            if (!device.spec.isBonded()) forget(device);
        }
    }
    bluez.setPowered(powered);
}

// --- Devices ------------------------------------------------------------------------------------

LivingBluez::Number LivingBluez::add(const DeviceSpec& spec) {
    const auto number = static_cast<Number>(devices_.size() + 1);
    Device& device = devices_[number];
    device.spec = spec;
    device.address = device.pathAddress = numberedAddress(beginningOf(spec.identity), number);
    device.path = LookAlikeBluez::pathOf(device.address);
    if (spec.isBonded()) announce(device, false);
    return number;
}

void LivingBluez::speak(Number number) {
    Device& device = devices_.at(number);
    device.speaks = true;
    if (!device.connected) advertise(device);
}

void LivingBluez::silence(Number number) {
    Device& device = devices_.at(number);
    device.speaks = false;
    device.advertising.reset();
    device.linking.reset();
}

void LivingBluez::dropLink(Number number, std::uint8_t code) {
    Device& device = devices_.at(number);
    if (device.connected) linkGoes(device, code);
}

void LivingBluez::bond(Number number) {
    Device& device = devices_.at(number);
    device.spec.identity = DeviceSpec::Identity::rotating;
    device.expiry.reset();
    device.address = numberedAddress("A0", number);
    bluez.changeDevice(device.pathAddress, {{"Address", device.address},
                                            {"AddressType", std::string("public")},
                                            {"Paired", true},
                                            {"Bonded", true}});
}

void LivingBluez::advertise(Device& device) {
    device.advertising =
        loop_.time.after(device.spec.interval, [this, &device] { advertise(device); });
    // The kernel waits for the device by itself, whether anybody discovers or not.
    const bool connectable = device.spec.connecting != DeviceSpec::Connecting::ignores;
    if (powered_ && device.connecting != nullptr && connectable && !device.linking)
        device.linking = loop_.time.after(connectTime, [this, &device] { linkComes(device); });
    const bool listens = powered_ && listeningFrom_ && loop_.time.now() >= *listeningFrom_;
    if (listens && !std::exchange(device.reported, true)) report(device);
}

void LivingBluez::announce(Device& device, bool heard) {
    const bool bonded = device.spec.isBonded();
    const bool random = device.spec.identity == DeviceSpec::Identity::changing;
    LookAlikeBluez::Properties properties{
        {"AddressType", std::string(random ? "random" : "public")},
        {"Paired", bonded},
        {"Bonded", bonded},
        {"Connected", false},
        {"ServicesResolved", false},
    };
    if (device.spec.name) properties["Name"] = *device.spec.name;
    device.announced = true;
    bluez.addDevice(device.address,
                    heard ? std::optional(static_cast<std::int16_t>(device.spec.rssi))
                          : std::nullopt,
                    properties);
}

void LivingBluez::report(Device& device) {
    if (!device.spec.isBonded())
        device.expiry = loop_.time.after(temporary, [this, &device] { forget(device); });
    if (!device.announced) announce(device, true);
    LookAlikeBluez::Properties properties;
    const auto& data = device.spec.makerData;
    if (data.size() >= 2) {
        const auto company = static_cast<std::uint16_t>(data[0] | (data[1] << 8U));
        properties["ManufacturerData"] =
            LookAlikeBluez::ManufacturerData{{company, {data.begin() + 2, data.end()}}};
    }
    bluez.report(device.pathAddress, static_cast<std::int16_t>(device.spec.rssi), properties);
}

void LivingBluez::forget(Device& device) {
    device.expiry.reset();
    if (device.connected || !std::exchange(device.announced, false)) return;
    bluez.removeDevice(device.pathAddress);
}

// --- Connections --------------------------------------------------------------------------------

void LivingBluez::connect(Device& device, sd_bus_message* call) {
    if (!powered_) return bluez.service.fail(call, "org.bluez.Error.NotReady");
    if (device.connected) return bluez.service.fail(call, "org.bluez.Error.AlreadyConnected");
    if (device.connecting != nullptr) return bluez.service.fail(call, "org.bluez.Error.InProgress");
    device.connecting = sd_bus_message_ref(call);
    device.expiry.reset();
    device.giveUp = loop_.time.after(connectLimit, [this, &device] {
        device.linking.reset();
        answerConnect(device, aborted);
    });
}

void LivingBluez::disconnect(Device& device, sd_bus_message* call) {
    if (device.connecting != nullptr) {
        device.linking.reset();
        answerConnect(device, aborted);
        return bluez.service.reply(call);
    }
    if (!device.connected) return bluez.service.fail(call, "org.bluez.Error.NotConnected");
    sd_bus_message_ref(call);
    delayed_.after(disconnectTime, [this, &device, call] {
        if (device.connected) linkGoes(device, endedByThisHost);
        bluez.service.reply(call);
        sd_bus_message_unref(call);
    });
}

void LivingBluez::answerConnect(Device& device, const std::string& error) {
    sd_bus_message* const call = std::exchange(device.connecting, nullptr);
    device.giveUp.reset();
    error.empty() ? bluez.service.reply(call) : bluez.service.fail(call, error);
    sd_bus_message_unref(call);
}

void LivingBluez::linkComes(Device& device) {
    device.linking.reset();
    if (device.spec.connecting == DeviceSpec::Connecting::refuses)
        return answerConnect(device, aborted);
    device.connected = true;
    device.advertising.reset(); // connected, it advertises no more
    links_.strengths[device.address] = device.spec.linkRssi;
    bluez.changeDevice(device.pathAddress, {{"Connected", true}});
    answerConnect(device, {});
    if (device.spec.services != DeviceSpec::Services::mute)
        device.linking =
            loop_.time.after(serviceTime, [this, &device] { resolveServices(device); });
}

void LivingBluez::resolveServices(Device& device) {
    const bool withModel = device.spec.services == DeviceSpec::Services::withModel;
    const std::string service = device.path + "/service0001";
    std::vector<std::string> uuids{fullUuid("1800")};
    bluez.addObject(device.path + "/service0002", serviceInterface, {{"UUID", fullUuid("1800")}});
    if (withModel) {
        uuids.push_back(fullUuid("180a"));
        bluez.addObject(service, serviceInterface, {{"UUID", fullUuid("180a")}});
        bluez.addObject(service + "/char0001", characteristicInterface,
                        {{"UUID", fullUuid("2a24")}});
    }
    bluez.changeDevice(device.pathAddress, {{"UUIDs", uuids}, {"ServicesResolved", true}});
}

void LivingBluez::linkGoes(Device& device, std::uint8_t code) {
    device.linking.reset();
    device.connected = false;
    links_.strengths.erase(device.address);
    links_.lossCodes[device.address] = code;
    bluez.service.signal(device.path, "org.bluez.Device1", "Disconnected",
                         [code](sd_bus_message* message) {
                             sd_bus_message_append(message, "ss", reasonOf(code), "as told");
                         });
    bluez.changeDevice(device.pathAddress, {{"ServicesResolved", false}, {"Connected", false}});
    if (!device.spec.isBonded())
        for (const char* const object : {"/service0001/char0001", "/service0001", "/service0002"})
            bluez.removeObject(device.path + object, std::string(object).ends_with("char0001")
                                                         ? characteristicInterface
                                                         : serviceInterface);
    if (device.speaks) advertise(device);
}

} // namespace wegslot

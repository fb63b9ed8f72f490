#include "crowd_radio.h"

#include <systemd/sd-bus.h>

#include <algorithm>
#include <cstdio>
#include <stdexcept>
#include <string_view>

namespace wegslot::bench {
namespace {

constexpr auto adapterPath = "/org/bluez/hci0";
constexpr auto adapterInterface = "org.bluez.Adapter1";
constexpr auto deviceInterface = "org.bluez.Device1";
constexpr auto properties = "org.freedesktop.DBus.Properties";
constexpr auto objectManager = "org.freedesktop.DBus.ObjectManager";
constexpr int makerCompany = 0x004C;
constexpr int keyStrength = -50;
constexpr int nearest = -55; // of the strangers, who are spread over a house
constexpr int distances = 40;
constexpr int fading = 11; // from the weakest report of a device to its strongest

std::string pathOf(const std::string& address) {
    std::string path = std::string(adapterPath) + "/dev_" + address;
    std::ranges::replace(path, ':', '_');
    return path;
}

std::string addressOf(const char* format, std::uint32_t number) {
    std::array<char, 18> text{};
    std::snprintf(text.data(), text.size(), format, number >> 16U & 0xFFU, number >> 8U & 0xFFU,
                  number & 0xFFU);
    return text.data();
}

void appendMakerData(sd_bus_message* message) {
    sd_bus_message_append(message, "{sv}", "ManufacturerData", "a{qv}", 1, makerCompany, "ay", 6,
                          0x10, 0x05, 0x01, 0x18, 0x2F, 0x6B);
}

} // namespace

CrowdRadio::CrowdRadio(std::size_t devices) {
    if (sd_bus_open_system(&bus_) < 0) throw std::runtime_error("no connection to the bus");
    sd_bus_add_filter(
        bus_, nullptr,
        [](sd_bus_message* message, void* self, sd_bus_error*) {
            return received(message, self, nullptr);
        },
        this);
    for (std::uint32_t key = 1; key <= keys; ++key) {
        Device device{.address = addressOf("AA:BB:CC:%02X:%02X:%02X", key),
                      .addressType = "public",
                      .path = {},
                      .hasMakerData = false,
                      .strength = keyStrength};
        device.path = pathOf(device.address);
        devices_.push_back(std::move(device));
    }
    while (devices_.size() < std::max(devices, keys + 1))
        devices_.push_back(stranger(strangers_++));
    if (sd_bus_request_name(bus_, "org.bluez", 0) < 0)
        throw std::runtime_error("org.bluez is somebody else's");
}

CrowdRadio::~CrowdRadio() { sd_bus_flush_close_unref(bus_); }

CrowdRadio::Device CrowdRadio::stranger(std::uint32_t number) const {
    // A static random address, so that it keeps its identity.
    Device device{.address = addressOf("C0:11:22:%02X:%02X:%02X", number),
                  .addressType = "random",
                  .path = {},
                  .hasMakerData = number % 2 == 0,
                  .strength = nearest - static_cast<int>(number * 7 % distances)};
    device.path = pathOf(device.address);
    return device;
}

// --- Calls --------------------------------------------------------------------------------------

int CrowdRadio::received(sd_bus_message* message, void* self, void*) {
    std::uint8_t type = 0;
    sd_bus_message_get_type(message, &type);
    if (type != SD_BUS_MESSAGE_METHOD_CALL) return 0;
    if (!static_cast<CrowdRadio*>(self)->answer(message))
        sd_bus_reply_method_errorf(message, SD_BUS_ERROR_UNKNOWN_METHOD, "not measured");
    return 1;
}

bool CrowdRadio::answer(sd_bus_message* call) {
    const std::string_view member = sd_bus_message_get_member(call);
    if (member == "GetManagedObjects") {
        answerObjects(call);
    } else if (member == "GetDiscoveryFilters") {
        sd_bus_reply_method_return(call, "as", 5, "UUIDs", "RSSI", "Transport", "DuplicateData",
                                   "Pattern");
    } else if (member == "SetDiscoveryFilter") {
        sd_bus_reply_method_return(call, "");
    } else if (member == "StartDiscovery") {
        sd_bus_reply_method_return(call, "");
        setDiscovering(true);
        if (onDiscovery) onDiscovery();
    } else if (member == "StopDiscovery") {
        sd_bus_reply_method_return(call, "");
        setDiscovering(false);
    } else {
        return false;
    }
    return true;
}

void CrowdRadio::answerObjects(sd_bus_message* call) const {
    sd_bus_message* reply = nullptr;
    if (sd_bus_message_new_method_return(call, &reply) < 0) return;
    sd_bus_message_open_container(reply, 'a', "{oa{sa{sv}}}");
    sd_bus_message_append(reply, "{oa{sa{sv}}}", adapterPath, 1, adapterInterface, 4, "Address",
                          "s", "00:11:22:33:44:55", "Powered", "b", 1, "Discovering", "b",
                          discovering_ ? 1 : 0, "Roles", "as", 2, "central", "peripheral");
    for (const Device& device : devices_) {
        sd_bus_message_open_container(reply, 'e', "oa{sa{sv}}");
        sd_bus_message_append(reply, "o", device.path.c_str());
        sd_bus_message_open_container(reply, 'a', "{sa{sv}}");
        sd_bus_message_open_container(reply, 'e', "sa{sv}");
        sd_bus_message_append(reply, "s", deviceInterface);
        sd_bus_message_open_container(reply, 'a', "{sv}");
        sd_bus_message_append(reply, "{sv}", "Address", "s", device.address.c_str());
        sd_bus_message_append(reply, "{sv}", "AddressType", "s", device.addressType);
        sd_bus_message_append(reply, "{sv}", "Alias", "s", device.address.c_str());
        for (const char* const no : {"Paired", "Bonded", "Trusted", "Blocked", "LegacyPairing",
                                     "Connected", "ServicesResolved"})
            sd_bus_message_append(reply, "{sv}", no, "b", 0);
        sd_bus_message_append(reply, "{sv}", "UUIDs", "as", 0);
        sd_bus_message_append(reply, "{sv}", "Adapter", "o", adapterPath);
        if (device.hasMakerData) appendMakerData(reply);
        sd_bus_message_append(reply, "{sv}", "RSSI", "n", device.strength);
        for (int container = 0; container < 4; ++container)
            sd_bus_message_close_container(reply);
    }
    sd_bus_message_close_container(reply);
    sd_bus_send(bus_, reply, nullptr);
    sd_bus_message_unref(reply);
}

void CrowdRadio::setDiscovering(bool discovering) {
    if (discovering_ == discovering) return;
    discovering_ = discovering;
    sd_bus_emit_signal(bus_, adapterPath, properties, "PropertiesChanged", "sa{sv}as",
                       adapterInterface, 1, "Discovering", "b", discovering ? 1 : 0, 0);
    if (discovering || !gated_) return;
    // At the end of a scan BlueZ takes back each strength that it told.
    for (Device& device : devices_) {
        if (!device.reported) continue;
        device.reported = false;
        sd_bus_emit_signal(bus_, device.path.c_str(), properties, "PropertiesChanged", "sa{sv}as",
                           deviceInterface, 0, 1, "RSSI");
    }
}

// --- Reports ------------------------------------------------------------------------------------

void CrowdRadio::setRate(unsigned perSecond) {
    rate_ = perSecond;
    due_ = Clock::now();
    for (std::size_t key = 0; key < keys; ++key)
        keyDue_.at(key) = due_ + key * keyInterval / keys;
}

void CrowdRadio::setRenewal(unsigned perSecond) {
    renewal_ = perSecond;
    renewalDue_ = Clock::now();
}

void CrowdRadio::advertise(Clock::time_point due) {
    for (std::size_t key = 0; key < keys; ++key) {
        if (keyDue_.at(key) > due) continue;
        keyDue_.at(key) += keyInterval;
        return report(devices_[key]);
    }
    report(devices_[nextStranger_]);
    if (++nextStranger_ == devices_.size()) nextStranger_ = keys;
}

void CrowdRadio::report(Device& device) {
    if (gated_ && !discovering_) return;
    sd_bus_message* message = nullptr;
    if (sd_bus_message_new_signal(bus_, &message, device.path.c_str(), properties,
                                  "PropertiesChanged") < 0)
        return;
    const int strength = device.strength + static_cast<int>(chance_() % fading) - fading / 2;
    sd_bus_message_append(message, "s", deviceInterface);
    sd_bus_message_open_container(message, 'a', "{sv}");
    sd_bus_message_append(message, "{sv}", "RSSI", "n", strength);
    if (device.hasMakerData) appendMakerData(message);
    sd_bus_message_close_container(message);
    sd_bus_message_append(message, "as", 0);
    if (sd_bus_send(bus_, message, nullptr) >= 0) ++sent_;
    sd_bus_message_unref(message);
    device.reported = true;
}

void CrowdRadio::renewOne() {
    Device& device = devices_[nextRenewed_];
    sd_bus_emit_signal(bus_, "/", objectManager, "InterfacesRemoved", "oas", device.path.c_str(), 1,
                       deviceInterface);
    device = stranger(strangers_++);
    sd_bus_emit_signal(bus_, "/", objectManager, "InterfacesAdded", "oa{sa{sv}}",
                       device.path.c_str(), 1, deviceInterface, 2, "Address", "s",
                       device.address.c_str(), "AddressType", "s", device.addressType);
    if (++nextRenewed_ == devices_.size()) nextRenewed_ = keys;
}

// --- Being driven -------------------------------------------------------------------------------

int CrowdRadio::fd() const { return sd_bus_get_fd(bus_); }

short CrowdRadio::events() const {
    const int events = sd_bus_get_events(bus_);
    return static_cast<short>(events < 0 ? 0 : events);
}

std::optional<std::chrono::nanoseconds> CrowdRadio::untilNext() const {
    std::optional<Clock::time_point> next;
    if (rate_ > 0) next = due_;
    if (renewal_ > 0) next = next ? std::min(*next, renewalDue_) : renewalDue_;
    if (!next) return std::nullopt;
    return std::max(std::chrono::nanoseconds{0},
                    std::chrono::duration_cast<std::chrono::nanoseconds>(*next - Clock::now()));
}

void CrowdRadio::turn() {
    while (sd_bus_process(bus_, nullptr) > 0) {
    }
    if (sd_bus_is_open(bus_) <= 0) throw std::runtime_error("the bus is gone");
    const auto now = Clock::now();
    while (rate_ > 0 && due_ <= now) {
        advertise(due_);
        std::exponential_distribution<double> gap(rate_);
        due_ += std::chrono::duration_cast<Clock::duration>(
            std::chrono::duration<double>(gap(chance_)));
    }
    while (renewal_ > 0 && renewalDue_ <= now) {
        renewOne();
        renewalDue_ += Clock::duration{std::chrono::seconds{1}} / renewal_;
    }
}

} // namespace wegslot::bench

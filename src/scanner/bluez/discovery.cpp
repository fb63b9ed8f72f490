#include "scanner/bluez/discovery.h"

#include <algorithm>
#include <utility>

namespace wegslot::bluez {
namespace {

// What makes bluetoothd signal each report, also an equal one. The strength is the one that every
// version minds (it is also the weakest there is, so it excludes nobody); DuplicateData repeats
// unchanged manufacturer data; an empty pattern keeps another program's pattern from hiding
// devices from us.
const dbus::Dictionary& everyReport() {
    static const dbus::Dictionary filter{
        {"Transport", std::string("le")},
        {"RSSI", std::int16_t{-127}},
        {"DuplicateData", true},
        {"Pattern", std::string()},
    };
    return filter;
}

} // namespace

Discovery::Discovery(dbus::Bus& bus, Scheduler& scheduler, std::string adapter,
                     std::function<void()> denied)
    : bus_(bus),
      scheduler_(scheduler),
      adapter_(std::move(adapter)),
      denied_(std::move(denied)) {}

void Discovery::start() {
    timer_.reset();
    // One unknown key makes BlueZ refuse the whole filter, so it is asked what it knows.
    call("GetDiscoveryFilters", {}, [this](const dbus::Message& answer) {
        setFilter(answer.error() ? std::vector<std::string>{} : answer.read().texts());
    });
}

void Discovery::setFilter(const std::vector<std::string>& understood) {
    dbus::Dictionary filter;
    for (const auto& entry : everyReport()) {
        const bool known = std::ranges::find(understood, entry.first) != understood.end();
        if (understood.empty() || known) filter.push_back(entry);
    }
    call("SetDiscoveryFilter", {filter}, [this](const dbus::Message& answer) {
        if (const auto error = answer.error()) return retry(*error);
        startDiscovery();
    });
}

void Discovery::startDiscovery() {
    call("StartDiscovery", {}, [this](const dbus::Message& answer) {
        if (const auto error = answer.error()) return retry(*error);
        nextRetry_ = firstRetry;
    });
}

void Discovery::call(const std::string& member, std::vector<dbus::Argument> arguments,
                     std::function<void(const dbus::Message&)> answer) {
    pending_ = bus_.call({.destination = "org.bluez",
                          .path = adapter_,
                          .interface = "org.bluez.Adapter1",
                          .member = member,
                          .arguments = std::move(arguments)},
                         std::move(answer));
}

void Discovery::retry(const std::string& error) {
    if (error == "org.freedesktop.DBus.Error.AccessDenied") return denied_();
    timer_ = scheduler_.after(nextRetry_, [this] { start(); });
    nextRetry_ = std::min(nextRetry_ * 2, longestRetry);
}

} // namespace wegslot::bluez

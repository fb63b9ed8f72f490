#include "scanner/bluez/discovery.h"

#include <algorithm>
#include <utility>

namespace wegslot::bluez {
namespace {

// What makes bluetoothd signal each report, also an equal one. The strength is the one that every
// version minds; both values of it exclude nobody, and a change from one to the other has the
// scan started anew. DuplicateData repeats unchanged manufacturer data; an empty pattern keeps
// another program's pattern from hiding devices from us.
dbus::Dictionary everyReport(bool otherStrength) {
    return {
        {"Transport", std::string("le")},
        {"RSSI", static_cast<std::int16_t>(otherStrength ? -126 : -127)},
        {"DuplicateData", true},
        {"Pattern", std::string()},
    };
}

} // namespace

Discovery::Discovery(dbus::Bus& bus, Scheduler& scheduler, std::string adapter, Listener& listener)
    : bus_(bus),
      scheduler_(scheduler),
      adapter_(std::move(adapter)),
      listener_(listener) {}

Discovery::~Discovery() {
    // The adapter may stay although it is not used any more; else nobody listens.
    if (on_ || busy_)
        bus_.send({.destination = "org.bluez",
                   .path = adapter_,
                   .interface = "org.bluez.Adapter1",
                   .member = "StopDiscovery"});
}

void Discovery::start() {
    wanted_ = true;
    proceed();
}

void Discovery::stop() {
    wanted_ = false;
    proceed();
}

void Discovery::restart() {
    restartWanted_ = true;
    proceed();
}

void Discovery::renew() {
    renewWanted_ = true;
    retry_.reset();
    refusals_ = 0;
    nextRetry_ = firstRetry;
    proceed();
}

void Discovery::proceed() {
    if (busy_) return;
    if (on_ && (!wanted_ || renewWanted_)) return end();
    renewWanted_ = false;
    const bool restart = std::exchange(restartWanted_, false);
    if (!wanted_) return;
    if (on_ && restart) {
        otherStrength_ = !otherStrength_;
        return setFilter([this] { proceed(); });
    }
    if (!on_ && !retry_) begin();
}

void Discovery::begin() {
    if (!understood_) {
        // One unknown key makes BlueZ refuse the whole filter, so it is asked what it knows.
        return call("GetDiscoveryFilters", {}, [this](const dbus::Message& answer) {
            understood_ = answer.error() ? std::vector<std::string>{} : answer.read().texts();
            proceed();
        });
    }
    setFilter([this] {
        if (!wanted_) return;
        call("StartDiscovery", {}, [this](const dbus::Message& answer) {
            if (const auto error = answer.error()) return refused(*error);
            refusals_ = 0;
            nextRetry_ = firstRetry;
            on_ = true;
            listener_.discovering(true);
            proceed();
        });
    });
}

void Discovery::setFilter(std::function<void()> then) {
    dbus::Dictionary filter;
    for (auto& entry : everyReport(otherStrength_)) {
        const bool known = std::ranges::find(*understood_, entry.first) != understood_->end();
        if (understood_->empty() || known) filter.push_back(std::move(entry));
    }
    call("SetDiscoveryFilter", {std::move(filter)},
         [this, then = std::move(then)](const dbus::Message& answer) {
             const auto error = answer.error();
             if (error && !on_) return refused(*error);
             then();
         });
}

void Discovery::end() {
    on_ = false;
    renewWanted_ = false;
    listener_.discovering(false);
    // Whatever the answer: without a session there is nothing to end, and a daemon that says "in
    // progress" has been seen to have ended it.
    call("StopDiscovery", {}, [this](const dbus::Message&) { proceed(); });
}

void Discovery::call(const std::string& member, std::vector<dbus::Argument> arguments,
                     std::function<void(const dbus::Message&)> answer) {
    busy_ = true;
    answer_ = bus_.call({.destination = "org.bluez",
                         .path = adapter_,
                         .interface = "org.bluez.Adapter1",
                         .member = member,
                         .arguments = std::move(arguments)},
                        [this, answer = std::move(answer)](const dbus::Message& message) {
                            busy_ = false;
                            answer(message);
                        });
}

void Discovery::refused(const std::string& error) {
    if (error == "org.freedesktop.DBus.Error.AccessDenied") return listener_.discoveryDenied();
    retry_ = scheduler_.after(nextRetry_, [this] {
        retry_.reset();
        proceed();
    });
    if (++refusals_ >= quickRetries) nextRetry_ = std::min(nextRetry_ * 2, longestRetry);
}

} // namespace wegslot::bluez

#include "scanner/bluez/discovery.h"

#include <algorithm>
#include <utility>

namespace wegslot::bluez {
namespace {

// What makes bluetoothd signal each report, also an equal one. The strength is what every version
// minds; DuplicateData repeats unchanged manufacturer data; an empty pattern keeps another
// program's pattern from hiding devices from us.
dbus::Dictionary everyReport(std::int16_t strength) {
    return {
        {"Transport", std::string("le")},
        {"RSSI", strength},
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
    if (state_ != State::off && state_ != State::refused)
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
    wish_ = std::max(wish_, Wish::restart);
    proceed();
}

void Discovery::renew() {
    wish_ = Wish::renew;
    refusals_ = 0;
    nextRetry_ = firstRetry;
    if (state_ == State::refused) {
        retry_.reset();
        state_ = State::off;
    }
    proceed();
}

void Discovery::proceed() {
    switch (state_) {
    case State::off:
        wish_ = Wish::none;
        if (wanted_) begin();
        return;
    case State::on:
        if (!wanted_ || wish_ == Wish::renew) return end();
        if (std::exchange(wish_, Wish::none) == Wish::restart) rescan();
        return;
    case State::beginning:
    case State::rescanning:
    case State::ending:
    case State::refused:
        return; // what is under way, or the timer, comes back here
    }
}

void Discovery::begin() {
    if (!understood_) {
        // One unknown key makes BlueZ refuse the whole filter, so it is asked what it knows.
        return call(
            State::beginning, "GetDiscoveryFilters", {}, [this](const dbus::Message& answer) {
                understood_ = answer.error() ? std::vector<std::string>{} : answer.read().texts();
                settle(State::off);
            });
    }
    setFilter(State::beginning, [this](const dbus::Message& filtered) {
        if (const auto error = filtered.error()) return refused(*error);
        if (!wanted_) return settle(State::off);
        call(State::beginning, "StartDiscovery", {}, [this](const dbus::Message& started) {
            if (const auto error = started.error()) return refused(*error);
            refusals_ = 0;
            nextRetry_ = firstRetry;
            state_ = State::on;
            listener_.discovering(true);
            proceed();
        });
    });
}

void Discovery::rescan() {
    strength_ = strength_ == firstStrength ? otherStrength : firstStrength;
    setFilter(State::rescanning, [this](const dbus::Message&) { settle(State::on); });
}

void Discovery::end() {
    // The listener hears of it before, while there is still something to end.
    state_ = State::ending;
    listener_.discovering(false);
    // Whatever the answer: without a session there is nothing to end, and a daemon that says "in
    // progress" has been seen to have ended it.
    call(State::ending, "StopDiscovery", {}, [this](const dbus::Message&) { settle(State::off); });
}

void Discovery::setFilter(State meanwhile, std::function<void(const dbus::Message&)> answer) {
    dbus::Dictionary filter;
    for (auto& entry : everyReport(strength_)) {
        const bool known = std::ranges::find(*understood_, entry.first) != understood_->end();
        if (understood_->empty() || known) filter.push_back(std::move(entry));
    }
    call(meanwhile, "SetDiscoveryFilter", {std::move(filter)}, std::move(answer));
}

void Discovery::call(State meanwhile, const std::string& member,
                     std::vector<dbus::Argument> arguments,
                     std::function<void(const dbus::Message&)> answer) {
    state_ = meanwhile;
    answer_ = bus_.call({.destination = "org.bluez",
                         .path = adapter_,
                         .interface = "org.bluez.Adapter1",
                         .member = member,
                         .arguments = std::move(arguments)},
                        std::move(answer));
}

void Discovery::settle(State state) {
    state_ = state;
    proceed();
}

void Discovery::refused(const std::string& error) {
    state_ = State::off;
    if (error == "org.freedesktop.DBus.Error.AccessDenied") return listener_.discoveryDenied();
    state_ = State::refused;
    retry_ = scheduler_.after(nextRetry_, [this] {
        retry_.reset();
        settle(State::off);
    });
    if (++refusals_ >= quickRetries) nextRetry_ = std::min(nextRetry_ * 2, longestRetry);
}

} // namespace wegslot::bluez

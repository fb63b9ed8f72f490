#include "platform/linux/idle/idle_watch.h"

#include <algorithm>
#include <utility>

#include <wayland-client.h>

namespace wegslot {
namespace {

/// The first version in which a seat can be given back.
constexpr std::uint32_t seatVersion = WL_SEAT_RELEASE_SINCE_VERSION;

void giveBack(wl_seat* seat) {
    wl_seat_get_version(seat) < seatVersion ? wl_seat_destroy(seat) : wl_seat_release(seat);
}

} // namespace

const wl_registry_listener IdleWatch::listener{
    .global =
        [](void* self, wl_registry*, std::uint32_t number, const char* interface,
           std::uint32_t version) {
            static_cast<IdleWatch*>(self)->offered(number, interface, version);
        },
    .global_remove =
        [](void* self, wl_registry*, std::uint32_t number) {
            static_cast<IdleWatch*>(self)->withdrawn(number);
        }};

IdleWatch::IdleWatch(wl_display* display, const Clock& clock)
    : clock_(clock),
      registry_(wl_display_get_registry(display)) {
    wl_registry_add_listener(registry_, &listener, this);
}

IdleWatch::~IdleWatch() {
    seats_.clear();
    protocol_.reset();
    wl_registry_destroy(registry_);
}

std::optional<std::string> IdleWatch::protocol() const {
    return protocol_ ? std::optional(kinds_[offers_.at(*chosen_).kind].name) : std::nullopt;
}

std::optional<Nanoseconds> IdleWatch::idleTime() const {
    std::optional<Nanoseconds> shortest;
    if (!protocol_) return shortest;
    for (const auto& [number, seat] : seats_) {
        const auto idle = seat.idle.idleTime(clock_.now());
        if (idle) shortest = std::min(*idle, shortest.value_or(*idle));
    }
    return shortest;
}

void IdleWatch::offered(std::uint32_t number, const std::string& interface, std::uint32_t version) {
    if (interface == wl_seat_interface.name) {
        auto* const proxy = static_cast<wl_seat*>(wl_registry_bind(
            registry_, number, &wl_seat_interface, std::min(version, seatVersion)));
        if (proxy == nullptr) return;
        watch(seats_.try_emplace(number, Seat{{proxy, giveBack}, {clock_.now(), false}, {}})
                  .first->second);
        return;
    }
    const auto kind = std::ranges::find(kinds_, interface, &IdleProtocolKind::interface);
    if (kind == kinds_.end()) return;
    offers_[number] = {static_cast<std::size_t>(kind - kinds_.begin()), version};
    chooseProtocol();
}

void IdleWatch::withdrawn(std::uint32_t number) {
    seats_.erase(number);
    if (offers_.erase(number) != 0) chooseProtocol();
}

void IdleWatch::chooseProtocol() {
    const auto best =
        std::ranges::min_element(offers_, {}, [](const auto& offer) { return offer.second.kind; });
    const auto choice = best == offers_.end() ? std::nullopt : std::optional(best->first);
    if (choice == chosen_) return;
    chosen_ = choice;
    for (auto& [number, seat] : seats_)
        seat.notification.reset();
    protocol_.reset();
    if (choice)
        protocol_ = kinds_[best->second.kind].bind(registry_, *choice, best->second.version);
    for (auto& [number, seat] : seats_)
        watch(seat);
}

void IdleWatch::watch(Seat& seat) {
    seat.idle = {clock_.now(), canBeHeldUp()};
    if (!protocol_) return;
    seat.notification =
        protocol_->watch(seat.proxy.get(), SeatIdle::timeout,
                         {.idle = [this, &seat] { seat.idle.becameIdle(clock_.now()); },
                          .active = [this, &seat] { seat.idle.becameActive(clock_.now()); }});
}

} // namespace wegslot

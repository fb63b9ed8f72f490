// What one connection to a compositor reports about idleness: the protocol it offers, the seats
// that come and go, and how long each has been untouched. Lives as long as its connection.
#pragma once

#include "base/clock.h"
#include "platform/linux/idle/idle_protocol.h"
#include "platform/linux/idle/seat_idle.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>

struct wl_display;
struct wl_registry;
struct wl_registry_listener;
struct wl_seat;

namespace wegslot {

class IdleWatch {
public:
    /// Both must outlive this.
    IdleWatch(wl_display* display, const Clock& clock);
    IdleWatch(const IdleWatch&) = delete;
    IdleWatch& operator=(const IdleWatch&) = delete;
    ~IdleWatch();

    /// The protocol in use, as people know it; nothing when the compositor offers none.
    [[nodiscard]] std::optional<std::string> protocol() const;

    /// Whether there is a protocol, and a seat to watch by it.
    [[nodiscard]] bool isWatching() const { return protocol_ != nullptr && !seats_.empty(); }

    /// Whether a film can make the idle time unknown; see `IdleProtocol`.
    [[nodiscard]] bool canBeHeldUp() const { return protocol_ && protocol_->canBeHeldUp(); }

    /// Since any seat was touched; nothing without a protocol or without seats, or where a film may
    /// be all that there is.
    [[nodiscard]] std::optional<Nanoseconds> idleTime() const;

private:
    struct Offer {
        std::size_t kind; ///< in `kinds_`
        std::uint32_t version;
    };
    struct Seat {
        std::unique_ptr<wl_seat, void (*)(wl_seat*)> proxy;
        SeatIdle idle;
        std::unique_ptr<IdleNotification> notification;
    };

    static const wl_registry_listener listener;

    void offered(std::uint32_t number, const std::string& interface, std::uint32_t version);
    void withdrawn(std::uint32_t number);
    void chooseProtocol();
    void watch(Seat& seat);

    const Clock& clock_;
    const std::array<IdleProtocolKind, 2> kinds_{extIdleNotify(), kwinIdle()}; ///< best first
    wl_registry* registry_;
    std::map<std::uint32_t, Offer> offers_;
    std::optional<std::uint32_t> chosen_; ///< in `offers_`
    std::unique_ptr<IdleProtocol> protocol_;
    std::map<std::uint32_t, Seat> seats_;
};

} // namespace wegslot

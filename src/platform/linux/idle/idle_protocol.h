// The Wayland protocols by which a compositor reports that a seat (a keyboard and mouse) has not
// been touched for a while: one class each, behind one interface. A connection binds one of them
// and watches every seat through it.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

struct wl_registry;
struct wl_seat;

namespace wegslot {

/// Watches one seat for as long as it lives.
class IdleNotification {
public:
    IdleNotification() = default;
    IdleNotification(const IdleNotification&) = delete;
    IdleNotification& operator=(const IdleNotification&) = delete;
    virtual ~IdleNotification() = default;
};

class IdleProtocol {
public:
    struct Told {
        std::function<void()> idle;   ///< untouched for the whole timeout
        std::function<void()> active; ///< touched again
    };

    IdleProtocol() = default;
    IdleProtocol(const IdleProtocol&) = delete;
    IdleProtocol& operator=(const IdleProtocol&) = delete;
    virtual ~IdleProtocol() = default;

    /// The time begins now, and at each touch. Null when it cannot be asked.
    [[nodiscard]] virtual std::unique_ptr<IdleNotification>
    watch(wl_seat* seat, std::chrono::milliseconds timeout, Told told) = 0;

    /// Whether a film, or whatever else inhibits idling, keeps `idle` from being told although
    /// nobody touches the seat.
    [[nodiscard]] virtual bool canBeHeldUp() const = 0;
};

/// How a protocol is found in the list of what a compositor offers.
struct IdleProtocolKind {
    std::string interface;
    std::string name; ///< as people know it
    std::unique_ptr<IdleProtocol> (*bind)(wl_registry*, std::uint32_t number,
                                          std::uint32_t version);
};

[[nodiscard]] IdleProtocolKind extIdleNotify();
[[nodiscard]] IdleProtocolKind kwinIdle();

} // namespace wegslot

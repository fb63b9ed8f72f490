// A bluetoothd with devices that live, in virtual time: they advertise while discovery is on, take
// connections, have services and lose links, and it tells of it in the order in which the real
// one does. What no order of events can show, a test plays on the `LookAlikeBluez` within.
#pragma once

#include "base/delayed_calls.h"
#include "tests/support/device_spec.h"
#include "tests/support/look_alike_bluez.h"
#include "tests/support/look_alike_links.h"

#include <functional>
#include <map>
#include <optional>
#include <string>

namespace wegslot {

class LivingBluez {
public:
    using Number = unsigned; ///< of a device

    /// A scan's first report comes this long after it was asked for.
    static constexpr Nanoseconds startUp = std::chrono::milliseconds{150};
    /// The daemon gives a connection up after this time.
    static constexpr Nanoseconds connectLimit = std::chrono::seconds{40};
    /// From the advertisement that it was waited for to the link.
    static constexpr Nanoseconds connectTime = std::chrono::milliseconds{50};
    static constexpr Nanoseconds serviceTime = std::chrono::milliseconds{300};
    /// It waits before it ends a link, and was seen to take 1.9 to 2.8 s.
    static constexpr Nanoseconds disconnectTime = std::chrono::seconds{2};
    /// A device without a bond is forgotten when it was silent for this long.
    static constexpr Nanoseconds temporary = std::chrono::seconds{30};

    LivingBluez(BusLoop& loop, LookAlikeLinks& links);
    ~LivingBluez();
    LivingBluez(const LivingBluez&) = delete;
    LivingBluez& operator=(const LivingBluez&) = delete;

    void setPowered(bool powered);

    /// A device that is silent. A bonded one is known from the start.
    Number add(const DeviceSpec& spec);
    void speak(Number number);
    void silence(Number number);
    /// `code`: of the Bluetooth Core Specification (5.4, volume 1, part F).
    void dropLink(Number number, std::uint8_t code);
    /// A bond with a device whose address changes: its object gets the address of its identity.
    void bond(Number number);

    /// The address that it is known by, and its kind.
    [[nodiscard]] const std::string& address(Number number) const;
    [[nodiscard]] const char* addressType(Number number) const;

    LookAlikeBluez bluez;

private:
    struct Device {
        DeviceSpec spec;
        std::string address;
        std::string path; ///< stays when the address becomes another
        std::string pathAddress;
        bool speaks = false;
        bool announced = false;
        bool reported = false; ///< in this scan
        bool connected = false;
        sd_bus_message* connecting = nullptr; ///< the call to be answered
        Timer advertising;
        Timer linking;
        Timer giveUp;
        Timer expiry;
    };

    void answerCalls();
    [[nodiscard]] Device* at(sd_bus_message* call, const std::string& below);
    void connect(Device& device, sd_bus_message* call);
    void disconnect(Device& device, sd_bus_message* call);
    void advertise(Device& device);
    void announce(Device& device, bool heard);
    void report(Device& device);
    void linkComes(Device& device);
    void linkGoes(Device& device, std::uint8_t code);
    void resolveServices(Device& device);
    void answerConnect(Device& device, const std::string& error);
    void forget(Device& device);

    BusLoop& loop_;
    LookAlikeLinks& links_;
    bool powered_ = false;
    std::optional<TimePoint> listeningFrom_;
    std::map<Number, Device> devices_; ///< stay where they are
    DelayedCalls delayed_{loop_.time};
};

} // namespace wegslot

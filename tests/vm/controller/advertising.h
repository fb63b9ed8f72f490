// What the kernel has the controller advertise: a handful of sets, each with its data, that are on
// or off by themselves. The older commands know one set, which has no number. It knows no time but
// the one it is handed.
#pragma once

#include <map>
#include <optional>
#include <vector>

#include "address.h"
#include "h4.h"
#include "time_point.h"

namespace controller {

/// The number of a set, or that of the older commands' one set, which no set can have.
using SetHandle = std::uint16_t;
inline constexpr SetHandle olderSet = 0x100;

struct AdvertisingSet {
    bool isConnectable = false;
    /// Whether who asks is given `response` as well.
    bool isScannable = false;
    AddressType ownType = AddressType::Public;
    /// Of this set alone; the older one's is the controller's.
    Address randomAddress{.type = AddressType::Random};
    Bytes data;
    Bytes response;
    bool isOn = false;
    /// For how long it is to be on; nothing for ever.
    std::optional<Duration> duration;
    /// When that is over; known once time has been seen to pass.
    std::optional<TimePoint> end;
};

/// How the kernel is to be able to advertise.
struct AdvertisingAbility {
    enum class Commands : std::uint8_t { Older, Extended };

    Commands commands = Commands::Older;
    /// How many sets there are with the extended commands.
    std::uint8_t sets = 4;
    /// Every wish to go on the air is refused.
    bool refuses = false;
};

class Advertising {
public:
    using Sets = std::map<SetHandle, AdvertisingSet>;

    const Sets& sets() const { return sets_; }

    /// Null if there is none of this number.
    AdvertisingSet* find(SetHandle handle);

    /// Made if there is none of this number.
    AdvertisingSet& at(SetHandle handle) { return sets_[handle]; }

    void remove(SetHandle handle) { sets_.erase(handle); }

    void clear() { sets_.clear(); }

    bool isOn() const;

    /// The first that takes connections now; `olderSet`'s number or another. Nothing if none does.
    std::optional<SetHandle> connectable() const;

    /// When `passTime` is to be called next.
    std::optional<TimePoint> due() const;

    /// Switches off the sets whose time is over, and gives their numbers.
    std::vector<SetHandle> passTime(TimePoint now);

private:
    Sets sets_;
};

} // namespace controller

// A bluetoothd for measuring: one adapter, a room full of devices, and as many reports a second as
// asked for. Lean, so that what it costs is little beside what it measures. The first three devices
// are the keys: each reports once a second, strong enough to be near; the others share the rest.
// Whoever owns a loop watches `fd` for `events` until `untilNext` and calls `turn`.
#pragma once

#include <array>
#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <random>
#include <string>
#include <vector>

struct sd_bus;
struct sd_bus_message;

namespace wegslot::bench {

class CrowdRadio {
public:
    using Clock = std::chrono::steady_clock;

    /// Takes BlueZ's name on the system bus that the environment names.
    explicit CrowdRadio(std::size_t devices);
    CrowdRadio(const CrowdRadio&) = delete;
    CrowdRadio& operator=(const CrowdRadio&) = delete;
    ~CrowdRadio();

    /// Reports a second from now on; 0 for silence. The gaps between them are those of chance.
    void setRate(unsigned perSecond);
    /// Reports only while somebody discovers, as BlueZ does when nobody else scans.
    void setGate(bool gated) { gated_ = gated; }
    /// So many devices a second go, and come back under another address.
    void setRenewal(unsigned perSecond);

    /// The reports that were sent so far.
    [[nodiscard]] std::uint64_t sent() const { return sent_; }
    [[nodiscard]] sd_bus* bus() const { return bus_; }

    /// Told when somebody starts discovery.
    std::function<void()> onDiscovery;

    [[nodiscard]] int fd() const;
    [[nodiscard]] short events() const;
    [[nodiscard]] std::optional<std::chrono::nanoseconds> untilNext() const;
    /// Handles what came in and sends what is due.
    void turn();

private:
    struct Device {
        std::string address;
        const char* addressType;
        std::string path;
        bool hasMakerData;
        int strength;          ///< in dBm, around which its reports lie
        bool reported = false; ///< since discovery started
    };

    static int received(sd_bus_message* message, void* self, void* error);
    [[nodiscard]] Device stranger(std::uint32_t number) const;
    bool answer(sd_bus_message* call);
    void answerObjects(sd_bus_message* call) const;
    void setDiscovering(bool discovering);
    void advertise(Clock::time_point due);
    void report(Device& device);
    void renewOne();

    static constexpr std::size_t keys = 3;
    static constexpr std::chrono::seconds keyInterval{1};

    sd_bus* bus_ = nullptr;
    std::vector<Device> devices_;
    std::array<Clock::time_point, keys> keyDue_{};
    std::size_t nextStranger_ = keys;
    std::size_t nextRenewed_ = keys;
    std::uint32_t strangers_ = 0;
    unsigned rate_ = 0;
    unsigned renewal_ = 0;
    Clock::time_point due_;
    Clock::time_point renewalDue_;
    std::uint64_t sent_ = 0;
    bool gated_ = false;
    bool discovering_ = false;
    std::mt19937 chance_{1}; // the same room every time
};

} // namespace wegslot::bench

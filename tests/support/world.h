// The whole core on a world that a test owns: virtual time, a radio that does as told, a screen,
// a user. A test tells what happens and reads what came of it.
#pragma once

#include "base/virtual_time.h"
#include "core/app_model.h"
#include "stage/staged_central.h"
#include "stage/staged_platform.h"
#include "tests/support/captured_log.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <optional>

#include <string>
#include <utility>
#include <vector>

namespace wegslot {

/// A device whose id reads as `number` at its end.
inline Uuid numbered(unsigned number) {
    Uuid id;
    for (std::size_t i = 0; i < 4; ++i)
        id.bytes[15 - i] = static_cast<std::uint8_t>(number >> (8 * i));
    return id;
}

/// A key of the maker's, threshold -75 dBm.
inline KeyDevice keyNamed(std::string name, unsigned number) {
    return {.id = numbered(number),
            .name = std::move(name),
            .model = std::nullopt,
            .isApple = true,
            .threshold = Dbm{-75}};
}

/// Manufacturer data of the maker with one message of `type`.
inline std::vector<std::uint8_t> appleData(std::uint8_t type) { return {0x4C, 0x00, type, 0x00}; }

class World {
public:
    static constexpr TimePoint start =
        std::chrono::sys_days{std::chrono::year{2026} / 11 / 15} + std::chrono::hours{12};

    World() {
        central.onCall([this](std::string_view operation, const Uuid* id) {
            calls.push_back(std::string(operation) +
                            (id == nullptr ? "" : " " + std::to_string(id->bytes[15])));
        });
    }

    /// Makes the core with `keys` stored, starts its clock and turns the radio on.
    AppModel& run(const std::vector<KeyDevice>& keys = {}) {
        model.emplace(surroundings());
        if (!keys.empty()) model->settings().keys.set(keys);
        static_cast<void>(model->monitor());
        central.setState(CentralState::poweredOn);
        return *model;
    }

    [[nodiscard]] AppModel::Surroundings surroundings() {
        return {store, central, platform.ports, [this] {
                    return std::make_unique<StagedHud>([this](const Warning* shown) {
                        warning = shown == nullptr ? std::nullopt : std::optional(*shown);
                    });
                }};
    }

    [[nodiscard]] Settings& settings() { return model->settings(); }

    [[nodiscard]] Scanner& scanner() { return model->scanner(); }

    [[nodiscard]] Monitor& monitor() { return model->monitor(); }

    [[nodiscard]] const Phase& phase() { return monitor().phase().get(); }

    [[nodiscard]] std::string phaseName() { return std::string(name(phase())); }

    /// One advertisement of an unnamed foreign device, as a key sends it.
    void hear(unsigned number, int rssi) {
        central.advertise({.id = numbered(number), .rssi = rssi});
    }

    /// One advertisement of a device of the maker.
    void hearApple(unsigned number, int rssi, std::uint8_t type = 0x10,
                   std::optional<std::string_view> name = {}) {
        const auto data = appleData(type);
        central.advertise({.id = numbered(number),
                           .rssi = rssi,
                           .peripheralName = name,
                           .manufacturerData = data,
                           .localName = {}});
    }

    /// Passes `seconds`, the device heard at the start of each with `rssi`.
    void keepHearing(unsigned number, int rssi, int seconds) {
        for (int second = 0; second < seconds; ++second) {
            hear(number, rssi);
            time.advance(std::chrono::seconds{1});
        }
    }

    void pass(Nanoseconds duration) { time.advance(duration); }

    [[nodiscard]] std::vector<std::string> takeCalls() { return std::exchange(calls, {}); }

    [[nodiscard]] bool logged(std::string_view message) const {
        return std::ranges::find(log.messages, message) != log.messages.end();
    }

    [[nodiscard]] auto timesLogged(std::string_view message) const {
        return std::ranges::count(log.messages, message);
    }

    VirtualTime time{start};
    CapturedLog log;
    MemoryStore store;
    StagedCentral central;
    int locks = 0;
    std::function<void()> onLock; ///< told of each request, too
    StagedPlatform platform{time, time, [this] {
                                ++locks;
                                if (onLock) onLock();
                            }};
    StagedSession& session = platform.session;
    StagedActivity& activity = platform.activity;
    std::optional<Warning> warning; ///< the panel that is showing
    std::vector<std::string> calls; ///< "connect 7": operation and last byte of the id
    std::optional<AppModel> model;
};

} // namespace wegslot

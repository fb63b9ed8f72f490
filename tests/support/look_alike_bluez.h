// A bluetoothd that a test plays: adapters, devices, discovery, and reports of any quality.
#pragma once

#include "tests/support/look_alike.h"

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace wegslot {

/// Of a device, where any will do.
inline constexpr auto someAddress = "AA:BB:CC:DD:EE:01";

class LookAlikeBluez {
public:
    using ManufacturerData = std::map<std::uint16_t, std::vector<std::uint8_t>>;
    using Value = std::variant<bool, std::int16_t, std::string, std::vector<std::string>,
                               ManufacturerData, double>;
    using Properties = std::map<std::string, Value>;

    static constexpr auto adapterPath = "/org/bluez/hci0";

    explicit LookAlikeBluez(BusLoop& loop);

    /// An adapter that is on. Announced when the daemon is there already.
    void addAdapter(const std::string& path = adapterPath, bool powered = true,
                    const Properties& further = {});
    void removeAdapter(const std::string& path = adapterPath);
    void setPowered(bool powered, const std::string& path = adapterPath);
    void changeAdapter(const Properties& changed, const std::string& path = adapterPath);
    [[nodiscard]] const Properties& adapter(const std::string& path = adapterPath) {
        return adapters_[path];
    }

    /// A device with `address`, announced with `rssi` if there is one.
    void addDevice(const std::string& address, std::optional<std::int16_t> rssi = {},
                   Properties further = {}, const std::string& adapter = adapterPath);
    void removeDevice(const std::string& address, const std::string& adapter = adapterPath);

    /// An object of any other interface, at any path.
    void addObject(const std::string& path, const std::string& interface,
                   const Properties& properties);
    void changeObject(const std::string& path, const std::string& interface,
                      const Properties& changed);
    void removeObject(const std::string& path, const std::string& interface);

    /// A report of a device that was added.
    void report(const std::string& address, std::int16_t rssi, Properties further = {},
                const std::string& adapter = adapterPath);
    void changeDevice(const std::string& address, const Properties& changed,
                      const std::string& adapter = adapterPath);
    /// Its strength is of no more use, as at the end of discovery.
    void invalidateStrength(const std::string& address, const std::string& adapter = adapterPath);

    [[nodiscard]] static std::string pathOf(const std::string& address,
                                            const std::string& adapter = adapterPath);

    /// As a kill: everything is forgotten, the name goes.
    void vanish();
    void appear() { service.appear(); }

    /// Whether a discovery session stands.
    [[nodiscard]] bool isDiscovering() const { return discovering_; }

    /// Told when the controller begins to scan, also anew: discovery starts, or its filter is
    /// another.
    std::function<void()> onScan;
    /// Told when discovery ends.
    std::function<void()> onScanEnd;

    /// The filter that was set last.
    [[nodiscard]] const Properties& filter() const { return filter_; }

    /// Errors to answer with; empty for success.
    std::string objectsError;
    std::string filterError;
    std::string discoveryError;
    /// What GetDiscoveryFilters lists.
    std::vector<std::string> understood{"UUIDs", "RSSI", "Transport", "DuplicateData", "Pattern"};

    LookAlike service;

private:
    void answerObjects(sd_bus_message* call);
    void rememberFilter(sd_bus_message* call);
    void setDiscovering(bool discovering);
    void changed(const std::string& path, const char* interface, const Properties& properties,
                 const char* invalidated = nullptr);

    std::map<std::string, Properties> adapters_;
    std::map<std::string, Properties> devices_;
    std::map<std::string, std::map<std::string, Properties>> objects_; ///< others, by interface
    Properties filter_;
    bool discovering_ = false;
};

} // namespace wegslot

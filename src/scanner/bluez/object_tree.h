// A mirror of BlueZ's objects: its adapters and devices, as its properties tell. Fed with
// messages of any quality; what is missing or wrongly typed counts as not said.
#pragma once

#include "base/uuid.h"
#include "dbus/message.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace wegslot::bluez {

/// What is followed of an org.bluez.Adapter1.
struct Adapter {
    bool powered = false;
    /// Absent before BlueZ 5.73, where it is experimental.
    std::optional<std::string> powerState;
    /// Whether it can scan for and connect to low-energy devices. BlueZ before 5.52 does not say.
    bool isCentral = true;
    friend bool operator==(const Adapter&, const Adapter&) = default;
};

/// What is followed of an org.bluez.Device1.
struct Device {
    std::string address;
    std::string addressType = "public";
    std::optional<std::string> name;
    std::optional<Uuid> id; ///< from address and type, once the address is known
    bool changing = false;  ///< the address is a private one that nothing resolves
};

/// What one message said of a device, besides what the mirror keeps.
struct DeviceNews {
    std::optional<int> rssi;
    /// With the company's two bytes put back in front.
    std::optional<std::vector<std::uint8_t>> manufacturerData;
    /// The identifier before, when the message changed it.
    std::optional<Uuid> formerId;
};

class ObjectTree {
public:
    [[nodiscard]] const std::map<std::string, Adapter, std::less<>>& adapters() const {
        return adapters_;
    }
    [[nodiscard]] const Device* device(std::string_view path) const;
    [[nodiscard]] const std::unordered_map<std::string, Device>& devices() const {
        return devices_;
    }

    /// Reads an interface's properties (a{sv}) into the adapter at `path`.
    void readAdapter(std::string_view path, dbus::Reader& properties);

    /// Likewise into the device at `path`.
    DeviceNews readDevice(std::string_view path, dbus::Reader& properties);

    void removeAdapter(std::string_view path);
    void removeDevice(std::string_view path);
    void clear();

private:
    std::map<std::string, Adapter, std::less<>> adapters_;
    std::unordered_map<std::string, Device> devices_;
};

} // namespace wegslot::bluez

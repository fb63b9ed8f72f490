// What a person does at the desktop's Bluetooth page, on the real bluetoothd: the adapter's switch,
// pairing a device, forgetting it. Each waits until it is done, and throws when it is not.
#pragma once

#include <string>

struct sd_bus;

namespace wegslot {

class BluezDaemon {
public:
    BluezDaemon();
    ~BluezDaemon();
    BluezDaemon(const BluezDaemon&) = delete;
    BluezDaemon& operator=(const BluezDaemon&) = delete;

    void setPowered(bool powered);

    /// Bonds with the device that advertises under `address`; not connected afterwards.
    void pair(const std::string& address);

    /// With its bond; nothing for one that BlueZ does not know.
    void removeDevice(const std::string& address);

private:
    /// The device's path, empty when there is none. After a bond the path keeps the former address.
    std::string pathOf(const std::string& address);
    void call(const std::string& path, const char* interface, const char* member);
    bool flag(const std::string& path, const char* interface, const char* property);
    void setDiscovering(bool discovering);

    sd_bus* bus_ = nullptr;
};

} // namespace wegslot

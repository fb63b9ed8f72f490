// The GATT services and characteristics that BlueZ has found on devices, by their object paths: a
// service's path lies under its device's, a characteristic's under its service's. Only those with
// an assigned number are kept.
#pragma once

#include "dbus/message.h"
#include "scanner/bluetooth_central.h"

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace wegslot::bluez {

class GattTree {
public:
    /// Reads the properties of a service or of a characteristic at `path`.
    void readService(std::string_view path, dbus::Reader& properties);
    void readCharacteristic(std::string_view path, dbus::Reader& properties);

    /// Whatever is at `path`.
    void remove(std::string_view path);
    void clear();

    [[nodiscard]] std::vector<GattUuid> services(std::string_view device) const;
    [[nodiscard]] std::vector<GattUuid> characteristics(std::string_view device,
                                                        GattUuid service) const;

    /// The path of the first such characteristic on the device; empty when there is none.
    [[nodiscard]] std::string characteristic(std::string_view device, GattUuid number) const;

private:
    using Numbers = std::map<std::string, GattUuid, std::less<>>;

    static void read(Numbers& numbers, std::string_view path, dbus::Reader& properties);

    Numbers services_;
    Numbers characteristics_;
};

} // namespace wegslot::bluez

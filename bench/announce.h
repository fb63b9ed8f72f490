// What an empty program does so that its start can be seen from outside: takes a name on the bus,
// then asks the radio to discover, the least that any program has to do for a working scan.
#pragma once

#include <systemd/sd-bus.h>

namespace wegslot::bench {

/// The connection, which must stay open; null when there is none.
inline sd_bus* announce(const char* name) {
    sd_bus* bus = nullptr;
    if (sd_bus_open_user(&bus) < 0) return nullptr;
    if (sd_bus_request_name(bus, name, 0) < 0) return nullptr;
    sd_bus_call_method(bus, "org.bluez", "/org/bluez/hci0", "org.bluez.Adapter1", "StartDiscovery",
                       nullptr, nullptr, "");
    return bus;
}

} // namespace wegslot::bench

// Listens on the system bus to what BlueZ says about its devices and hands it to the count. It
// never asks for discovery: what it hears is what others made BlueZ tell.
#pragma once

#include <systemd/sd-bus.h>

#include <memory>

#include "signal_count.h"

namespace counter {

struct CloseBus {
    void operator()(sd_bus* bus) const { sd_bus_flush_close_unref(bus); }
};

class BluezSignals {
public:
    explicit BluezSignals(SignalCount& count) : count_(count) {}

    /// These answer, like the library below them, a negative error number on failure.
    int connect();

    /// Deals with all that has arrived.
    int processArrived();

    /// Makes sure that what BlueZ has said until now has arrived, and deals with it.
    int drain();

    sd_bus* bus() const { return bus_.get(); }

private:
    static int onPropertiesChanged(sd_bus_message* message, void* self, sd_bus_error* error);
    static int onInterfacesAdded(sd_bus_message* message, void* self, sd_bus_error* error);
    int learnPresentDevices();

    SignalCount& count_;
    std::unique_ptr<sd_bus, CloseBus> bus_;
};

} // namespace counter

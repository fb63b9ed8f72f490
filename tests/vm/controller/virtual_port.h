// The kernel's end of the controller: /dev/vhci, where a program may be a Bluetooth controller.
// Open means plugged in.
#pragma once

#include <optional>
#include <string>

#include "bytes.h"
#include "descriptor.h"

namespace controller {

class VirtualPort {
public:
    /// What went wrong, if anything.
    std::optional<std::string> plug();

    void unplug() { device_.close(); }

    bool isPlugged() const { return device_.isOpen(); }

    /// For poll; negative while unplugged.
    int descriptor() const { return device_.number(); }

    /// The next packet that the kernel has sent; empty if there is none.
    Bytes read();

    /// What comes while the adapter is off is lost. Unplugs if the kernel takes no more: a test
    /// then sees a missing controller, not a silent one.
    void write(ByteView packet);

private:
    Descriptor device_;
};

} // namespace controller

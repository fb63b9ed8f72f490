#include "scanner/seen_device.h"

#include "scanner/advertisement.h"
#include "scanner/device_names.h"

namespace wegslot {

bool SeenDevice::isApple() const { return isAppleType(continuityType); }

Message SeenDevice::displayName() const {
    if (name && !name->empty()) return *name;
    if (model) return DeviceNames::friendly(*model);
    return isApple() ? message("Apple-apparaat") : message("Bluetooth-apparaat");
}

} // namespace wegslot

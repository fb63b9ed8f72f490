#include "scanner/radio_words.h"

namespace wegslot {

Message radioWords(CentralState state) {
    switch (state) {
    case CentralState::unsupported:
        return message("Bluetooth LE wordt niet ondersteund");
    case CentralState::unauthorized:
        return message("Geef Wegslot Bluetooth-toegang in Systeeminstellingen");
    case CentralState::poweredOff:
        return message("Bluetooth staat uit");
    case CentralState::poweredOn:
        return message("Bluetooth staat aan");
    case CentralState::unknown:
    case CentralState::resetting:
        break;
    }
    return message("Bluetooth wordt gestart");
}

Message withoutRadioService() { return message("Bluetooth draait niet op deze computer"); }

Message lentRadio() { return message("Bluetooth koppelt een toestel"); }

} // namespace wegslot

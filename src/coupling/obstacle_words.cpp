#include "coupling/obstacle_words.h"

#include "base/text.h"

namespace wegslot::coupling {

Message words(const Trouble& trouble) {
    switch (trouble.obstacle) {
    case Obstacle::noRadio:
        return message("Er is geen Bluetooth te vinden. Steek een adapter in of start de "
                       "Bluetooth-dienst, en probeer het opnieuw.");
    case Obstacle::off:
        return message("Bluetooth staat uit. Zet het aan en probeer het opnieuw.");
    case Obstacle::noPeripheral:
        return message("De Bluetooth van deze computer kan niet als randapparaat verschijnen, en "
                       "dus geen telefoon koppelen. Een andere adapter kan dat misschien wel.");
    case Obstacle::noRoom:
        return message("Andere programma's gebruiken alle plaats om zichtbaar te zijn. Sluit er "
                       "een, of zet Bluetooth uit en weer aan.");
    case Obstacle::denied:
        return message("Wegslot mag hier geen Bluetooth gebruiken. Wie deze computer beheert, kan "
                       "dat toestaan.");
    case Obstacle::discoverable:
        return message("Deze computer staat zichtbaar in de Bluetooth-instellingen. Sluit die "
                       "instellingen en probeer het opnieuw.");
    case Obstacle::failed:
        break;
    }
    return message("Bluetooth weigert: %1. Zet het uit en weer aan, en probeer het opnieuw.",
                   {printable(trouble.why)});
}

} // namespace wegslot::coupling

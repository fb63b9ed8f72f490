#include "gatt_profile.h"

#include <string_view>
#include <utility>

namespace controller {

namespace {

constexpr AttributeHandle accessAt = 0x0001;
constexpr AttributeHandle attributeAt = 0x0010;
constexpr AttributeHandle informationAt = 0x0020;
constexpr AttributeHandle batteryAt = 0x0030;
constexpr AttributeHandle interfaceAt = 0x0040;

constexpr unsigned appearanceUnknown = 0x0000;
constexpr unsigned appearanceMouse = 0x03C2;
constexpr std::uint8_t batteryPercent = 80;

/// What can be done with a characteristic.
constexpr unsigned canBeRead = 0x02;
constexpr unsigned canBeWrittenUnanswered = 0x04;
constexpr unsigned notifies = 0x10;
constexpr unsigned indicates = 0x20;

/// Three buttons and two axes, in the language of the HID specification.
constexpr std::uint8_t mouseReportMap[] = {
    0x05, 0x01, 0x09, 0x02, 0xA1, 0x01, 0x09, 0x01, 0xA1, 0x00,       // a mouse, a pointer
    0x05, 0x09, 0x19, 0x01, 0x29, 0x03, 0x15, 0x00, 0x25, 0x01,       // buttons 1 to 3, up or down
    0x95, 0x03, 0x75, 0x01, 0x81, 0x02, 0x95, 0x01, 0x75, 0x05, 0x81, // three bits, five unused
    0x03, 0x05, 0x01, 0x09, 0x30, 0x09, 0x31, 0x15, 0x81, 0x25, 0x7F, // x and y, -127 to 127
    0x75, 0x08, 0x95, 0x02, 0x81, 0x06, 0xC0, 0xC0};                  // a byte each

Bytes number(unsigned value) {
    Bytes bytes;
    append16(bytes, value);
    return bytes;
}

Bytes text(std::string_view value) { return {value.begin(), value.end()}; }

/// Adds one service, attribute by attribute.
class Service {
public:
    Service(AttributeTable& table, AttributeHandle first, unsigned type)
        : table_(table),
          next_(first) {
        add(static_cast<unsigned>(Declaration::PrimaryService), number(type));
    }

    void characteristic(unsigned type, unsigned properties, Bytes value,
                        Reading reading = Reading::Open) {
        Bytes declaration;
        append8(declaration, properties);
        append16(declaration, next_ + 1U);
        append16(declaration, type);
        add(static_cast<unsigned>(Declaration::Characteristic), std::move(declaration));
        const bool isWritten = (properties & canBeWrittenUnanswered) != 0;
        add(type, std::move(value), reading, isWritten ? Writing::Open : Writing::Never);
    }

    /// Lets the other side ask for the notifications of the last characteristic.
    void configuration() {
        constexpr unsigned clientConfiguration = 0x2902;
        add(clientConfiguration, number(0), Reading::Open, Writing::Open);
    }

    void descriptor(unsigned type, Bytes value) { add(type, std::move(value)); }

private:
    void add(unsigned type, Bytes value, Reading reading = Reading::Open,
             Writing writing = Writing::Never) {
        table_.add({.handle = next_++,
                    .type = static_cast<std::uint16_t>(type),
                    .value = std::move(value),
                    .reading = reading,
                    .writing = writing});
    }

    AttributeTable& table_;
    AttributeHandle next_;
};

void addInterface(AttributeTable& table) {
    Service interface(table, interfaceAt, 0x1812);
    interface.characteristic(0x2A4E, canBeRead | canBeWrittenUnanswered, {1}); // report protocol
    interface.characteristic(0x2A4B, canBeRead,
                             Bytes(std::begin(mouseReportMap), std::end(mouseReportMap)));
    interface.characteristic(0x2A4D, canBeRead | notifies, {0, 0, 0}); // a report, at rest
    interface.configuration();
    interface.descriptor(0x2908, {0, 1}); // that report is the only one, and input
    interface.characteristic(0x2A4A, canBeRead, {0x11, 0x01, 0, 0x02}); // HID 1.11, any country
    interface.characteristic(0x2A4C, canBeWrittenUnanswered, {0}, Reading::Never); // suspend
}

} // namespace

AttributeTable tableOf(const GattProfile& profile) {
    AttributeTable table;
    Service access(table, accessAt, 0x1800);
    access.characteristic(0x2A00, canBeRead, text(profile.name));
    access.characteristic(0x2A01, canBeRead,
                          number(profile.isMouse ? appearanceMouse : appearanceUnknown));
    Service attribute(table, attributeAt, 0x1801);
    attribute.characteristic(0x2A05, indicates, {}, Reading::Never); // services changed
    attribute.configuration();
    if (profile.model) {
        Service information(table, informationAt, 0x180A);
        information.characteristic(0x2A24, canBeRead, text(*profile.model));
    }
    if (profile.battery != Battery::None) {
        Service battery(table, batteryAt, 0x180F);
        const bool isProtected = profile.battery == Battery::Protected;
        battery.characteristic(0x2A19, canBeRead | notifies, {batteryPercent},
                               isProtected ? Reading::WhenEncrypted : Reading::Open);
        battery.configuration();
    }
    if (profile.isMouse) addInterface(table);
    return table;
}

} // namespace controller

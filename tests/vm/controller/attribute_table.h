// The attributes that a device serves, in the order of their handles. All types are 16-bit numbers
// assigned by the Bluetooth SIG; nothing else is needed.
#pragma once

#include <span>

#include "bytes.h"

namespace controller {

using AttributeHandle = std::uint16_t;

/// The types that the table itself is made of.
enum class Declaration : std::uint16_t { PrimaryService = 0x2800, Characteristic = 0x2803 };

enum class Reading : std::uint8_t { Open, WhenEncrypted, Never };
enum class Writing : std::uint8_t { Open, Never };

struct Attribute {
    AttributeHandle handle = 0;
    std::uint16_t type = 0;
    Bytes value;
    Reading reading = Reading::Open;
    Writing writing = Writing::Never;

    bool is(Declaration declaration) const {
        return type == static_cast<std::uint16_t>(declaration);
    }
};

/// Handles, both included.
struct HandleRange {
    AttributeHandle first = 0;
    AttributeHandle last = 0;
};

class AttributeTable {
public:
    /// Its handle is above those before it.
    void add(Attribute attribute);

    /// Null if there is none with this handle.
    Attribute* find(AttributeHandle handle);

    std::span<const Attribute> in(const HandleRange& range) const;

    /// The last handle of the service that starts with this one.
    AttributeHandle endOfService(AttributeHandle first) const;

private:
    std::vector<Attribute> attributes_;
};

} // namespace controller

// An object of ours on a bus: one interface with properties that are read on demand, methods that
// are answered at once, and signals. Introspection, property calls and the object manager come with
// it.
#pragma once

#include "base/handle.h"
#include "dbus/bus.h"
#include "dbus/message.h"
#include "dbus/writer.h"

#include <functional>
#include <string>
#include <vector>

namespace wegslot::dbus {

/// Whether a change of a property can be told of; see `emitInvalidated`.
enum class Telling { none, ofChanges };

struct Property {
    std::string name;
    std::string signature;
    std::function<void(Writer&)> write; ///< appends one value of the signature
    Telling telling = Telling::none;
};

struct Method {
    std::string name;
    std::string arguments; ///< signatures
    std::string results;
    std::function<void(const Message& call, Writer& answer)> answer;
};

struct Signal {
    std::string name;
    std::string arguments = {}; ///< signatures
};

struct Interface {
    std::string name;
    std::vector<Property> properties = {};
    std::vector<Method> methods = {};
    std::vector<Signal> signals = {};
};

/// Shows the interface at `path` until the handle ends, which must be before the bus does. An
/// ended handle if the path or a name is none.
[[nodiscard]] Subscription exportObject(Bus& bus, const std::string& path, Interface interface);

/// Sends a signal from the object at `path`; `fill` appends its arguments.
void emitSignal(Bus& bus, const std::string& path, const std::string& interface,
                const std::string& member, const Writer::Fill& fill = {});

/// Tells that these properties of a shown object have changed, without their values: whoever
/// cares reads them anew. Each must have been declared as one that tells.
void emitInvalidated(Bus& bus, const std::string& path, const std::string& interface,
                     const std::vector<std::string>& properties);

/// Has the object at `path` list the objects below it (org.freedesktop.DBus.ObjectManager).
[[nodiscard]] Subscription exportObjectManager(Bus& bus, const std::string& path);

} // namespace wegslot::dbus

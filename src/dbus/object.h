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

/// What can be told of a property that has changed; see `emitChanged`.
enum class Telling {
    none,
    ofChanges, ///< that it did: whoever cares reads it anew
    ofValues,  ///< what it is now
};

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

/// Tells, in one signal, that these properties of a shown object have changed. Each must have been
/// declared as one that tells, and those that tell their values are read for it.
void emitChanged(Bus& bus, const std::string& path, const std::string& interface,
                 const std::vector<std::string>& properties);

/// Has the object at `path` list the objects below it (org.freedesktop.DBus.ObjectManager).
[[nodiscard]] Subscription exportObjectManager(Bus& bus, const std::string& path);

} // namespace wegslot::dbus

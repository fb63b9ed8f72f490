// An object of ours on a bus: one interface with properties that are read when somebody asks and
// methods that are answered at once. Introspection, property calls and the object manager come
// with it.
#pragma once

#include "base/handle.h"
#include "dbus/bus.h"
#include "dbus/message.h"
#include "dbus/writer.h"

#include <functional>
#include <string>
#include <vector>

namespace wegslot::dbus {

struct Property {
    std::string name;
    std::string signature;
    std::function<void(Writer&)> write; ///< appends one value of the signature
};

struct Method {
    std::string name;
    std::string arguments; ///< signatures
    std::string results;
    std::function<void(const Message& call, Writer& answer)> answer;
};

struct Interface {
    std::string name;
    std::vector<Property> properties = {};
    std::vector<Method> methods = {};
};

/// Shows the interface at `path` until the handle ends, which must be before the bus does. An
/// ended handle if the path or a name is none.
[[nodiscard]] Subscription exportObject(Bus& bus, const std::string& path, Interface interface);

/// Has the object at `path` list the objects below it (org.freedesktop.DBus.ObjectManager).
[[nodiscard]] Subscription exportObjectManager(Bus& bus, const std::string& path);

} // namespace wegslot::dbus

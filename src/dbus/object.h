// An object of ours on a bus: one interface with properties that are read on demand, methods that
// are answered at once or when the answer is known, and signals. Introspection, property calls and
// the object manager come with it.
#pragma once

#include "base/handle.h"
#include "dbus/bus.h"
#include "dbus/message.h"
#include "dbus/writer.h"

#include <functional>
#include <string>
#include <utility>
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

/// A call that waits for its answer. One that is given up unanswered is answered with an error, so
/// that nobody waits in vain.
class Answer {
public:
    explicit Answer(sd_bus_message* call);
    Answer(Answer&& other) noexcept : call_(std::exchange(other.call_, nullptr)) {}
    Answer& operator=(Answer&& other) noexcept;
    Answer(const Answer&) = delete;
    Answer& operator=(const Answer&) = delete;
    ~Answer();

    /// `fill` appends the results of the method.
    void give(const Writer::Fill& fill = {});

    /// `error` is a name ("org.bluez.Error.Rejected"), `why` for a person.
    void refuse(const std::string& error, const std::string& why);

private:
    void end();

    sd_bus_message* call_; ///< null once it is answered
};

struct Method {
    std::string name;
    std::string arguments = {}; ///< signatures
    std::string results = {};
    /// Answers at once.
    std::function<void(const Message& call, Writer& answer)> answer = {};
    /// In its place, for what is answered later, or refused under an error's own name. The message
    /// is there until it returns.
    std::function<void(const Message& call, Answer answer)> answerLater = {};
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

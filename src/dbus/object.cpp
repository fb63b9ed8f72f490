#include "dbus/object.h"

#include <systemd/sd-bus.h>

#include <algorithm>
#include <cerrno>
#include <memory>
#include <string_view>
#include <utility>

namespace wegslot::dbus {
namespace {

/// What the C library points into for as long as the object is shown.
struct Exported {
    Interface interface;
    std::vector<sd_bus_vtable> table;
};

int getProperty(sd_bus*, const char*, const char*, const char* name, sd_bus_message* reply,
                void* data, sd_bus_error*) {
    const auto& properties = static_cast<Exported*>(data)->interface.properties;
    const auto found = std::ranges::find(properties, std::string_view(name), &Property::name);
    if (found == properties.end()) return -ENOENT;
    Writer writer(reply);
    found->write(writer);
    return writer.isWhole() ? 0 : -EINVAL;
}

using OwnedMessage = std::unique_ptr<sd_bus_message, decltype(&sd_bus_message_unref)>;

int callMethod(sd_bus_message* call, void* data, sd_bus_error* error) {
    const auto& methods = static_cast<Exported*>(data)->interface.methods;
    const std::string_view member = sd_bus_message_get_member(call);
    const auto found = std::ranges::find(methods, member, &Method::name);
    if (found == methods.end()) return -ENOENT;
    // Copies: answering may end the object.
    if (const auto answerLater = found->answerLater) {
        answerLater(Message{call}, Answer{call});
        return 1;
    }
    const auto answer = found->answer;
    sd_bus_message* reply = nullptr;
    if (const int result = sd_bus_message_new_method_return(call, &reply); result < 0)
        return result;
    const OwnedMessage owned(reply, sd_bus_message_unref);
    Writer writer(reply);
    answer(Message{call}, writer);
    if (!writer.refusal().empty())
        return sd_bus_error_set(error, SD_BUS_ERROR_INVALID_ARGS, writer.refusal().c_str());
    if (!writer.isWhole()) return -EINVAL;
    return sd_bus_send(nullptr, reply, nullptr) < 0 ? -EIO : 1;
}

sd_bus_vtable entryOf(const Property& property) {
    const char* const name = property.name.c_str();
    const char* const signature = property.signature.c_str();
    switch (property.telling) {
    case Telling::none:
        break;
    case Telling::ofChanges:
        return SD_BUS_PROPERTY(name, signature, getProperty, 0,
                               SD_BUS_VTABLE_PROPERTY_EMITS_INVALIDATION);
    case Telling::ofValues:
        return SD_BUS_PROPERTY(name, signature, getProperty, 0,
                               SD_BUS_VTABLE_PROPERTY_EMITS_CHANGE);
    }
    return SD_BUS_PROPERTY(name, signature, getProperty, 0, 0);
}

std::vector<sd_bus_vtable> tableOf(const Interface& interface) {
    std::vector<sd_bus_vtable> table;
    table.push_back(SD_BUS_VTABLE_START(0));
    for (const Property& property : interface.properties)
        table.push_back(entryOf(property));
    for (const Method& method : interface.methods)
        table.push_back(SD_BUS_METHOD(method.name.c_str(), method.arguments.c_str(),
                                      method.results.c_str(), callMethod,
                                      SD_BUS_VTABLE_UNPRIVILEGED));
    for (const Signal& signal : interface.signals)
        table.push_back(SD_BUS_SIGNAL(signal.name.c_str(), signal.arguments.c_str(), 0));
    table.push_back(SD_BUS_VTABLE_END);
    return table;
}

void destroyExported(void* data) {
    const std::unique_ptr<Exported> owned(static_cast<Exported*>(data));
}

} // namespace

Answer::Answer(sd_bus_message* call) : call_(sd_bus_message_ref(call)) {}

Answer& Answer::operator=(Answer&& other) noexcept {
    if (this == &other) return *this;
    end();
    call_ = std::exchange(other.call_, nullptr);
    return *this;
}

Answer::~Answer() { end(); }

void Answer::end() { refuse(SD_BUS_ERROR_FAILED, "given up"); }

void Answer::give(const Writer::Fill& fill) {
    if (call_ == nullptr) return;
    sd_bus_message* reply = nullptr;
    if (sd_bus_message_new_method_return(call_, &reply) < 0) return end();
    const OwnedMessage owned(reply, sd_bus_message_unref);
    Writer writer(reply);
    if (fill) fill(writer);
    if (!writer.isWhole()) return end();
    sd_bus_send(nullptr, reply, nullptr);
    sd_bus_message_unref(std::exchange(call_, nullptr));
}

void Answer::refuse(const std::string& error, const std::string& why) {
    if (call_ == nullptr) return;
    // Nothing is sent where nothing was asked to be answered, nor on a bus that has closed.
    sd_bus_reply_method_errorf(call_, error.c_str(), "%s", why.c_str());
    sd_bus_message_unref(std::exchange(call_, nullptr));
}

Subscription exportObject(Bus& bus, const std::string& path, Interface interface) {
    auto exported = std::make_unique<Exported>();
    exported->interface = std::move(interface);
    exported->table = tableOf(exported->interface);
    sd_bus_slot* slot = nullptr;
    if (sd_bus_add_object_vtable(bus.native(), &slot, path.c_str(),
                                 exported->interface.name.c_str(), exported->table.data(),
                                 exported.get()) < 0)
        return {};
    // An object that ends from within a call to it is still looked at when the call returns, so
    // what the library points into goes with its own entry and not before.
    sd_bus_slot_set_destroy_callback(slot, destroyExported);
    static_cast<void>(exported.release());
    sd_bus_emit_object_added(bus.native(), path.c_str());
    return Subscription{[slot, path, native = bus.native()] {
        sd_bus_emit_object_removed(native, path.c_str());
        sd_bus_slot_unref(slot);
    }};
}

void emitSignal(Bus& bus, const std::string& path, const std::string& interface,
                const std::string& member, const Writer::Fill& fill) {
    sd_bus_message* signal = nullptr;
    if (sd_bus_message_new_signal(bus.native(), &signal, path.c_str(), interface.c_str(),
                                  member.c_str()) < 0)
        return;
    const std::unique_ptr<sd_bus_message, decltype(&sd_bus_message_unref)> owned(
        signal, sd_bus_message_unref);
    Writer writer(signal);
    if (fill) fill(writer);
    if (writer.isWhole()) sd_bus_send(bus.native(), signal, nullptr);
}

void emitChanged(Bus& bus, const std::string& path, const std::string& interface,
                 const std::vector<std::string>& properties) {
    std::vector<std::string> names = properties; // the library takes a list that it may write to
    std::vector<char*> list;
    list.reserve(names.size() + 1);
    for (std::string& name : names)
        list.push_back(name.data());
    list.push_back(nullptr);
    sd_bus_emit_properties_changed_strv(bus.native(), path.c_str(), interface.c_str(), list.data());
}

Subscription exportObjectManager(Bus& bus, const std::string& path) {
    sd_bus_slot* slot = nullptr;
    if (sd_bus_add_object_manager(bus.native(), &slot, path.c_str()) < 0) return {};
    return Subscription{[slot] { sd_bus_slot_unref(slot); }};
}

} // namespace wegslot::dbus

#include "control/linux/control_service.h"

#include "base/text.h"
#include "control/linux/activation.h"
#include "dbus/caller.h"
#include "log/log.h"
#include "recording/linux/foreign_descriptor.h"

#include <optional>
#include <utility>

namespace wegslot {
namespace {

/// Appends fields of an a{sv}.
auto fieldsIn(dbus::Writer& entries) {
    return [&entries](const char* name, const char* signature, const dbus::Writer::Fill& write) {
        entries.entry("sv", [&](dbus::Writer& entry) {
            entry.text(name);
            entry.variant(signature, write);
        });
    };
}

void writeKey(dbus::Writer& entries, const control::Key& key) {
    const auto field = fieldsIn(entries);
    // What is no UTF-8 would spoil the whole answer.
    field("Name", "s", [&](dbus::Writer& value) { value.text(printable(key.name)); });
    field("State", "s", [&](dbus::Writer& value) { value.text(key.state); });
    if (key.rssi) field("Rssi", "d", [&](dbus::Writer& value) { value.real(key.rssi->value); });
    field("Threshold", "d", [&](dbus::Writer& value) { value.real(key.threshold.value); });
}

void writeDevice(dbus::Writer& entries, const control::Device& device) {
    const auto field = fieldsIn(entries);
    if (device.name)
        field("Name", "s", [&](dbus::Writer& value) { value.text(printable(*device.name)); });
    field("Kind", "s", [&](dbus::Writer& value) { value.text(printable(device.kind)); });
    if (device.rssi)
        field("Rssi", "d", [&](dbus::Writer& value) { value.real(device.rssi->value); });
    field("ChangesAddress", "b",
          [&](dbus::Writer& value) { value.boolean(device.changesAddress); });
}

void writeReason(dbus::Writer& value, const control::Reason& reason) {
    value.structure("sas", [&reason](dbus::Writer& fields) {
        fields.text(reason.code);
        fields.array("s", [&reason](dbus::Writer& list) {
            for (const std::string& argument : reason.arguments)
                list.text(printable(argument));
        });
    });
}

void writeKeys(dbus::Writer& value, const std::vector<control::Key>& keys) {
    value.array("{sa{sv}}", [&keys](dbus::Writer& list) {
        for (const control::Key& key : keys)
            list.entry("sa{sv}", [&key](dbus::Writer& entry) {
                entry.text(key.id);
                entry.array("{sv}", [&key](dbus::Writer& fields) { writeKey(fields, key); });
            });
    });
}

void writeNearby(dbus::Writer& answer, const control::Nearby& nearby) {
    answer.text(printable(nearby.radio));
    answer.boolean(nearby.includesOthers);
    answer.array("{sa{sv}}", [&nearby](dbus::Writer& list) {
        for (const control::Device& device : nearby.devices)
            list.entry("sa{sv}", [&device](dbus::Writer& entry) {
                entry.text(device.id);
                entry.array("{sv}",
                            [&device](dbus::Writer& fields) { writeDevice(fields, device); });
            });
    });
}

} // namespace

ControlService::ControlService(dbus::Connection& sessionBus, const control::Sources& sources,
                               Actions actions)
    : sources_(sources),
      phase_(sources.monitor.phase().get()),
      reason_(control::change(sources, phase_).reason),
      actions_(std::move(actions)) {
    phases_ = sources_.monitor.phase().onChange([this](const Phase& next) { phaseChanged(next); });
    persons_ = sources_.monitor.asked().onChange([this](const UserAction&) {
        if (!passing_) allowance_.renew();
    });
    connection_ = sessionBus.bus().follow([this](dbus::Bus* bus) { busChanged(bus); });
}

void ControlService::busChanged(dbus::Bus* bus) {
    shown_.reset();
    stopRecording();
    bus_ = bus;
    if (bus != nullptr) shown_ = dbus::exportObject(*bus, Activation::path, interface());
}

void ControlService::phaseChanged(const Phase& next) {
    const control::Change change = control::change(sources_, next);
    phase_ = next;
    reason_ = change.reason;
    if (bus_ == nullptr) return;
    // In this order: who follows the signal then knows all of the change.
    dbus::emitChanged(*bus_, Activation::path, control::interfaceName,
                      {"Phase", "Text", "Reason", "PausedUntil"});
    dbus::emitSignal(*bus_, Activation::path, control::interfaceName, "PhaseChanged",
                     [&change](dbus::Writer& arguments) {
                         arguments.text(change.phase);
                         arguments.text(printable(change.text));
                         arguments.text(printable(change.why));
                     });
}

control::Status ControlService::status() const {
    return control::status(sources_, phase_, reason_);
}

dbus::Interface ControlService::interface() {
    return {.name = control::interfaceName,
            .properties = properties(),
            .methods = methods(),
            .signals = {{"PhaseChanged", "sss"}}};
}

std::vector<dbus::Property> ControlService::properties() {
    using dbus::Telling;
    using dbus::Writer;
    return {
        {"Phase", "s", [this](Writer& value) { value.text(status().phase); }, Telling::ofValues},
        {"Text", "s", [this](Writer& value) { value.text(printable(status().text)); },
         Telling::ofValues},
        {"Reason", "(sas)", [this](Writer& value) { writeReason(value, status().reason); },
         Telling::ofValues},
        {"PausedUntil", "x",
         [this](Writer& value) { value.int64(status().pausedUntil.value_or(0)); },
         Telling::ofValues},
        {"Keys", "a{sa{sv}}", [this](Writer& value) { writeKeys(value, status().keys); }}};
}

std::vector<dbus::Method> ControlService::methods() {
    const auto bare = [this](const char* name, const char* what, std::function<void()>& action) {
        return dbus::Method{name, "", "",
                            [this, what, &action](const dbus::Message& call, dbus::Writer&) {
                                logRequest(what, call);
                                pass(action);
                            }};
    };
    return {
        bare("Lock", "Lock", actions_.lock),
        bare("Resume", "Hervatten", actions_.resume),
        bare("UpdateNow", "Bijwerken", actions_.updateNow),
        {"Devices", "b", "sba{sa{sv}}",
         [this](const dbus::Message& call, dbus::Writer& answer) {
             const bool others = call.read().boolean().value_or(false);
             writeNearby(answer, control::nearby(sources_.scanner, others));
         }},
        {"Pause", "u", "",
         [this](const dbus::Message& call, dbus::Writer& answer) { pause(call, answer); }},
        {"Record", "hb", "",
         [this](const dbus::Message& call, dbus::Writer& answer) { record(call, answer); }},
        {"ReadIdentities", "", "",
         [this](const dbus::Message& call, dbus::Writer& answer) { readIdentities(call, answer); }},
        {"Couple", "", "",
         [this](const dbus::Message& call, dbus::Writer& answer) { couple(call, answer); }}};
}

void ControlService::pause(const dbus::Message& call, dbus::Writer& answer) {
    const auto seconds = static_cast<std::uint32_t>(call.read().integer().value_or(0));
    if (const auto fault = control::pauseFault(seconds))
        return answer.refuse(fault->message.builtIn());
    const Nanoseconds granted =
        allowance_.granted(std::chrono::seconds{seconds}, sources_.clock.now());
    if (granted <= Nanoseconds{0})
        return answer.refuse(message("programma's hebben al vier uur lang laten pauzeren; "
                                     "een langere pauze kan in het paneel")
                                 .builtIn());
    const Seconds duration{granted};
    const auto whole = std::chrono::ceil<std::chrono::seconds>(granted).count();
    logRequest("Pauze van " + std::to_string(whole) + " s", call);
    pass([this, duration] { actions_.pause(duration); });
}

void ControlService::pass(const std::function<void()>& action) {
    passing_ = true;
    action();
    passing_ = false;
}

void ControlService::record(const dbus::Message& call, dbus::Writer& answer) {
    auto reader = call.read();
    // Before anything of it is touched: who gave it may have it hang.
    logRequest("Opname", call);
    const int file = takenOver(reader.descriptor().value_or(-1));
    const bool anonymous = reader.boolean().value_or(false);
    if (file < 0) return answer.refuse(message("geen bestand om in op te nemen").builtIn());
    const std::string caller(call.sender());
    if (const auto fault = actions_.record(file, anonymous))
        return answer.refuse(fault->message.builtIn());
    recordingFor_ = bus_->followOwner(caller, [this](const std::optional<std::string>& owner) {
        if (!owner) stopRecording();
    });
}

void ControlService::stopRecording() {
    if (!recordingFor_) return;
    recordingFor_.reset();
    actions_.stopRecording();
}

void ControlService::readIdentities(const dbus::Message& call, dbus::Writer& answer) {
    logRequest("Nieuwe identiteiten lezen", call);
    if (const auto fault = actions_.readIdentities()) answer.refuse(fault->message.builtIn());
}

/// It opens a window and no more, not even with the first question answered: who couples has the
/// radio listen to no key meanwhile, and that is for a person alone to begin.
void ControlService::couple(const dbus::Message& call, dbus::Writer& answer) {
    logRequest("Venster om te koppelen", call);
    if (const auto fault = actions_.couple()) answer.refuse(fault->message.builtIn());
}

void ControlService::logRequest(const std::string& what, const dbus::Message& call) {
    Log::write(what + " gevraagd door " + dbus::callerOf(*bus_, call));
}

} // namespace wegslot

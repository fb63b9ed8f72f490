#include "replay/replay_output.h"

#include "base/text.h"
#include "model/key_codec.h"
#include "scanner/device_names.h"
#include "trace/json_tree.h"

#include <utility>

namespace wegslot {
namespace {

std::string milliseconds(Nanoseconds duration) {
    const auto count = std::chrono::round<std::chrono::milliseconds>(duration).count();
    return decimal(static_cast<double>(count) / 1000.0);
}

// The further fields of a phase line.
struct Payload {
    TimePoint start;

    std::string operator()(const phase::BluetoothUnavailable& phase) const {
        return ",\"text\":" + jsonString(phase.text.builtIn());
    }

    std::string operator()(const phase::Paused& phase) const {
        return ",\"text\":" + jsonString(phase.text.builtIn());
    }

    std::string operator()(const phase::Snoozed& phase) const {
        return ",\"until\":" + milliseconds(phase.until - start);
    }

    std::string operator()(const phase::Warning& phase) const {
        return ",\"deadline\":" + milliseconds(phase.deadline - start);
    }

    std::string operator()(const auto&) const { return {}; }
};

} // namespace

ReplayOutput::ReplayOutput(std::function<void(std::string_view)> print, const VirtualTime& time)
    : print_(std::move(print)),
      time_(time),
      start_(time.now()) {}

void ReplayOutput::write(std::string_view message) { line("\"log\":" + jsonString(message)); }

void ReplayOutput::phase(const Phase& phase) {
    line("\"phase\":" + jsonString(name(phase)) + std::visit(Payload{start_}, phase));
}

void ReplayOutput::keyStates(const KeyStates& states) {
    if (states == printed_) return;
    printed_ = states;
    std::string list;
    for (const auto& [id, state] : states)
        list += (list.empty() ? "" : ",") + jsonString(id.text()) + ":" + jsonString(name(state));
    line("\"keyStates\":{" + list + "}");
}

void ReplayOutput::central(std::string_view operation, const Uuid* id) {
    line("\"central\":" + jsonString(operation) +
         (id == nullptr ? "" : ",\"id\":" + jsonString(id->text())));
}

void ReplayOutput::warning(const Warning* shown) {
    if (shown == nullptr) return line("\"warning\":\"hide\"");
    line("\"warning\":\"show\",\"message\":" + jsonString(shown->message) + ",\"deadline\":" +
         sinceStart(shown->deadline) + ",\"total\":" + decimal(shown->total.count()));
}

void ReplayOutput::lock() { line("\"lock\":true"); }

void ReplayOutput::snapshot(const std::vector<SeenDevice>& devices) {
    std::string list;
    for (const SeenDevice& entry : devices)
        list += (list.empty() ? "" : ",") + device(entry);
    line("\"snapshot\":[" + list + "]");
}

void ReplayOutput::keys(const std::vector<KeyDevice>& keys) {
    // Nothing that cannot be encoded comes out of a trace: its texts and numbers were JSON.
    line("\"keys\":" + encodeKeys(keys).value_or("null"));
}

void ReplayOutput::line(std::string_view rest) {
    std::string text = "{\"t\":" + sinceStart(time_.now()) + ",";
    text.append(rest).append("}\n");
    print_(text);
}

std::string ReplayOutput::sinceStart(TimePoint instant) const {
    return milliseconds(instant - start_);
}

std::string ReplayOutput::device(const SeenDevice& device) const {
    std::string text = "{\"id\":" + jsonString(device.id.text()) +
                       ",\"displayName\":" + jsonString(device.displayName().builtIn()) +
                       ",\"symbol\":" + jsonString(DeviceNames::symbol(device.name, device.model));
    if (device.name) text += ",\"name\":" + jsonString(*device.name);
    if (device.model) text += ",\"model\":" + jsonString(*device.model);
    if (device.continuityType) text += ",\"type\":" + std::to_string(*device.continuityType);
    if (device.rssi) text += ",\"rssi\":" + decimal(device.rssi->value);
    return text + ",\"lastSeen\":" + sinceStart(device.lastSeen) + "}";
}

} // namespace wegslot

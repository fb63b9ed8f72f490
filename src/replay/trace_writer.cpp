#include "replay/trace_writer.h"

#include "base/text.h"
#include "model/settings.h"
#include "replay/json_tree.h"
#include "replay/trace_names.h"
#include "scanner/model_identifier.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <span>
#include <string_view>
#include <utility>

namespace wegslot {
namespace {

using namespace trace;

std::string hexadecimal(std::uint32_t value, int digits) {
    constexpr std::string_view all = "0123456789ABCDEF";
    std::string text;
    for (int shift = 4 * (digits - 1); shift >= 0; shift -= 4)
        text += all[(value >> static_cast<unsigned>(shift)) & 0xFU];
    return text;
}

std::string text(const Uuid& id) { return jsonString(id.text()); }

std::string text(GattUuid uuid) {
    const auto value = static_cast<std::uint32_t>(uuid);
    return jsonString(hexadecimal(value, value > 0xFFFFU ? 8 : 4));
}

std::string text(std::span<const std::uint8_t> bytes) {
    std::string digits;
    for (const std::uint8_t byte : bytes)
        digits += hexadecimal(byte, 2);
    return jsonString(digits);
}

std::string text(const std::vector<GattUuid>& list) {
    std::string entries;
    for (const GattUuid entry : list)
        entries += (entries.empty() ? "" : ",") + text(entry);
    return "[" + entries + "]";
}

std::string text(double number) {
    constexpr double largest = std::numeric_limits<double>::max();
    return decimal(std::isnan(number) ? 0 : std::clamp(number, -largest, largest));
}

template <typename T, std::size_t size>
std::string text(const std::array<std::pair<std::string_view, T>, size>& choices, T chosen) {
    const auto found = std::ranges::find(choices, chosen, &std::pair<std::string_view, T>::second);
    return jsonString(found->first);
}

std::string text(const PreferenceValue& value) {
    if (const bool* const chosen = std::get_if<bool>(&value)) return *chosen ? "true" : "false";
    if (const double* const number = std::get_if<double>(&value)) return text(*number);
    if (const auto* const data = std::get_if<Data>(&value)) return data->bytes;
    return jsonString(std::get<std::string>(value));
}

/// The members of an object, in the order in which they are added.
class Members {
public:
    Members& add(std::string_view name, std::string_view json) {
        list_ += (list_.empty() ? "" : ",") + jsonString(name) + ":";
        list_ += json;
        return *this;
    }

    Members& addText(std::string_view name, const std::optional<std::string>& value) {
        return value ? add(name, jsonString(*value)) : *this;
    }

    [[nodiscard]] std::string object() const { return "{" + list_ + "}"; }

private:
    std::string list_;
};

std::string only(const Uuid& id) { return Members().add("id", text(id)).object(); }

std::string boolean(bool value) { return value ? "true" : "false"; }

/// The name of an event, and its value as JSON.
using Member = std::pair<std::string_view, std::string>;

struct Content {
    Member operator()(const Start& event) const {
        // "2026-11-15 23:50:00 +0000" in the words of a trace.
        std::string instant = utcText(event.wallClock).substr(0, 19) + "Z";
        instant[10] = 'T';
        return {"start", jsonString(instant)};
    }

    Member operator()(const SettingsChange& event) const {
        Members members;
        Settings::specimen().visit([&](const auto& setting) {
            const auto found = event.values.find(setting.name());
            if (found != event.values.end()) members.add(setting.name(), text(found->second));
        });
        return {"settings", members.object()};
    }

    Member operator()(const RadioState& event) const {
        Members members;
        members.add("state", text(states, event.state));
        if (event.authorization)
            members.add("authorization", text(authorizations, *event.authorization));
        return {"bluetooth", members.object()};
    }

    Member operator()(const Known& event) const {
        return {"known", Members().add("id", text(event.id)).addText("name", event.name).object()};
    }

    Member operator()(const Heard& event) const {
        Members members;
        members.add("id", text(event.id)).add("rssi", std::to_string(event.rssi));
        members.addText("name", event.name).addText("localName", event.localName);
        if (event.manufacturerData)
            members.add("manufacturerData", text(std::span(*event.manufacturerData)));
        return {"advertisement", members.object()};
    }

    Member operator()(const Connected& event) const { return {"connected", only(event.id)}; }

    Member operator()(const ConnectFailed& event) const {
        return {"connectFailed", only(event.id)};
    }

    Member operator()(const Disconnected& event) const {
        return {"disconnected",
                Members().add("id", text(event.id)).addText("error", event.error).object()};
    }

    Member operator()(const RssiRead& event) const {
        Members members;
        members.add("id", text(event.id));
        if (event.rssi)
            members.add("rssi", std::to_string(*event.rssi));
        else
            members.addText("error", "niet gelezen");
        return {"rssiRead", members.object()};
    }

    Member operator()(const Services& event) const {
        Members members;
        members.add("id", text(event.id));
        if (!event.services.empty()) members.add("services", text(event.services));
        return {"services", members.object()};
    }

    Member operator()(const Characteristics& event) const {
        Members members;
        members.add("id", text(event.id)); // nobody asks for those of another service
        members.add("service", text(ModelIdentifier::deviceInfoService));
        if (!event.characteristics.empty())
            members.add("characteristics", text(event.characteristics));
        return {"characteristics", members.object()};
    }

    Member operator()(const Value& event) const {
        Members members;
        members.add("id", text(event.id)).add("characteristic", text(event.characteristic));
        if (event.value) {
            const std::vector<std::uint8_t> bytes(event.value->begin(), event.value->end());
            members.add("value", text(std::span(bytes)));
        }
        return {"value", members.addText("name", event.name).object()};
    }

    Member operator()(const Session& event) const {
        return {"session", event.event == SessionEvent::locked ? "\"locked\"" : "\"unlocked\""};
    }

    Member operator()(const Input&) const { return {"input", "true"}; }

    Member operator()(const Camera& event) const { return {"camera", boolean(event.inUse)}; }

    Member operator()(const Microphone& event) const {
        return {"microphone", event.user ? jsonString(*event.user) : "null"};
    }

    Member operator()(const AddKey& event) const { return {"addKey", text(event.id)}; }

    Member operator()(const RemoveKey& event) const { return {"removeKey", text(event.id)}; }

    Member operator()(const SetThreshold& event) const {
        Members members;
        members.add("id", text(event.id)).add("value", text(event.value.value));
        return {"setThreshold", members.object()};
    }

    Member operator()(const Discovery& event) const { return {"discovery", boolean(event.active)}; }

    Member operator()(const LockNow&) const { return {"action", "\"lockNow\""}; }

    Member operator()(const Resume&) const { return {"action", "\"resume\""}; }

    Member operator()(const CancelWarning&) const { return {"action", "\"cancelWarning\""}; }

    Member operator()(const Pause& event) const {
        return {"action", Members().add("pause", text(event.duration.count())).object()};
    }

    Member operator()(const ShowSnapshot&) const { return {"show", "\"snapshot\""}; }

    Member operator()(const ShowKeys&) const { return {"show", "\"keys\""}; }

    Member operator()(const Identity& event) const {
        return {"identity",
                Members().add("from", text(event.from)).add("to", text(event.to)).object()};
    }

    Member operator()(const End&) const { return {"end", "true"}; }
};

// In whole milliseconds without going through a double, as it is read.
std::string seconds(Nanoseconds time) {
    const auto milliseconds = time / std::chrono::milliseconds{1};
    std::string text = std::to_string(milliseconds / 1000);
    if (const auto fraction = milliseconds % 1000; fraction != 0) {
        text += "." + std::to_string(1000 + fraction).substr(1);
        text.erase(text.find_last_not_of('0') + 1);
    }
    return text;
}

} // namespace

std::string written(const trace::Line& line) {
    const auto [name, value] = std::visit(Content{}, line.event);
    return Members().add("t", seconds(line.time)).add(name, value).object() + "\n";
}

} // namespace wegslot

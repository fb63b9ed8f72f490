#include "control/control_text.h"

#include "base/text.h"
#include "control/told_phase.h"

#include <nlohmann/json.hpp>

#include <cmath>

namespace wegslot::control {
namespace {

using Json = nlohmann::ordered_json;

std::string stateText(const std::string& state) {
    if (state == name(KeyState::near)) return translated("dichtbij");
    if (state == name(KeyState::leaving)) return translated("zwak");
    if (state == name(KeyState::away)) return translated("weg");
    return printable(state); // of a newer Wegslot
}

std::string row(const Key& key) {
    const std::string signal = key.rssi ? decimal(std::round(key.rssi->value)) + " dBm" : "-";
    return padded(printable(key.name), 24) + "  " + padded(stateText(key.state), 8) + "  " +
           padded(signal, 8) + "  " + translated("drempel %1 dBm", {decimal(key.threshold.value)});
}

std::string row(const Device& device) {
    const std::string signal = device.rssi ? decimal(device.rssi->value) : "-";
    return printable(device.id) + "  " + padded(printable(device.name.value_or("-")), 24) + "  " +
           padded(printable(asItStands(device.kind).translated()), 18) + "  " + signal + " dBm" +
           (device.changesAddress ? "  " + translated("wisselt van adres") : "");
}

Json json(const Key& key) {
    return {{"id", key.id},
            {"name", key.name},
            {"state", key.state},
            {"rssi", key.rssi ? Json(key.rssi->value) : Json(nullptr)},
            {"threshold", key.threshold.value}};
}

Json json(const std::vector<Key>& keys) {
    Json list = Json::array();
    for (const Key& key : keys)
        list.push_back(json(key));
    return list;
}

/// Of a status or a change.
std::string phaseText(const auto& told, const ClockTime& wallTime) {
    const auto text = toldPhase(told.phase, told.reason, told.pausedUntil, wallTime);
    return printable(text ? text->translated() : told.text);
}

/// Whatever bytes a name has, there is an answer.
std::string line(const Json& value) {
    return value.dump(-1, ' ', false, Json::error_handler_t::replace);
}

} // namespace

std::string statusText(const Status& status, const ClockTime& wallTime) {
    std::string text = phaseText(status, wallTime);
    for (const Key& key : status.keys)
        text += "\n  " + row(key);
    return text;
}

std::string keysText(const Status& status) {
    if (status.keys.empty()) return translated("Geen sleutels");
    std::string text;
    for (const Key& key : status.keys)
        text += (text.empty() ? "" : "\n") + key.id + "  " + row(key);
    return text;
}

std::vector<std::string> nearbyLines(const Nearby& nearby) {
    if (!nearby.radio.empty()) return {printable(asItStands(nearby.radio).translated())};
    if (nearby.devices.empty()) return {translated("Nog geen apparaten gehoord")};
    std::vector<std::string> lines;
    for (const Device& device : nearby.devices)
        lines.push_back(row(device));
    return lines;
}

std::string changeText(const Change& change, std::string_view clock, const ClockTime& wallTime) {
    const auto why = words(change.reason);
    return std::string(clock) + "  " + padded(phaseText(change, wallTime), 36) + "  " +
           printable(why ? why->translated() : change.why);
}

std::string identityAddedText(std::string_view name, Dbm threshold) {
    return translated("Sleutel toegevoegd: %1, drempel %2 dBm",
                      {printable(name), decimal(threshold.value)});
}

std::string identityHeardText(Dbm rssi) {
    return translated("Gehoord: %1 dBm", {decimal(std::round(rssi.value))});
}

std::string identityUnheardText(std::string_view name) {
    return translated("De identiteit is geldig, maar %1 is nog niet gehoord. Ontgrendel het "
                      "apparaat en houd het even aan, met Bluetooth aan.\n"
                      "Is het ook met deze computer gekoppeld, voeg dan --same-as ID toe, met het "
                      "id dat --devices het geeft.",
                      {printable(name)});
}

std::string statusJson(const Status& status) {
    return line({{"phase", status.phase},
                 {"text", status.text},
                 {"pausedUntil", status.pausedUntil ? Json(*status.pausedUntil) : Json(nullptr)},
                 {"keys", json(status.keys)}});
}

std::string keysJson(const Status& status) { return line(json(status.keys)); }

std::string changeJson(const Change& change, std::int64_t instant) {
    return line({{"time", instant},
                 {"phase", change.phase},
                 {"text", change.text},
                 {"reason", change.why}});
}

} // namespace wegslot::control

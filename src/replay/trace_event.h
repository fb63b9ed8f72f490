// What a trace can tell the core, one type an event. The texts are owned: an event outlives the
// line it was read from.
#pragma once

#include "base/time.h"
#include "base/uuid.h"
#include "model/preferences_store.h"
#include "monitor/session_events.h"
#include "scanner/bluetooth_central.h"
#include "scanner/dbm.h"

#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace wegslot::trace {

struct Start {
    TimePoint wallClock;
};

/// Preferences as a store holds them, by name; those not named are not touched.
struct SettingsChange {
    Preferences values;
};

struct RadioState {
    CentralState state;
    std::optional<CentralAuthorization> authorization;
};

struct Known {
    Uuid id;
    std::optional<std::string> name;
};

struct Heard {
    Uuid id;
    int rssi;
    std::optional<std::string> name;
    std::optional<std::string> localName;
    std::optional<std::vector<std::uint8_t>> manufacturerData;
};

struct Connected {
    Uuid id;
};

struct ConnectFailed {
    Uuid id;
};

struct Disconnected {
    Uuid id;
    std::optional<std::string> error;
};

struct RssiRead {
    Uuid id;
    std::optional<int> rssi;
};

struct Services {
    Uuid id;
    std::vector<GattUuid> services;
};

struct Characteristics {
    Uuid id;
    std::vector<GattUuid> characteristics;
};

struct Value {
    Uuid id;
    GattUuid characteristic;
    std::optional<std::string> value;
    std::optional<std::string> name;
};

struct Session {
    SessionEvent event;
};

struct Input {};

struct Camera {
    bool inUse;
};

struct Microphone {
    std::optional<std::string> user;
};

struct AddKey {
    Uuid id;
};

struct RemoveKey {
    Uuid id;
};

struct SetThreshold {
    Uuid id;
    Dbm value;
};

struct Discovery {
    bool active;
};

struct LockNow {};

struct Resume {};

struct CancelWarning {};

struct Pause {
    Seconds duration;
};

struct ShowSnapshot {};

struct ShowKeys {};

struct Identity {
    Uuid from;
    Uuid to;
};

struct End {};

using Event =
    std::variant<Start, SettingsChange, RadioState, Known, Heard, Connected, ConnectFailed,
                 Disconnected, RssiRead, Services, Characteristics, Value, Session, Input, Camera,
                 Microphone, AddKey, RemoveKey, SetThreshold, Discovery, LockNow, Resume,
                 CancelWarning, Pause, ShowSnapshot, ShowKeys, Identity, End>;

struct Line {
    Nanoseconds time{0}; ///< since the start of the trace, whole milliseconds
    Event event;
};

} // namespace wegslot::trace

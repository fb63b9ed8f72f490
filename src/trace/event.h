// What a trace can tell the core, one type an event. Each says its word in a trace and lists its
// fields once, in the order in which they are written; reading, writing and disguising walk that
// list, and the type of a field says how. A field without a name is the whole value of its event;
// an event that lists nothing has the value true.
#pragma once

#include "base/time.h"
#include "base/uuid.h"
#include "model/preferences_store.h"
#include "monitor/user_action.h"
#include "platform/session_events.h"
#include "scanner/bluetooth_central.h"
#include "scanner/dbm.h"
#include "scanner/model_identifier.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace wegslot::trace {

/// What a text may say of somebody. There is no field for a plain text: each is disguised in a way.
enum class Tells { device, application, reason, content };

template <Tells>
struct Text : std::string {
    using std::string::string;
    Text(std::string text) : std::string(std::move(text)) {}
};

using DeviceName = Text<Tells::device>;
using ApplicationName = Text<Tells::application>;
using Reason = Text<Tells::reason>;   ///< why something failed, in the stack's words
using Content = Text<Tells::content>; ///< bytes of the characteristic that stands before it
using MakersData = std::vector<std::uint8_t>;

enum class Shown { snapshot, keys };

/// A text as an argument of a template.
template <std::size_t size>
struct Literal {
    std::array<char, size> text{};

    constexpr Literal(const char (&written)[size]) { std::copy_n(written, size, text.data()); }
};

/// An event that is one value.
template <Literal name, typename T>
struct Whole {
    static constexpr std::string_view word{name.text.data(), name.text.size() - 1};
    T value{};

    static void fields(auto& of, auto& walk) { walk(of.value); }
};

/// An event that only happens.
template <Literal name>
struct Bare {
    static constexpr std::string_view word{name.text.data(), name.text.size() - 1};

    static void fields(auto& /*of*/, auto& /*walk*/) {}
};

using Start = Whole<"start", TimePoint>; ///< what the wall clock shows
/// As a store holds them, by name; those not named are not touched.
using SettingsChange = Whole<"settings", Preferences>;
using Session = Whole<"session", SessionEvent>;
using Input = Bare<"input">; ///< keyboard or mouse was touched
using Camera = Whole<"camera", bool>;
using Microphone = Whole<"microphone", std::optional<ApplicationName>>;
using AddKey = Whole<"addKey", Uuid>;
using RemoveKey = Whole<"removeKey", Uuid>;
using Discovery = Whole<"discovery", bool>;
using Action = Whole<"action", UserAction>;
using Show = Whole<"show", Shown>;
using End = Bare<"end">;

struct Heard {
    static constexpr std::string_view word = "advertisement";
    Uuid id;
    int rssi = 0;
    std::optional<DeviceName> name;
    std::optional<DeviceName> localName;
    std::optional<MakersData> manufacturerData;

    static void fields(auto& of, auto& walk) {
        walk("id", of.id)("rssi", of.rssi)("name", of.name)("localName", of.localName)(
            "manufacturerData", of.manufacturerData);
    }
};

struct RadioState {
    static constexpr std::string_view word = "bluetooth";
    CentralState state{};
    std::optional<CentralAuthorization> authorization;

    static void fields(auto& of, auto& walk) {
        walk("state", of.state)("authorization", of.authorization);
    }
};

struct Known {
    static constexpr std::string_view word = "known";
    Uuid id;
    std::optional<DeviceName> name;

    static void fields(auto& of, auto& walk) { walk("id", of.id)("name", of.name); }
};

struct Connected {
    static constexpr std::string_view word = "connected";
    Uuid id;

    static void fields(auto& of, auto& walk) { walk("id", of.id); }
};

struct ConnectFailed {
    static constexpr std::string_view word = "connectFailed";
    Uuid id;
    std::optional<Reason> error;

    static void fields(auto& of, auto& walk) { walk("id", of.id)("error", of.error); }
};

struct Disconnected {
    static constexpr std::string_view word = "disconnected";
    Uuid id;
    std::optional<Reason> error;

    static void fields(auto& of, auto& walk) { walk("id", of.id)("error", of.error); }
};

struct RssiRead {
    static constexpr std::string_view word = "rssiRead";
    Uuid id;
    std::optional<int> rssi; ///< or else the error
    std::optional<Reason> error;

    static void fields(auto& of, auto& walk) {
        walk("id", of.id).either("rssi", of.rssi, "error", of.error);
    }
};

struct Services {
    static constexpr std::string_view word = "services";
    Uuid id;
    std::vector<GattUuid> services;

    static void fields(auto& of, auto& walk) { walk("id", of.id)("services", of.services); }
};

struct Characteristics {
    static constexpr std::string_view word = "characteristics";
    Uuid id;
    std::vector<GattUuid> characteristics;

    static void fields(auto& of, auto& walk) {
        // Nobody asks for those of another one.
        walk("id", of.id)
            .always("service", ModelIdentifier::deviceInfoService)("characteristics",
                                                                   of.characteristics);
    }
};

struct Value {
    static constexpr std::string_view word = "value";
    Uuid id;
    GattUuid characteristic{};
    std::optional<Content> value;
    std::optional<DeviceName> name;

    static void fields(auto& of, auto& walk) {
        walk("id", of.id)("characteristic", of.characteristic)("value", of.value)("name", of.name);
    }
};

struct SetThreshold {
    static constexpr std::string_view word = "setThreshold";
    Uuid id;
    Dbm value;

    static void fields(auto& of, auto& walk) { walk("id", of.id)("value", of.value); }
};

struct Identity {
    static constexpr std::string_view word = "identity";
    Uuid from;
    Uuid to;

    static void fields(auto& of, auto& walk) { walk("from", of.from)("to", of.to); }
};

/// What comes most often stands first: reading looks from there.
using Event = std::variant<Heard, RssiRead, Start, SettingsChange, RadioState, Known, Connected,
                           ConnectFailed, Disconnected, Services, Characteristics, Value, Session,
                           Input, Camera, Microphone, AddKey, RemoveKey, SetThreshold, Discovery,
                           Action, Show, Identity, End>;

struct Line {
    Nanoseconds time{0}; ///< since the start of the trace, whole milliseconds
    Event event;
};

} // namespace wegslot::trace

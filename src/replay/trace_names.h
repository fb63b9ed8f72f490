// The names of a trace that are read as well as written: those of preferences and of the radio's
// states. One table each, so that the reader and the writer cannot come to differ.
#pragma once

#include "scanner/bluetooth_central.h"

#include <array>
#include <string_view>
#include <utility>

namespace wegslot::trace {

enum class PreferenceKind { boolean, duration, rule, keys };

/// In the order in which a change assigns them.
inline constexpr std::array<std::pair<std::string_view, PreferenceKind>, 10> preferenceKinds{{
    {"enabled", PreferenceKind::boolean},
    {"keys", PreferenceKind::keys},
    {"rule", PreferenceKind::rule},
    {"awayDelay", PreferenceKind::duration},
    {"lostTimeout", PreferenceKind::duration},
    {"warningEnabled", PreferenceKind::boolean},
    {"warningSeconds", PreferenceKind::duration},
    {"pauseDuringMeetings", PreferenceKind::boolean},
    {"pauseWhileActive", PreferenceKind::boolean},
    {"showOtherDevices", PreferenceKind::boolean},
}};

inline constexpr std::array<std::pair<std::string_view, CentralState>, 6> states{{
    {"unknown", CentralState::unknown},
    {"resetting", CentralState::resetting},
    {"unsupported", CentralState::unsupported},
    {"unauthorized", CentralState::unauthorized},
    {"poweredOff", CentralState::poweredOff},
    {"poweredOn", CentralState::poweredOn},
}};

inline constexpr std::array<std::pair<std::string_view, CentralAuthorization>, 4> authorizations{{
    {"notDetermined", CentralAuthorization::notDetermined},
    {"restricted", CentralAuthorization::restricted},
    {"denied", CentralAuthorization::denied},
    {"allowedAlways", CentralAuthorization::allowedAlways},
}};

} // namespace wegslot::trace

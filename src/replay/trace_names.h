// The names of a trace that are read as well as written: those of the radio's states. One table
// each, so that the reader and the writer cannot come to differ.
#pragma once

#include "scanner/bluetooth_central.h"

#include <array>
#include <string_view>
#include <utility>

namespace wegslot::trace {

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

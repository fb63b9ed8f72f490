// The words of a trace that each stand for one value of a few: one table for each kind of value,
// which is read and written.
#pragma once

#include "trace/event.h"

#include <array>
#include <string_view>
#include <utility>

namespace wegslot::trace {

template <typename T>
using Word = std::pair<std::string_view, T>;

template <typename T>
inline constexpr std::array<Word<T>, 0> words{};

template <>
inline constexpr std::array<Word<CentralState>, 6> words<CentralState>{{
    {"unknown", CentralState::unknown},
    {"resetting", CentralState::resetting},
    {"unsupported", CentralState::unsupported},
    {"unauthorized", CentralState::unauthorized},
    {"poweredOff", CentralState::poweredOff},
    {"poweredOn", CentralState::poweredOn},
}};

template <>
inline constexpr std::array<Word<CentralAuthorization>, 4> words<CentralAuthorization>{{
    {"notDetermined", CentralAuthorization::notDetermined},
    {"restricted", CentralAuthorization::restricted},
    {"denied", CentralAuthorization::denied},
    {"allowedAlways", CentralAuthorization::allowedAlways},
}};

template <>
inline constexpr std::array<Word<SessionEvent>, 2> words<SessionEvent>{{
    {"locked", SessionEvent::locked},
    {"unlocked", SessionEvent::unlocked},
}};

template <>
inline constexpr std::array<Word<Shown>, 2> words<Shown>{{
    {"snapshot", Shown::snapshot},
    {"keys", Shown::keys},
}};

/// What a person asks in one word. A pause says its length instead.
template <>
inline constexpr std::array<Word<UserAction>, 3> words<UserAction>{{
    {"lockNow", action::LockNow{}},
    {"resume", action::Resume{}},
    {"cancelWarning", action::CancelWarning{}},
}};

} // namespace wegslot::trace

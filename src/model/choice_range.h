// What a person can choose where a setting is a number: as the panel offers it.
#pragma once

#include "base/time.h"
#include "scanner/dbm.h"

namespace wegslot {

template <typename T>
struct ChoiceRange {
    T lowest;
    T highest;
    T step;
};

inline constexpr ChoiceRange<Dbm> thresholdChoice{Dbm{-95}, Dbm{-40}, Dbm{1}};
inline constexpr ChoiceRange<Seconds> awayDelayChoice{Seconds{2}, Seconds{60}, Seconds{1}};
inline constexpr ChoiceRange<Seconds> lostTimeoutChoice{Seconds{5}, Seconds{120}, Seconds{5}};
inline constexpr ChoiceRange<Seconds> warningSecondsChoice{Seconds{3}, Seconds{30}, Seconds{1}};

} // namespace wegslot

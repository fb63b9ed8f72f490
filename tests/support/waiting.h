// How tests wait, and how they see that something else did: by conditions and counts, never by how
// fast the machine is.
#pragma once

#include <chrono>

#include <sys/resource.h>

namespace wegslot {

/// What takes longer hangs, on a machine with one busy processor too. Nothing is proven by it: a
/// test that meets it says what it had waited for, and fails.
inline constexpr std::chrono::minutes onlyAHang{2};

/// How often this thread has slept until something came or a time was over, as the system counts
/// it. A hundred questions that each wait for an answer make a hundred of these on any machine.
[[nodiscard]] inline long waitsSoFar() {
    rusage usage{};
    getrusage(RUSAGE_THREAD, &usage);
    return usage.ru_nvcsw;
}

} // namespace wegslot

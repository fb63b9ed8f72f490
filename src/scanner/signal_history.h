// The last seconds of one device's signal, and the one robust number that is made of them.
#pragma once

#include "base/time.h"
#include "scanner/dbm.h"

#include <cstddef>
#include <optional>
#include <vector>

namespace wegslot {

class SignalHistory {
public:
    /// Samples older than this are dropped when one is added. 3 s more than the usual window.
    static constexpr Nanoseconds retention = std::chrono::seconds{8};

    struct Sample {
        TimePoint date;
        int rssi;
    };

    /// `now` must not be before that of an earlier call.
    void add(TimePoint now, int rssi);

    /// The median of the samples at most `window` old; of an even number the stronger of the
    /// two in the middle. Nothing without such a sample.
    [[nodiscard]] std::optional<Dbm> median(TimePoint now, Nanoseconds window) const;

    /// Those that are later than `since`, oldest first.
    [[nodiscard]] std::vector<Sample> since(TimePoint since) const;

    /// Takes over the samples of `other`, in order of time.
    void merge(const SignalHistory& other);

    [[nodiscard]] std::size_t size() const { return samples_.size() - first_; }

private:
    // Oldest first. Those before `first_` are dropped already; they are cleared away once they
    // are the larger part, so that a talkative device does not move its list at every sample.
    std::vector<Sample> samples_;
    std::size_t first_ = 0;
};

} // namespace wegslot

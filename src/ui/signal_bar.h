// The gauge of a key's signal as numbers: how far it is filled, in which colour, and where the
// threshold stands on the same scale. Knows no key and draws nothing.
#pragma once

#include "base/time.h"
#include "scanner/dbm.h"
#include "ui/brand.h"

#include <optional>

namespace wegslot {

/// Where a strength lies between empty (-100 dBm, 0) and full (-30 dBm, 1), held within.
[[nodiscard]] double signalFraction(Dbm strength);

struct SignalBar {
    static constexpr Color trackColor = brand::lila.withOpacity(0.18);
    static constexpr Color markerColor = brand::navy;

    // Device-independent pixels.
    static constexpr double shortestFill = 8; ///< a signal that is there is always seen
    static constexpr double markerWidth = 2.5;
    static constexpr double markerHeight = 14;

    struct Fill {
        double fraction = 0;
        Color color; ///< green from the threshold on, orange below

        friend bool operator==(const Fill&, const Fill&) = default;
    };

    std::optional<Fill> fill; ///< nothing without a signal
    double marker = 0;        ///< the threshold as a fraction

    friend bool operator==(const SignalBar&, const SignalBar&) = default;
};

[[nodiscard]] SignalBar signalBar(const std::optional<Dbm>& rssi, Dbm threshold);

/// How long the fill is in a bar of `width` pixels.
[[nodiscard]] double fillLength(double fraction, double width);

/// Where the marker begins, its middle on the fraction: it may overhang by half its width.
[[nodiscard]] double markerStart(double fraction, double width);

/// The fill on its way to another fraction: fast at first, still after half a second.
class FillMotion {
public:
    static constexpr Nanoseconds duration = std::chrono::milliseconds{500};

    /// Stands at `fraction` from the start: a bar that appears does not grow.
    explicit FillMotion(double fraction) : from_(fraction), to_(fraction) {}

    /// Sets out from where it is at `now`; nothing when it is on its way there already.
    void moveTo(double fraction, TimePoint now);

    [[nodiscard]] double at(TimePoint now) const;
    [[nodiscard]] bool isMoving(TimePoint now) const;

private:
    double from_;
    double to_;
    TimePoint start_ = TimePoint::min(); // long ago: it stands still
};

} // namespace wegslot

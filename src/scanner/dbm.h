// A signal strength in dBm. Larger (less negative) is nearer. Received values are whole, the
// thresholds and medians made from them are not always.
#pragma once

#include <compare>

namespace wegslot {

struct Dbm {
    double value = 0;
    friend auto operator<=>(const Dbm&, const Dbm&) = default;
};

} // namespace wegslot

// A property that holds for every input; breaking it stops the fuzzer, which then keeps the input.
#pragma once

#include <cstdlib>

inline void expect(bool holds) {
    if (!holds) std::abort();
}

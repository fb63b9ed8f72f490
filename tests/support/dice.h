// Random choices that are the same from one seed on every compiler: the distributions of the
// standard library are not.
#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>

namespace wegslot {

class Dice {
public:
    explicit Dice(std::uint64_t seed) : state_(seed) {}

    /// 0 up to `count`, `count` itself excluded; 0 when there is no choice.
    [[nodiscard]] std::uint64_t below(std::uint64_t count) {
        return count == 0 ? 0 : next() % count;
    }

    /// Both ends included.
    [[nodiscard]] int between(int low, int high) {
        return low + static_cast<int>(below(static_cast<std::uint64_t>(high - low) + 1));
    }

    [[nodiscard]] bool chance(int percent) { return between(1, 100) <= percent; }

    template <typename T>
    [[nodiscard]] T pick(std::initializer_list<T> choices) {
        return *(choices.begin() + static_cast<std::ptrdiff_t>(below(choices.size())));
    }

private:
    // SplitMix64 (Steele, Lea and Flood, "Fast splittable pseudorandom number generators"):
    // neighbouring seeds give unrelated lives.
    std::uint64_t next() {
        state_ += 0x9E3779B97F4A7C15;
        std::uint64_t mixed = state_;
        mixed = (mixed ^ (mixed >> 30)) * 0xBF58476D1CE4E5B9;
        mixed = (mixed ^ (mixed >> 27)) * 0x94D049BB133111EB;
        return mixed ^ (mixed >> 31);
    }

    std::uint64_t state_;
};

} // namespace wegslot

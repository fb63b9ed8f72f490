// Small numbers in a fixed order, of any stretch of which the lowest, the highest and everything in
// between is found in eight steps, however long the stretch is. A wavelet matrix: for each bit of
// the numbers, the highest first, which of them have it, each level sorted by the bits before.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace wegslot::insight {

class Ranks {
public:
    Ranks() = default;
    explicit Ranks(const std::vector<std::int8_t>& values);

    /// The number than which `rank` of those from `from` up to `to` (not in it) are lower, each
    /// counted as often as it is there: 0 gives the lowest. `from` + `rank` < `to`.
    [[nodiscard]] int at(std::size_t from, std::size_t to, std::size_t rank) const;

private:
    static constexpr std::size_t levels = 8;
    static constexpr std::size_t wordBits = 64;

    struct Word {
        std::uint64_t bits = 0;
        std::uint32_t onesBefore = 0; ///< in the words before
    };
    struct Level {
        std::vector<Word> words;
        std::size_t zeros = 0; ///< they are the first at the next level

        [[nodiscard]] std::size_t onesBefore(std::size_t place) const;
    };

    std::array<Level, levels> levels_;
};

} // namespace wegslot::insight

#include "insight/ranks.h"

#include <bit>

namespace wegslot::insight {
namespace {

/// So that the order of the numbers is that of their bits.
constexpr int lowestNumber = -128;

} // namespace

Ranks::Ranks(const std::vector<std::int8_t>& values) {
    std::vector<std::uint8_t> current;
    current.reserve(values.size());
    for (const std::int8_t value : values)
        current.push_back(static_cast<std::uint8_t>(value - lowestNumber));
    std::vector<std::uint8_t> sorted(current.size());
    for (std::size_t i = 0; i < levels; ++i) {
        const std::size_t shift = levels - 1 - i;
        Level& level = levels_[i];
        level.words.resize(current.size() / wordBits + 1);
        for (std::size_t place = 0; place < current.size(); ++place)
            level.words[place / wordBits].bits |=
                static_cast<std::uint64_t>(current[place] >> shift & 1U) << place % wordBits;
        std::uint32_t ones = 0;
        for (Word& word : level.words) {
            word.onesBefore = ones;
            ones += static_cast<std::uint32_t>(std::popcount(word.bits));
        }
        level.zeros = current.size() - ones;
        std::size_t zero = 0;
        std::size_t one = level.zeros;
        for (const std::uint8_t value : current)
            sorted[(value >> shift & 1U) != 0 ? one++ : zero++] = value;
        current.swap(sorted);
    }
}

std::size_t Ranks::Level::onesBefore(std::size_t place) const {
    const Word& word = words[place / wordBits];
    const std::uint64_t before = (std::uint64_t{1} << place % wordBits) - 1;
    return word.onesBefore + static_cast<std::size_t>(std::popcount(word.bits & before));
}

int Ranks::at(std::size_t from, std::size_t to, std::size_t rank) const {
    int value = 0;
    for (const Level& level : levels_) {
        const std::size_t onesFrom = level.onesBefore(from);
        const std::size_t onesTo = level.onesBefore(to);
        const std::size_t zeros = (to - from) - (onesTo - onesFrom);
        value *= 2;
        if (rank < zeros) {
            from -= onesFrom;
            to -= onesTo;
            continue;
        }
        rank -= zeros;
        from = level.zeros + onesFrom;
        to = level.zeros + onesTo;
        ++value;
    }
    return value + lowestNumber;
}

} // namespace wegslot::insight

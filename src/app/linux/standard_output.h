// Standard output of a program that keeps running, line by line. Writing never waits for the
// reader: a stopped terminal or a full pipe must not hold up everything else.
#pragma once

#include "base/linux/line_threads.h"

#include <cstddef>
#include <string_view>

namespace wegslot {

class StandardOutput {
public:
    StandardOutput();

    /// Prints one line, without its line feed. False when it is lost: the reader has gone or is
    /// far behind.
    bool print(std::string_view line);

private:
    /// So many bytes behind.
    static constexpr std::size_t capacity = 1 << 20;

    LineThreads threads_;
    LineQueue lines_;
};

} // namespace wegslot

// What a program that goes on prints, line for line. Nobody waits for who reads it: a terminal that
// was stopped or a pipe that is full would otherwise hold up all else.
#pragma once

#include "base/line_threads.h"

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

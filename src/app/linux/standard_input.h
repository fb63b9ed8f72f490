// What somebody types, line by line, while everything else goes on.
#pragma once

#include "base/descriptors.h"

#include <functional>
#include <string>
#include <string_view>

namespace wegslot {

class StandardInput {
public:
    /// Calls `line` for each whole line, without its end, and `end` once when no more will come: a
    /// line that was not ended is none.
    StandardInput(Descriptors& descriptors, std::function<void(std::string_view)> line,
                  std::function<void()> end);
    StandardInput(const StandardInput&) = delete;
    StandardInput& operator=(const StandardInput&) = delete;

private:
    /// More is no answer to anything.
    static constexpr std::size_t longestLine = 4096;

    void read();

    std::function<void(std::string_view)> line_;
    std::function<void()> end_;
    std::string begun_; ///< of the line that is being typed
    Subscription reading_;
};

} // namespace wegslot

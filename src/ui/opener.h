// The port through which the panel has a file opened by the application that the desktop has for
// its kind: the log.
#pragma once

#include "base/result.h"

#include <filesystem>
#include <optional>

namespace wegslot {

class Opener {
public:
    Opener() = default;
    Opener(const Opener&) = delete;
    Opener& operator=(const Opener&) = delete;
    virtual ~Opener() = default;

    /// Nothing when the desktop has been asked; it says itself what it cannot open.
    [[nodiscard]] virtual std::optional<Failure> open(const std::filesystem::path& file) = 0;
};

} // namespace wegslot

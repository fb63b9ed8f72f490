// Opens files through xdg-open, which knows the applications of every desktop. What it starts is a
// separate process and may outlive Wegslot.
#pragma once

#include "base/handle.h"
#include "base/result.h"
#include "platform/processes.h"

#include <filesystem>
#include <map>
#include <optional>
#include <string>

namespace wegslot {

class DesktopOpener {
public:
    explicit DesktopOpener(Processes& processes) : processes_(processes) {}

    /// Nothing when the desktop has been asked; it says itself what it cannot open.
    [[nodiscard]] std::optional<Failure> open(const std::filesystem::path& file);

private:
    Processes& processes_;
    std::map<ProcessId, Subscription> running_; ///< followed, so that they are laid to rest
};

} // namespace wegslot

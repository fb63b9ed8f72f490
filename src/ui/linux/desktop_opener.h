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
#include <vector>

namespace wegslot {

class DesktopOpener {
public:
    explicit DesktopOpener(Processes& processes) : processes_(processes) {}

    /// Nothing when the desktop has been asked; it says itself what it cannot open.
    [[nodiscard]] std::optional<Failure> open(const std::filesystem::path& file);

    /// Starts a program with its arguments, and waits for nothing. The failure says why not.
    [[nodiscard]] std::optional<Failure> start(const std::vector<std::string>& words);

private:
    Processes& processes_;
    std::map<ProcessId, Subscription> running_; ///< followed, so that they are laid to rest
};

} // namespace wegslot

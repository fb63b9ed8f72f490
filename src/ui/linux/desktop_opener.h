// Opens files through xdg-open, which knows the applications of every desktop, and the desktop's
// window for Bluetooth. What it starts is a separate process and may outlive Wegslot.
#pragma once

#include "base/handle.h"
#include "base/result.h"
#include "platform/processes.h"

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace wegslot {

class DesktopOpener {
public:
    explicit DesktopOpener(Processes& processes) : processes_(processes) {}

    /// Nothing when the desktop has been asked; it says itself what it cannot open.
    [[nodiscard]] std::optional<Failure> open(const std::filesystem::path& file);

    /// Opens the first of `bluetoothSettings` that is installed; a failure where none is.
    [[nodiscard]] std::optional<Failure> openBluetooth(std::string_view desktop);

private:
    [[nodiscard]] std::optional<Failure> start(const std::vector<std::string>& words);

    Processes& processes_;
    std::map<ProcessId, Subscription> running_; ///< followed, so that they are laid to rest
};

} // namespace wegslot

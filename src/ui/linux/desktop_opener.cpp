#include "ui/linux/desktop_opener.h"

#include "base/text.h"
#include "ui/linux/bluetooth_settings.h"

#include <system_error>

namespace wegslot {

std::optional<Failure> DesktopOpener::open(const std::filesystem::path& file) {
    // From the root, or a name could pass for an option or an address.
    std::error_code nowhere;
    const auto path = std::filesystem::absolute(file, nowhere);
    const auto failure = start({"xdg-open", path.string()});
    if (failure) return Failure{Message("%1: %2", {printable(path.string()), failure->message})};
    return std::nullopt;
}

std::optional<Failure> DesktopOpener::openBluetooth(std::string_view desktop) {
    for (const auto& words : bluetoothSettings(desktop))
        if (processes_.isInstalled(words.front())) return start(words);
    return Failure{message("geen programma gevonden dat Bluetooth-apparaten koppelt")};
}

std::optional<Failure> DesktopOpener::start(const std::vector<std::string>& words) {
    const auto process = processes_.start(words);
    if (!process) return process.failure();
    running_[*process] =
        processes_.onEnd(*process, [this, process = *process] { running_.erase(process); });
    return std::nullopt;
}

} // namespace wegslot

#include "ui/linux/desktop_opener.h"

#include "base/text.h"

#include <system_error>

namespace wegslot {

std::optional<Failure> DesktopOpener::open(const std::filesystem::path& file) {
    // From the root, or a name could pass for an option or an address.
    std::error_code nowhere;
    const auto path = std::filesystem::absolute(file, nowhere);
    if (const auto failure = start({"xdg-open", path.string()}))
        return Failure{Message("%1: %2", {printable(path.string()), failure->message})};
    return std::nullopt;
}

std::optional<Failure> DesktopOpener::start(const std::vector<std::string>& words) {
    const auto process = processes_.start(words);
    if (!process) return process.failure();
    running_[*process] =
        processes_.onEnd(*process, [this, process = *process] { running_.erase(process); });
    return std::nullopt;
}

} // namespace wegslot

// Opens files through xdg-open, which knows the applications of every desktop. It runs as a
// separate process and may outlive Wegslot.
#pragma once

#include "base/handle.h"
#include "platform/processes.h"
#include "ui/opener.h"

#include <map>

namespace wegslot {

class DesktopOpener final : public Opener {
public:
    explicit DesktopOpener(Processes& processes) : processes_(processes) {}

    [[nodiscard]] std::optional<Failure> open(const std::filesystem::path& file) override;

private:
    Processes& processes_;
    std::map<ProcessId, Subscription> running_; ///< followed, so that they are laid to rest
};

} // namespace wegslot

// The programs of this user on Linux: /proc to see what runs, posix_spawn to start a program, a
// pidfd to be told of its end.
#pragma once

#include "base/descriptors.h"
#include "platform/processes.h"

#include <filesystem>
#include <set>
#include <utility>

#include <sys/types.h>
#include <unistd.h>

namespace wegslot {

class LinuxProcesses final : public Processes {
public:
    /// `proc` is where the process table is mounted.
    explicit LinuxProcesses(Descriptors& descriptors, std::filesystem::path proc = "/proc",
                            uid_t user = getuid())
        : descriptors_(descriptors),
          proc_(std::move(proc)),
          user_(user) {}

    /// Compares names by their first 15 characters: Linux keeps no more of them.
    [[nodiscard]] std::vector<ProcessId>
    running(const std::vector<ProcessPattern>& patterns) override;
    [[nodiscard]] bool isInstalled(const std::string& program) const override;
    [[nodiscard]] Result<ProcessId> start(const std::vector<std::string>& words) override;
    [[nodiscard]] Subscription onEnd(ProcessId process, std::function<void()> ended) override;

private:
    Descriptors& descriptors_;
    std::filesystem::path proc_;
    uid_t user_;
    std::set<ProcessId> started_; ///< and not seen to end
};

} // namespace wegslot

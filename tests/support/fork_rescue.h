// Keeps GNOME Shell 43 from hanging. To start its daemon of input methods it forks and runs
// JavaScript in the child. If another of its threads had a lock at that moment, nobody ever
// releases the child's copy: the child waits for it, and the shell for the child, with everything
// that is asked of it. Without the child the shell goes on.
#pragma once

#include <chrono>
#include <condition_variable>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <mutex>
#include <set>
#include <stop_token>
#include <string>
#include <thread>

#include <sys/types.h>

namespace wegslot {

class ForkRescue {
public:
    /// Until this ends, the children of `program` are killed that are still itself after a while.
    explicit ForkRescue(pid_t program)
        : program_(program),
          watching_([this](const std::stop_token& stop) { watch(stop); }) {}

private:
    /// From fork to exec takes a few milliseconds; more under load.
    static constexpr std::chrono::milliseconds patience{500};

    void watch(const std::stop_token& stop) {
        std::mutex mutex;
        std::condition_variable_any waking;
        std::set<pid_t> before;
        for (std::unique_lock held(mutex); !stop.stop_requested();) {
            const std::set<pid_t> now = forked();
            for (const pid_t child : now)
                if (before.contains(child)) kill(child, SIGKILL);
            before = now;
            waking.wait_for(held, stop, patience, [] { return false; });
        }
    }

    /// The children that have not become another program.
    [[nodiscard]] std::set<pid_t> forked() const {
        const std::string number = std::to_string(program_);
        std::ifstream children("/proc/" + number + "/task/" + number + "/children");
        std::set<pid_t> found;
        for (pid_t child = 0; children >> child;)
            if (image(child) == image(program_)) found.insert(child);
        return found;
    }
    [[nodiscard]] static std::filesystem::path image(pid_t process) {
        std::error_code gone;
        return std::filesystem::read_symlink("/proc/" + std::to_string(process) + "/exe", gone);
    }

    pid_t program_;
    std::jthread watching_;
};

} // namespace wegslot

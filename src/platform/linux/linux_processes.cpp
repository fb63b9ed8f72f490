#include "platform/linux/linux_processes.h"

#include "base/text.h"
#include "platform/linux/process_table.h"

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string_view>
#include <utility>

#include <fcntl.h>
#include <spawn.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace wegslot {
namespace {

namespace fs = std::filesystem;

bool matches(const fs::path& process, const std::string& name, const ProcessPattern& pattern) {
    if (name != pattern.name.substr(0, process_table::longestName)) return false;
    if (!pattern.arguments) return true;
    const auto words = process_table::wordsOf(process);
    const auto& expected = *pattern.arguments;
    // At the end: a script has its interpreter in front.
    return words.size() > expected.size() &&
           std::equal(expected.rbegin(), expected.rend(), words.rbegin());
}

bool isExecutableFile(const fs::path& file) {
    std::error_code ignored;
    return fs::is_regular_file(file, ignored) && access(file.c_str(), X_OK) == 0;
}

int openProcess(ProcessId process) {
    return static_cast<int>(syscall(SYS_pidfd_open, process.value, 0));
}

/// How a program is started: apart from this one, with nothing of it but its environment.
class SpawnPlan {
public:
    SpawnPlan() {
        posix_spawn_file_actions_init(&actions_);
        posix_spawn_file_actions_addopen(&actions_, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
        posix_spawn_file_actions_addopen(&actions_, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
        posix_spawn_file_actions_addopen(&actions_, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
        posix_spawn_file_actions_addclosefrom_np(&actions_, STDERR_FILENO + 1);
        posix_spawnattr_init(&attributes_);
        posix_spawnattr_setflags(&attributes_, POSIX_SPAWN_SETSID | POSIX_SPAWN_SETSIGMASK |
                                                   POSIX_SPAWN_SETSIGDEF);
        sigset_t signals;
        sigemptyset(&signals);
        posix_spawnattr_setsigmask(&attributes_, &signals);
        sigfillset(&signals);
        posix_spawnattr_setsigdefault(&attributes_, &signals);
    }
    SpawnPlan(const SpawnPlan&) = delete;
    SpawnPlan& operator=(const SpawnPlan&) = delete;
    ~SpawnPlan() {
        posix_spawnattr_destroy(&attributes_);
        posix_spawn_file_actions_destroy(&actions_);
    }

    [[nodiscard]] const posix_spawn_file_actions_t* actions() const { return &actions_; }
    [[nodiscard]] const posix_spawnattr_t* attributes() const { return &attributes_; }

private:
    posix_spawn_file_actions_t actions_{};
    posix_spawnattr_t attributes_{};
};

} // namespace

std::vector<ProcessId> LinuxProcesses::running(const std::vector<ProcessPattern>& patterns) {
    std::vector<ProcessId> found;
    for (const pid_t number : process_table::processes(proc_)) {
        const fs::path process = proc_ / std::to_string(number);
        const std::string name = process_table::nameOf(process);
        const bool wanted = std::ranges::any_of(patterns, [&](const ProcessPattern& pattern) {
            return matches(process, name, pattern);
        });
        if (wanted && process_table::userOf(process) == user_) found.push_back({number});
    }
    return found;
}

bool LinuxProcesses::isInstalled(const std::string& program) const {
    if (program.empty()) return false;
    if (program.find('/') != std::string::npos) return isExecutableFile(program);
    const char* const path = std::getenv("PATH");
    std::string_view rest = path == nullptr ? "/usr/local/bin:/usr/bin:/bin" : path;
    while (!rest.empty()) {
        const auto end = std::min(rest.find(':'), rest.size());
        if (isExecutableFile(fs::path(rest.substr(0, end)) / program)) return true;
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    return false;
}

Result<ProcessId> LinuxProcesses::start(const std::vector<std::string>& words) {
    std::vector<char*> arguments;
    for (const std::string& word : words)
        arguments.push_back(const_cast<char*>(word.c_str())); // NOLINT: the callee leaves it as is
    arguments.push_back(nullptr);
    const SpawnPlan plan;
    pid_t process = 0;
    const int error = posix_spawnp(&process, arguments[0], plan.actions(), plan.attributes(),
                                   arguments.data(), environ);
    if (error != 0) return Failure{printable(words.front()) + ": " + std::strerror(error)};
    started_.insert(ProcessId{process});
    return ProcessId{process};
}

Subscription LinuxProcesses::onEnd(ProcessId process, std::function<void()> ended) {
    const int descriptor = openProcess(process);
    if (descriptor < 0) return {};
    auto watch = std::make_shared<Subscription>();
    *watch = descriptors_.onReadable(
        descriptor,
        [this, process, descriptor, watch = std::weak_ptr(watch), ended = std::move(ended)] {
            siginfo_t status{};
            if (started_.erase(process) > 0) // ours to lay to rest
                waitid(P_PIDFD, static_cast<id_t>(descriptor), &status, WEXITED | WNOHANG);
            if (const auto alive = watch.lock()) alive->reset();
            ended();
        });
    return Subscription{[descriptor, watch] {
        watch->reset();
        close(descriptor);
    }};
}

} // namespace wegslot

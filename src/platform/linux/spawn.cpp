#include "platform/linux/spawn.h"

#include "base/system_error.h"
#include "base/text.h"

#include <csignal>

#include <fcntl.h>
#include <spawn.h>
#include <unistd.h>

namespace wegslot {
namespace {

class SpawnPlan {
public:
    explicit SpawnPlan(int output) {
        posix_spawn_file_actions_init(&actions_);
        posix_spawn_file_actions_addopen(&actions_, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
        if (output < 0)
            posix_spawn_file_actions_addopen(&actions_, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
        else
            posix_spawn_file_actions_adddup2(&actions_, output, STDOUT_FILENO);
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

/// As C wants lists of words; `words` keeps them.
std::vector<char*> listOf(const std::vector<std::string>& words) {
    std::vector<char*> list;
    for (const std::string& word : words)
        list.push_back(const_cast<char*>(word.c_str())); // NOLINT: the callee leaves it as is
    list.push_back(nullptr);
    return list;
}

} // namespace

Result<pid_t> spawn(const std::vector<std::string>& words, const SpawnOptions& options) {
    const SpawnPlan plan(options.output);
    const auto arguments = listOf(words);
    std::vector<char*> environment;
    if (options.environment) environment = listOf(*options.environment);
    pid_t process = 0;
    const int error =
        posix_spawnp(&process, arguments[0], plan.actions(), plan.attributes(), arguments.data(),
                     options.environment ? environment.data() : environ);
    if (error != 0)
        return Failure{Message("%1: %2", {printable(words.front()), systemError(error)})};
    return process;
}

} // namespace wegslot

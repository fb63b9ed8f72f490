#include "platform/linux/linux_processes.h"

#include "base/text.h"

#include <algorithm>
#include <array>
#include <charconv>
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

constexpr std::size_t longestName = 15; // TASK_COMM_LEN without its end

/// What a file of /proc says, its first kilobytes at most; empty when it has gone.
std::string contentOf(const fs::path& file) {
    const int handle = open(file.c_str(), O_RDONLY | O_CLOEXEC);
    if (handle < 0) return {};
    std::array<char, 8192> bytes; // NOLINT: filled by read
    const auto count = read(handle, bytes.data(), bytes.size());
    close(handle);
    return {bytes.data(), static_cast<std::size_t>(std::max<ssize_t>(count, 0))};
}

std::string nameOf(const fs::path& process) {
    std::string name = contentOf(process / "comm");
    if (name.ends_with('\n')) name.pop_back();
    return name;
}

/// Who started it, whatever rights it has taken since; nothing when it has ended.
std::optional<uid_t> userOf(const fs::path& process) {
    const std::string status = contentOf(process / "status");
    constexpr std::string_view label = "\nUid:\t";
    const auto at = status.find(label);
    if (at == std::string::npos) return std::nullopt;
    uid_t user = 0;
    const char* const digits = status.data() + at + label.size();
    const auto [end, error] = std::from_chars(digits, status.data() + status.size(), user);
    if (error != std::errc()) return std::nullopt;
    // A process that has ended and was not reaped holds no screen.
    if (status.find("\nState:\tZ") != std::string::npos) return std::nullopt;
    return user;
}

std::vector<std::string> wordsOf(const fs::path& process) {
    const std::string line = contentOf(process / "cmdline");
    std::vector<std::string> words;
    for (std::size_t start = 0; start < line.size();) {
        const auto end = std::min(line.find('\0', start), line.size());
        words.push_back(line.substr(start, end - start));
        start = end + 1;
    }
    return words;
}

bool matches(const fs::path& process, const std::string& name, const ProcessPattern& pattern) {
    if (name != pattern.name.substr(0, longestName)) return false;
    if (!pattern.arguments) return true;
    const auto words = wordsOf(process);
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
    std::error_code error;
    for (fs::directory_iterator entry(proc_, error), end; !error && entry != end;
         entry.increment(error)) {
        const std::string number = entry->path().filename().string();
        int process = 0;
        const auto parsed = std::from_chars(number.data(), number.data() + number.size(), process);
        if (parsed.ec != std::errc() || parsed.ptr != number.data() + number.size()) continue;
        const std::string name = nameOf(entry->path());
        const bool wanted = std::ranges::any_of(patterns, [&](const ProcessPattern& pattern) {
            return matches(entry->path(), name, pattern);
        });
        if (wanted && userOf(entry->path()) == user_) found.push_back({process});
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

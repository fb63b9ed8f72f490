#include "platform/linux/linux_processes.h"

#include "platform/linux/process_table.h"
#include "platform/linux/spawn.h"

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <optional>
#include <string_view>
#include <utility>

#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace wegslot {
namespace {

namespace fs = std::filesystem;

/// What tells which program a process is.
struct Identity {
    std::optional<std::string> executable;
    std::string name;
};

bool names(const std::vector<std::string>& words, const std::string& program) {
    return std::ranges::any_of(words, [&program](const std::string& word) {
        return fs::path(word).filename() == program;
    });
}

/// Any process can call itself anything; which file it runs it does not choose so freely.
bool isProgram(const fs::path& process, const Identity& identity, const ProcessPattern& pattern) {
    if (identity.executable == pattern.name) return true;
    if (identity.name != pattern.name.substr(0, process_table::longestName)) return false;
    // One that took root's rights hides its file, and nobody without those can do as if.
    if (!identity.executable) return process_table::effectiveUserOf(process) == 0U;
    // The user's own command may be a script: its file is the interpreter's.
    return pattern.arguments && names(process_table::wordsOf(process), pattern.name);
}

bool matches(const fs::path& process, const Identity& identity, const ProcessPattern& pattern) {
    if (!isProgram(process, identity, pattern)) return false;
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

} // namespace

std::vector<ProcessId> LinuxProcesses::running(const std::vector<ProcessPattern>& patterns) {
    std::vector<ProcessId> found;
    for (const pid_t number : process_table::processes(proc_)) {
        const fs::path process = proc_ / std::to_string(number);
        const Identity identity{process_table::executableOf(process),
                                process_table::nameOf(process)};
        const bool wanted = std::ranges::any_of(patterns, [&](const ProcessPattern& pattern) {
            return matches(process, identity, pattern);
        });
        if (wanted && process_table::userOf(process) == user_ &&
            process_table::sharesOurWorld(process))
            found.push_back({number});
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
    const auto process = spawn(words);
    if (!process) return process.failure();
    started_.insert(ProcessId{*process});
    return ProcessId{*process};
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
